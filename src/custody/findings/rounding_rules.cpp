// Numbers of which the upload sends less than the file says.
#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "config/conversions.h"
#include "config/step_factors.h"
#include "config/tables/current_records.h"
#include "custody/findings/rules.h"
#include "custody/values/file_fields.h"
#include "operations/upload_script.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

using FileLine = SectionedText::SeenLine;

// Every measured number of the file is multiplied by ten thousand, and the upload is made again: it then shows what
// should be sent for the number itself, to four decimals. To find the line of the file that a sent value comes from,
// the lines are numbered, and one more upload is made for each digit of these numbers. In it a line is multiplied by
// one thousand to ten thousand, as its digit says, and the sent value shows the digit. A value that is sent as 0 may
// be too small for four decimals: a second search multiplies by far more, and looks only at what is sent as 0.
constexpr std::size_t base = 10;
constexpr double forDecimals = 1e3;
constexpr double forZeros = 1e29;

// Factors between file and instrument are not sent, nor are volumes: these choose the key that something is
// sent under.
bool IsMeasured(const FileSection& section, const FileField& field) {
  constexpr std::array notSent{Unit::None, Unit::Microlitres, Unit::MillimetresPerUnit,
                               Unit::StepsPerFileUnit};
  return std::ranges::find(notSent, field.Of) == notSent.end() ||
         (section.IsCorrection() && field.Piece == correctionFactorPiece);
}

struct Magnification {
  double Times = 1.0;
  double Most = 1.0;  // of this search
};

// Of a number that may be sent, also if it is magnified most.
std::optional<std::string> Magnified(std::string_view text, const FileSection& section,
                                     const FileField* field, const StepFactors& factors, Magnification by) {
  const auto number = field != nullptr && IsMeasured(section, *field) ? StrictNumber(text) : std::nullopt;
  // The file's own rounding is another matter: the instrument could take the number as it stands.
  const bool isKeptWhole = number && field->Values.Kind == ValueKind::Whole && *number != std::round(*number);
  const bool canBe =
      number && !isKeptWhole && *number != 0.0 && field->Converts(GeneralText(*number * by.Most), factors);
  return canBe ? std::optional{GeneralText(*number * by.Times)} : std::nullopt;
}

// Nothing if the line has no such number.
std::optional<std::string> MagnifiedValue(const FileLine& line, const StepFactors& factors,
                                          Magnification by) {
  const auto& section = FileSectionOf(line.Section);
  if (!section.NumberIn(line.Key)) {
    return Magnified(line.Value, section, section.FieldUnder(line.Key), factors, by);
  }
  bool isMagnified = false;
  std::string value;
  const auto pieces = PiecesOf(line.Value);
  for (std::size_t piece = 0; piece < pieces.size(); ++piece) {
    const auto magnified = Magnified(pieces[piece], section, section.FieldAt(piece), factors, by);
    isMagnified = isMagnified || magnified;
    value += Joined(piece == 0 ? "" : ",", magnified.value_or(pieces[piece]));
  }
  return isMagnified ? std::optional{value} : std::nullopt;
}

// A line of the upload that sends less than the file says.
struct RoundedLine {
  std::size_t Place = 0;   // in the script
  double Exact = 0.0;      // what should be sent, to four decimals
  std::size_t Source = 0;  // the place of the line of the file among the measured ones
};

class RoundingSearch {
 public:
  RoundingSearch(CheckedFile& file, const StepFactors& factors, const std::vector<UploadLine>& script,
                 double magnification)
      : file_{file}, factors_{factors}, script_{script}, magnification_{magnification} {
    for (const auto& line : file.Lines) {
      const bool isValue = line.Is == SectionedText::LineKind::Key && line.Counts;
      if (isValue && MagnifiedValue(line, factors_, By(magnification_))) {
        measured_.push_back(&line);
      }
    }
  }

  std::vector<RoundedLine> Find() {
    auto rounded = FindRounded();
    for (std::size_t place = 1; !rounded.empty() && place < measured_.size(); place *= base) {
      const auto digits = UploadOf([&](std::size_t line) { return TimesFor(line / place % base); });
      for (auto& each : rounded) {
        each.Source += place * DigitIn(digits, each);
      }
    }
    return rounded;
  }

  // Null if it comes from several lines.
  const FileLine* SourceOf(const RoundedLine& rounded) const {
    return rounded.Source < measured_.size() ? measured_[rounded.Source] : nullptr;
  }

 private:
  double Most() const { return magnification_ * base; }
  Magnification By(double times) const { return {.Times = times, .Most = Most()}; }
  double TimesFor(std::size_t digit) const { return magnification_ * static_cast<double>(digit + 1); }

  std::vector<UploadLine> UploadOf(const std::function<double(std::size_t line)>& times) {
    std::vector<UploadLine> script;
    file_.Run([&](const OperationContext& context, const std::string& path) {
      for (std::size_t line = 0; line < measured_.size(); ++line) {
        const auto* const source = measured_[line];
        const auto value = MagnifiedValue(*source, factors_, By(times(line)));
        PassOver(context.Config.Settings.WriteValue(source->Section, source->Key, path, value.value_or("")));
      }
      RefreshCurrentRecords(context.Config);
      script = BuildUploadLines(context.Config, nullptr);
    });
    return script;
  }

  std::vector<RoundedLine> FindRounded() {
    const auto magnified = UploadOf([this](std::size_t) { return Most(); });
    std::vector<RoundedLine> rounded;
    for (std::size_t place = 0; place < std::min(script_.size(), magnified.size()); ++place) {
      if (const auto exact = ExactOf(script_[place], magnified[place])) {
        rounded.push_back({.Place = place, .Exact = *exact});
      }
    }
    return rounded;
  }

  // What should be sent, if that is not what is sent. The scales of the axes are held in single precision: so
  // small a difference says nothing.
  std::optional<double> ExactOf(const UploadLine& line, const UploadLine& magnified) const {
    constexpr double ofScales = 2e-7;
    const auto sent = StrictNumber(line.Value.value_or(""));
    const auto exact = StrictNumber(magnified.Value.value_or(""));
    if (!sent || !exact || magnified.Key != line.Key || magnified.Value == line.Value) {
      return std::nullopt;
    }
    const bool isSought = *sent == 0.0 || magnification_ == forDecimals;
    const bool isRounded = std::abs(*exact - *sent * Most()) > base + std::abs(*exact) * ofScales;
    return isSought && isRounded ? std::optional{*exact / Most()} : std::nullopt;
  }

  // Beyond all lines if none is the only source of what is sent.
  std::size_t DigitIn(const std::vector<UploadLine>& digits, const RoundedLine& rounded) const {
    const auto value = rounded.Place < digits.size() ? digits[rounded.Place].Value : std::nullopt;
    const auto sent = StrictNumber(value.value_or("")).value_or(0.0);
    const auto times = std::round(sent / rounded.Exact / magnification_);
    const bool isDigit = times >= 1.0 && times <= static_cast<double>(base);
    return isDigit ? static_cast<std::size_t>(times) - 1 : measured_.size();
  }

  CheckedFile& file_;
  const StepFactors& factors_;
  const std::vector<UploadLine>& script_;
  double magnification_;
  std::vector<const FileLine*> measured_;
};

}  // namespace

void CheckRounding(CheckedFile& file, const CurrentRecords& inForce, const std::vector<UploadLine>& script) {
  const auto factors = CurrentStepFactors(inForce);
  std::set<std::size_t> found;
  for (const double magnification : {forDecimals, forZeros}) {
    RoundingSearch search{file, factors, script, magnification};
    for (const auto& rounded : search.Find()) {
      const auto* const source = search.SourceOf(rounded);
      if (source == nullptr || !found.insert(rounded.Place).second) {
        continue;
      }
      const auto& line = script[rounded.Place];
      const bool isLost = line.Value && StrictNumber(*line.Value) == 0.0;
      file.Add(isLost ? "sent-as-zero" : "sent-rounded", source->Number,
               Joined(Printable(NameOfPlace(source->Section, source->Key)), ": the upload sends ",
                      line.Value.value_or(""), " for ", Printable(line.Key), ", rounded from ",
                      GeneralText(rounded.Exact)));
    }
  }
}

}  // namespace zolvane
