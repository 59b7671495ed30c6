// Random configurations, and what users do with them.
#pragma once

#include <cctype>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace zolvane {

class SessionGenerator {
 public:
  explicit SessionGenerator(unsigned seed) : random_{seed} {}

  int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

  std::string Pick(const std::vector<std::string>& texts) {
    return texts[static_cast<std::size_t>(Below(static_cast<int>(texts.size())))];
  }

  // Most of them small, as the number of records multiplies calls of the same kinds.
  std::string Configuration(const std::string& sample, const std::string& small) {
    return Below(6) == 0 ? sample : small;
  }

  // With some lines lost, doubled, cut short or in other letters.
  std::string Damaged(const std::string& whole) {
    std::istringstream sample{whole};
    std::string text;
    const int damage = Below(3) * 6;
    for (std::string line; std::getline(sample, line);) {
      switch (Below(100) < damage ? Below(4) : 4) {
        case 0:
          break;
        case 1:
          text.append(line).append("\n").append(line).append("\n");
          break;
        case 2:
          text += line.substr(0, static_cast<std::size_t>(Below(static_cast<int>(line.size()) + 1))) + "\r\n";
          break;
        case 3:
          text += WithOtherLetters(line) + "\n";
          break;
        default:
          text += line + "\n";
      }
    }
    return text;
  }

  // With other numbers of as many digits. Single digits are flags and choices, and stay.
  std::string Taught(const std::string& whole) {
    std::istringstream lines{whole};
    std::string text;
    for (std::string line; std::getline(lines, line);) {
      text += (line.find("Installed=") == std::string::npos ? WithOtherNumbers(line) : line) + "\n";
    }
    return text;
  }

  // As in a run file. `source` is the file to import, `target` the one to export to.
  std::string Command(const std::string& source, const std::string& target) {
    switch (Below(8)) {
      case 0:
        return "query";
      case 1:
        return Pick({"upload", "download"});
      case 2:
        return Pick({"import", "import " + source, "export", "export " + target});
      case 3:
        return "press " + std::to_string(Below(9) - 2);
      case 4:
      case 5:
        return "select " +
               Pick({"cboDeviceType", "cboCageType", "cboHeadType", "cboNestType", "cboTipType"}) + " #" +
               std::to_string(Below(5));
      default:
        return "tick " + Pick({"chkRFID", "chkHeadSensor", "chkTipSensor", "chkEncoders"}) + " " +
               std::to_string(Below(3));
    }
  }

 private:
  // Letters outside of the code page within the first name in quotes.
  static std::string WithOtherLetters(const std::string& line) {
    const auto quote = line.find('"');
    return quote == std::string::npos
               ? line
               : line.substr(0, quote + 1) + "\xC3\xBC\xCE\xA9\xF0\x9F\xA7\xAA" + line.substr(quote + 1);
  }

  // Behind the "=", between the commas, outside of quotes.
  std::string WithOtherNumbers(const std::string& line) {
    const auto equals = line.find('=');
    if (equals == std::string::npos || line[0] == ';') {
      return line;
    }
    std::string text = line.substr(0, equals + 1);
    std::istringstream pieces{line.substr(equals + 1)};
    const char* before = "";
    for (std::string piece; std::getline(pieces, piece, ',');) {
      text += before + (IsNumber(piece) && Below(3) != 0 ? OtherNumber(piece) : piece);
      before = ",";
    }
    return text;
  }

  static bool IsNumber(const std::string& piece) {
    return piece.size() > 1 && piece.find_first_not_of("0123456789.-") == std::string::npos;
  }

  // Neither its first nor its last digit is 0, unless it was: what is less than 1 stays so, and nothing becomes 0.
  std::string OtherNumber(std::string number) {
    for (std::size_t at = 0; at < number.size(); ++at) {
      const bool isFirst = at == 0 || number[at - 1] == '-';
      const bool isEdge = isFirst || at + 1 == number.size();
      if (std::isdigit(static_cast<unsigned char>(number[at])) != 0 && (!isFirst || number[at] != '0')) {
        number[at] = static_cast<char>(isEdge ? '1' + Below(9) : '0' + Below(10));
      }
    }
    return number;
  }

  std::mt19937 random_;
};

}  // namespace zolvane
