// The settings-file service over files in memory.
//
// Events: `read [Section] Key`, `write [Section] Key=value`, `split "," of "text"`. A file other than
// ConfigFile adds ` in FILE`, a default that is not empty adds ` default "text"`.
#pragma once

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/ini_file_service.h"
#include "support/journal.h"

namespace zolvane {

// A path as the add-in joins it on this system.
inline std::string InFolder(std::string folder, std::string_view name) {
  folder += static_cast<char>(std::filesystem::path::preferred_separator);
  return folder.append(name);
}

class FakeSettings final : public IniFileService {
 public:
  explicit FakeSettings(Journal& journal) : journal_{journal} {}

  std::string ConfigFile = InFolder("/add-in", "Zolvane.ini");

  // Replaces a file by the text: lines `[Section]` and `key=value` (value to the letter); others are ignored.
  void Load(const std::string& file, std::string_view text) {
    auto& sections = files_[file];
    sections.clear();
    while (!text.empty()) {
      const auto end = text.find('\n');
      LoadLine(sections, text.substr(0, end));
      text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
  }
  void Load(std::string_view text) { Load(ConfigFile, text); }

  // The file as text: no blank lines, sections and keys in the order of their creation.
  std::string Text(const std::string& file) const {
    std::string text;
    const auto found = files_.find(file);
    for (const auto& section : found == files_.end() ? Sections{} : found->second) {
      text += "[" + section.Name + "]\n";
      for (const auto& [key, value] : section.Keys) {
        text += key + "=" + value + "\n";
      }
    }
    return text;
  }
  std::string Text() const { return Text(ConfigFile); }

  std::optional<std::string> Value(std::string_view section, std::string_view key,
                                   std::string_view file) const {
    const auto found = files_.find(std::string{file});
    if (found == files_.end()) {
      return std::nullopt;
    }
    for (const auto& candidate : found->second) {
      if (SameName(candidate.Name, section)) {
        const auto entry = std::ranges::find_if(
            candidate.Keys, [key](const auto& existing) { return SameName(existing.first, key); });
        return entry == candidate.Keys.end() ? std::nullopt : std::optional{entry->second};
      }
    }
    return std::nullopt;
  }
  std::optional<std::string> Value(std::string_view section, std::string_view key) const {
    return Value(section, key, ConfigFile);
  }

  // Sets a value without an event.
  void Set(std::string_view section, std::string_view key, std::string_view value, std::string_view file) {
    auto& sections = files_[std::string{file}];
    auto place =
        std::ranges::find_if(sections, [section](const auto& s) { return SameName(s.Name, section); });
    if (place == sections.end()) {
      place = sections.insert(sections.end(), Section{.Name = std::string{section}, .Keys = {}});
    }
    const auto entry = std::ranges::find_if(
        place->Keys, [key](const auto& existing) { return SameName(existing.first, key); });
    if (entry == place->Keys.end()) {
      place->Keys.emplace_back(key, value);
    } else {
      entry->second = std::string{value};
    }
  }
  void Set(std::string_view section, std::string_view key, std::string_view value) {
    Set(section, key, value, ConfigFile);
  }

  // ---- IniFileService ----

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override {
    std::string event = "read " + Place(section, key);
    if (!fallback.empty()) {
      event.append(" default \"").append(fallback).append("\"");
    }
    if (journal_.Fails(event + InFile(file))) {
      return std::nullopt;
    }
    return Value(section, key, file).value_or(std::string{fallback});
  }

  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    const Status outcome =
        journal_.Outcome("write " + Place(section, key) + "=" + std::string{value} + InFile(file));
    if (outcome.Ok()) {
      Set(section, key, value, file);
    }
    return outcome;
  }

  std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                    std::string_view text) override {
    if (journal_.Fails("split \"" + std::string{delimiter} + "\" of \"" + std::string{text} + "\"")) {
      return std::nullopt;
    }
    std::vector<std::string> pieces;
    std::string rest{text};
    while (!rest.empty()) {
      const auto end = rest.find(delimiter);
      pieces.push_back(rest.substr(0, end));
      rest.erase(0, end == std::string::npos ? end : end + delimiter.size());
    }
    return pieces;
  }

 private:
  struct Section {
    std::string Name;
    std::vector<std::pair<std::string, std::string>> Keys;
  };
  using Sections = std::vector<Section>;

  // Called millions of times by builds that check each step: nothing here but what the compiler itself knows.
  static bool SameName(std::string_view left, std::string_view right) {
    bool isSame = left.size() == right.size();
    for (std::size_t at = 0; isSame && at < left.size(); ++at) {
      // NOLINTNEXTLINE(readability-simplify-subscript-expr): the operator is a call
      isSame = Lower(left.data()[at]) == Lower(right.data()[at]);
    }
    return isSame;
  }
  static char Lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
  }

  static void LoadLine(Sections& sections, std::string_view line) {
    const auto equals = line.find('=');
    if (line.starts_with('[') && line.ends_with(']')) {
      sections.push_back({.Name = std::string{line.substr(1, line.size() - 2)}, .Keys = {}});
    } else if (!line.starts_with(';') && equals != std::string_view::npos && !sections.empty()) {
      sections.back().Keys.emplace_back(line.substr(0, equals), line.substr(equals + 1));
    }
  }

  static std::string Place(std::string_view section, std::string_view key) {
    return "[" + std::string{section} + "] " + std::string{key};
  }

  std::string InFile(std::string_view file) const {
    return file == ConfigFile ? std::string{} : " in " + std::string{file};
  }

  Journal& journal_;
  std::map<std::string, Sections> files_;
};

}  // namespace zolvane
