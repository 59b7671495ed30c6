// A C++ source as its reader sees it: without comments, and if wanted without what its literals say.
#pragma once

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zolvane {

// The text without its comments, and without what stands in its literals if they are dropped.
class Stripper {
 public:
  Stripper(std::string_view text, bool dropLiterals) : rest_{text}, dropLiterals_{dropLiterals} {}

  std::string Run() {
    while (!rest_.empty()) {
      const bool isDigitSeparator = rest_[0] == '\'' && !result_.empty() &&
                                    std::isalnum(static_cast<unsigned char>(result_.back())) != 0;
      if (rest_.starts_with("//")) {
        rest_.remove_prefix(std::min(rest_.find('\n'), rest_.size()));
      } else if (rest_.starts_with("/*")) {
        SkipBlockComment();
      } else if (rest_.starts_with("R\"")) {
        TakeRawLiteral();
      } else if (rest_[0] == '"' || (rest_[0] == '\'' && !isDigitSeparator)) {
        TakeLiteral(rest_[0]);
      } else {
        Take(1, true);
      }
    }
    return result_;
  }

 private:
  void Take(std::size_t count, bool isKept) {
    if (isKept) {
      result_.append(rest_.substr(0, count));
    }
    rest_.remove_prefix(std::min(count, rest_.size()));
  }

  void SkipBlockComment() {
    const auto end = rest_.find("*/", 2);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 2);
    result_ += ' ';
  }

  void TakeRawLiteral() {
    const auto open = rest_.find('(');
    const auto delimiter = ")" + std::string{rest_.substr(2, open - 2)} + "\"";
    const auto end = rest_.find(delimiter, open);
    Take(end == std::string_view::npos ? rest_.size() : end + delimiter.size(), !dropLiterals_);
  }

  void TakeLiteral(char quote) {
    std::size_t end = 1;
    while (end < rest_.size() && rest_[end] != quote && rest_[end] != '\n') {
      end += rest_[end] == '\\' ? 2 : 1;
    }
    Take(end + 1, !dropLiterals_);
  }

  std::string_view rest_;
  bool dropLiterals_;
  std::string result_;
};

struct Include {
  std::string Name;
  bool IsSystem = false;
};

inline std::vector<Include> IncludesOf(std::string_view source) {
  std::vector<Include> includes;
  const auto text = Stripper{source, false}.Run();
  for (auto place = text.find('#'); place != std::string::npos; place = text.find('#', place + 1)) {
    const auto word = text.find_first_not_of(" \t", place + 1);
    if (word == std::string::npos || text.compare(word, 7, "include") != 0) {
      continue;
    }
    const auto open = text.find_first_of("<\"\n", word);
    const auto close = open == std::string::npos ? open : text.find_first_of(">\"\n", open + 1);
    if (close != std::string::npos) {
      includes.push_back({text.substr(open + 1, close - open - 1), text[open] == '<'});
    }
  }
  return includes;
}

inline bool HasWord(std::string_view text, std::string_view word) {
  const auto isLetter = [text](std::size_t place) {
    return place < text.size() &&
           (std::isalnum(static_cast<unsigned char>(text[place])) != 0 || text[place] == '_');
  };
  for (auto place = text.find(word); place != std::string_view::npos; place = text.find(word, place + 1)) {
    const bool startsInside = place > 0 && isLetter(place - 1);
    if (!startsInside && !isLetter(place + word.size())) {
      return true;
    }
  }
  return false;
}

}  // namespace zolvane
