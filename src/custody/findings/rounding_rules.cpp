// Numbers of which the upload sends less than the file says.
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <span>
#include <utility>

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

// What is sent of a thousand times the number shows three decimals more of what should be sent of the number.
constexpr double magnification = 1000.0;

struct MagnifiedLine {
  const SectionedText::SeenLine* Original;
  std::string Text;
};

// Factors between file and instrument are not sent, nor are volumes: these choose the key that something is
// sent under.
bool IsMeasured(const FileSection& section, const FileField& field) {
  constexpr std::array notSent{Unit::None, Unit::Microlitres, Unit::MillimetresPerUnit,
                               Unit::StepsPerFileUnit};
  return std::ranges::find(notSent, field.Of) == notSent.end() ||
         (section.IsCorrection() && field.Piece == correctionFactorPiece);
}

bool Magnify(std::string& text, const FileSection& section, const FileField* field,
             const StepFactors& factors) {
  const auto number = field != nullptr && IsMeasured(section, *field) ? StrictNumber(text) : std::nullopt;
  auto magnified = GeneralText(number.value_or(0.0) * magnification);
  const bool canBe = number && *number != 0.0 && field->Converts(magnified, factors);
  if (canBe) {
    text = std::move(magnified);
  }
  return canBe;
}

// Nothing if the line has no number that may be sent.
std::optional<MagnifiedLine> MagnifiedLineOf(const SectionedText::SeenLine& line,
                                             const StepFactors& factors) {
  const auto& section = FileSectionOf(line.Section);
  if (!section.NumberIn(line.Key)) {
    std::string text{line.Value};
    return Magnify(text, section, section.FieldUnder(line.Key), factors)
               ? std::optional{MagnifiedLine{&line, std::move(text)}}
               : std::nullopt;
  }
  bool isMagnified = false;
  std::string text;
  auto pieces = PiecesOf(line.Value);
  for (std::size_t piece = 0; piece < pieces.size(); ++piece) {
    isMagnified = Magnify(pieces[piece], section, section.FieldAt(piece), factors) || isMagnified;
    text += Joined(piece == 0 ? "" : ",", pieces[piece]);
  }
  return isMagnified ? std::optional{MagnifiedLine{&line, std::move(text)}} : std::nullopt;
}

std::vector<MagnifiedLine> MagnifiedLinesOf(const CheckedFile& file, const StepFactors& factors) {
  std::vector<MagnifiedLine> lines;
  for (const auto& line : file.Lines) {
    const bool isValue = line.Is == SectionedText::LineKind::Key && line.Counts;
    if (auto magnified = isValue ? MagnifiedLineOf(line, factors) : std::nullopt) {
      lines.push_back(*std::move(magnified));
    }
  }
  return lines;
}

std::vector<UploadLine> UploadOf(CheckedFile& file, std::span<const MagnifiedLine> lines) {
  std::vector<UploadLine> script;
  file.Run([&](const OperationContext& context, const std::string& path) {
    for (const auto& [original, text] : lines) {
      PassOver(context.Config.Settings.WriteValue(original->Section, original->Key, path, text));
    }
    RefreshCurrentRecords(context.Config);
    script = BuildUploadLines(context.Config, nullptr);
  });
  return script;
}

// What should be sent, to three decimals more, if that is not what is sent. The scales of the axes are held in
// single precision: so small a difference says nothing.
std::optional<double> ExactOf(const UploadLine& line, const UploadLine& magnified) {
  constexpr double ofScales = 2e-7;
  const auto sent = line.Value ? StrictNumber(*line.Value) : std::nullopt;
  const auto exact = magnified.Value ? StrictNumber(*magnified.Value) : std::nullopt;
  const bool isRounded = sent && exact && magnified.Key == line.Key && magnified.Value != line.Value &&
                         std::abs(*exact - *sent * magnification) > 1.0 + std::abs(*exact) * ofScales;
  return isRounded ? std::optional{*exact / magnification} : std::nullopt;
}

// Goes on with the halves of the lines until it knows which of them it is.
void AddRounded(CheckedFile& file, const std::vector<UploadLine>& script,
                std::span<const MagnifiedLine> lines) {
  const auto magnified = UploadOf(file, lines);
  bool isSome = false;
  for (std::size_t index = 0; index < std::min(script.size(), magnified.size()); ++index) {
    const auto& sent = script[index];
    const auto exact = ExactOf(sent, magnified[index]);
    isSome = isSome || exact;
    if (exact && lines.size() == 1) {
      const auto& place = *lines.front().Original;
      file.Add("sent-rounded", place.Number,
               Joined(Printable(NameOfPlace(place.Section, place.Key)), ": the upload sends ", *sent.Value,
                      " for ", Printable(sent.Key), ", rounded from ", GeneralText(*exact)));
    }
  }
  if (isSome && lines.size() > 1) {
    AddRounded(file, script, lines.first(lines.size() / 2));
    AddRounded(file, script, lines.subspan(lines.size() / 2));
  }
}

}  // namespace

void CheckRounding(CheckedFile& file, const CurrentRecords& inForce, const std::vector<UploadLine>& script) {
  AddRounded(file, script, MagnifiedLinesOf(file, CurrentStepFactors(inForce)));
}

}  // namespace zolvane
