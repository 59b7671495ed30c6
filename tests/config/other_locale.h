// A process whose locales are not those of a plain program: decimal comma, grouped digits, other words for
// flags, other upper-case letters. Restores what it found.
#pragma once

#include <clocale>
#include <locale>
#include <string>

namespace zolvane {

struct CommaNumbers : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
  string_type do_truename() const override { return "wahr"; }
  string_type do_falsename() const override { return "falsch"; }
};

// As in languages with two forms of i.
struct OtherLetters : std::ctype<char> {
  char do_toupper(char letter) const override { return letter == 'i' ? 'Y' : letter; }
  const char* do_toupper(char* first, const char* last) const override {
    for (; first != last; ++first) {
      *first = do_toupper(*first);
    }
    return last;
  }
};

class OtherLocale {
 public:
  OtherLocale() : before_{std::setlocale(LC_ALL, nullptr)} {
    // The locale owns its facets. A locale of the system with a decimal comma is taken where there is one.
    std::locale::global(std::locale{std::locale{std::locale{}, new CommaNumbers}, new OtherLetters});
    for (const auto* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "German_Germany", "de-DE"}) {
      if (std::setlocale(LC_ALL, name) != nullptr) {
        break;
      }
    }
  }
  ~OtherLocale() {
    std::locale::global(globalBefore_);
    std::setlocale(LC_ALL, before_.c_str());
  }
  OtherLocale(const OtherLocale&) = delete;
  OtherLocale& operator=(const OtherLocale&) = delete;

 private:
  std::locale globalBefore_;
  std::string before_;
};

}  // namespace zolvane
