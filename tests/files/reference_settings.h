// The rules of settings files once more, in the plainest way: each question looks at one line after the other, and each
// change puts the whole text together again. Slow, and for comparison only.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "config/text.h"
#include "text/text_encoding.h"

namespace zolvane {

class ReferenceSettings {
 public:
  explicit ReferenceSettings(std::string bytes) { Replace(std::move(bytes)); }

  const std::string& Bytes() const { return bytes_; }
  void Replace(std::string bytes) {
    bytes_ = std::move(bytes);
    isUtf8_ = IsUtf8(bytes_);
    lines_ = Cut();
  }

  std::optional<std::string> Read(std::string_view section, std::string_view key) const {
    const auto at = FindKey(lines_, section, key);
    return at ? std::optional{Text(Trimmed(lines_[*at].Content.substr(lines_[*at].Content.find('=') + 1)))}
              : std::nullopt;
  }

  bool Write(std::string_view section, std::string_view key, std::string_view value) {
    const auto name = Trimmed(key);
    if (section.find_first_of("]\r\n") != std::string_view::npos ||
        name.find_first_of("=\r\n") != std::string_view::npos || name.empty() || name[0] == ';' ||
        name[0] == '[' || value.find('\n') != std::string_view::npos) {
      return false;
    }
    auto lines = lines_;
    bool isDone = true;
    if (const auto at = FindKey(lines, section, key)) {
      isDone = SetValue(lines[*at], Bytes(value));
    } else {
      Add(lines, section, {Bytes(key) + '=' + Bytes(value), ""});
    }
    Join(lines);
    return isDone;
  }

  void AppendBlankLine() { Replace(bytes_ + "\r\n"); }

 private:
  struct Line {
    std::string Content;
    std::string End;
  };

  std::string Mark() const { return bytes_.starts_with("\xEF\xBB\xBF") ? "\xEF\xBB\xBF" : ""; }
  std::string Text(std::string_view bytes) const {
    return isUtf8_ ? std::string{bytes} : Utf8FromWindows1252(bytes);
  }
  std::string Bytes(std::string_view text) const {
    return isUtf8_ ? WellFormedUtf8(text) : Windows1252FromUtf8(text);
  }

  std::vector<Line> Cut() const {
    std::vector<Line> lines;
    std::string_view rest{bytes_};
    rest.remove_prefix(Mark().size());
    while (!rest.empty()) {
      const auto feed = rest.find('\n');
      std::string line{rest.substr(0, feed)};
      std::string end = feed == std::string_view::npos ? "" : "\n";
      rest.remove_prefix(line.size() + end.size());
      if (!end.empty() && line.ends_with('\r')) {
        line.pop_back();
        end = "\r\n";
      }
      lines.push_back({line, end});
    }
    return lines;
  }

  void Join(const std::vector<Line>& lines) {
    std::string bytes = Mark();
    for (const auto& line : lines) {
      bytes += line.Content + line.End;
    }
    Replace(std::move(bytes));
  }

  static std::string Style(const std::vector<Line>& lines) {
    return lines.empty() || lines[0].End.empty() ? "\r\n" : lines[0].End;
  }

  bool SameName(std::string_view inFile, std::string_view asked) const {
    return UpperCase(Text(Trimmed(inFile))) == UpperCase(Text(Bytes(Trimmed(asked))));
  }

  static bool IsHeader(const Line& line) {
    return Trimmed(line.Content).starts_with('[') && line.Content.find(']') != std::string::npos;
  }

  bool IsHeaderOf(const Line& line, std::string_view section) const {
    if (!IsHeader(line)) {
      return false;
    }
    const auto open = line.Content.find('[');
    return SameName(line.Content.substr(open + 1, line.Content.find(']') - open - 1), section);
  }

  bool IsKey(const Line& line, std::string_view key) const {
    const auto equals = line.Content.find('=');
    const auto start = line.Content.find_first_not_of(" \t");
    return equals != std::string::npos && start != equals && line.Content[start] != ';' &&
           line.Content[start] != '[' && SameName(line.Content.substr(0, equals), key);
  }

  // The lines from the section's header up to the next header.
  std::pair<std::size_t, std::size_t> Extent(const std::vector<Line>& lines, std::string_view section) const {
    const auto header =
        std::ranges::find_if(lines, [&](const Line& line) { return IsHeaderOf(line, section); });
    if (header == lines.end()) {
      return {0, 0};
    }
    const auto end = std::find_if(header + 1, lines.end(), IsHeader);
    return {header - lines.begin(), end - lines.begin()};
  }

  std::optional<std::size_t> FindKey(const std::vector<Line>& lines, std::string_view section,
                                     std::string_view key) const {
    const auto [begin, end] = Extent(lines, section);
    for (std::size_t at = begin; at < end; ++at) {
      if (!IsHeader(lines[at]) && IsKey(lines[at], key)) {
        return at;
      }
    }
    return std::nullopt;
  }

  static bool SetValue(Line& line, const std::string& value) {
    const std::string name = line.Content.substr(0, line.Content.find('=') + 1);
    std::string old = line.Content.substr(name.size());
    const auto first = std::min(old.find_first_not_of(" \t"), old.size());
    std::string before = old.substr(0, first);
    std::string behind = old.substr(first == old.size() ? first : old.find_last_not_of(" \t") + 1);
    if (!value.empty() && (value[0] == ' ' || value[0] == '\t')) {
      before.clear();
    }
    if (value.ends_with(' ') || value.ends_with('\t')) {
      behind.clear();
    }
    const std::string content = name + before + value + behind;
    const bool isChanged = content != line.Content;
    if (isChanged && content.ends_with('\r') && line.End == "\n") {
      return false;
    }
    line.Content = content;
    return true;
  }

  void Add(std::vector<Line>& lines, std::string_view section, Line keyLine) const {
    const std::string style = Style(lines);
    const auto close = [&style](Line& line) {
      if (line.End.empty()) {
        line.End = line.Content.ends_with('\r') ? "\r\n" : style;
      }
    };
    close(keyLine);
    auto [begin, end] = Extent(lines, section);
    if (begin == end) {
      if (!lines.empty()) {
        close(lines.back());
      }
      Line header{'[' + Bytes(section) + ']', ""};
      close(header);
      lines.push_back(header);
      lines.push_back(keyLine);
      return;
    }
    while (Trimmed(lines[end - 1].Content).empty()) {
      --end;
    }
    close(lines[end - 1]);
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(end), keyLine);
  }

  std::string bytes_;
  bool isUtf8_ = true;
  std::vector<Line> lines_;
};

}  // namespace zolvane
