// Random texts that are likely to hit the corners of settings files.
#pragma once

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>

namespace zolvane {

class RandomSettings {
 public:
  explicit RandomSettings(unsigned seed) : engine_{seed} {}

  std::size_t Below(std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>{0, limit - 1}(engine_);
  }

  // Parts of names and values with everything that means something around them.
  std::string FileBytes() {
    static constexpr std::array<std::string_view, 34> pieces{
        "[A]",  "[B]",      "[ a ]", "[\xC3\x84]", "[\xC4]",  "[",          "]",          "=",
        ";",    "\r\n",     "\r\n",  "\r\n",       "\n",      "\n",         "\r",         " ",
        "\t",   "x",        "X",     "y=1",        "x=",      " x = 5 ",    "\xC3\xA4=2", "\xE4=3",
        "\xE4", "\xC3\xA4", "value", "\"a,b\"",    "[A]\r\n", "[B]\nx=1\n", "\r\n\r\n",   "\xEF\xBB\xBF",
        "==",   "[]"};
    std::string bytes = Below(8) == 0 ? "\xEF\xBB\xBF" : "";
    for (std::size_t count = Below(40); count > 0; --count) {
      bytes += pieces[Below(pieces.size())];
      if (Below(50) == 0) {
        bytes.push_back(static_cast<char>(Below(256)));
      }
    }
    return IsUtf16Mark(bytes) ? "" : bytes;
  }

  std::string Section() {
    static constexpr std::array<std::string_view, 12> names{"A", "a", " B ", "b",  "Ä",   "ä",
                                                            "C", "",  "Ω",   "A]", "A\n", "\xE4"};
    return std::string{names[Below(names.size())]};
  }

  std::string Key() {
    static constexpr std::array<std::string_view, 16> names{
        "x", "X", " x\t", "y", "Y", "ä", "Ä", "z", "水", "", ";x", "[x", "a=b", "x\r", "\xE4", "w"};
    return std::string{names[Below(names.size())]};
  }

  std::string Value() {
    static constexpr std::array<std::string_view, 18> values{
        "",  "1",   "22",  "333",  " 4",   "5 ",
        " ", "ä",   "ä水", "\xE4", "a=b",  "[A]",
        ";", "6\r", "\r",  "7\n",  "8\r9", "a value that is somewhat longer than the others"};
    return std::string{values[Below(values.size())]};
  }

 private:
  static bool IsUtf16Mark(std::string_view bytes) {
    return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
  }

  std::mt19937 engine_;
};

}  // namespace zolvane
