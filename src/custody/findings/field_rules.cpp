// Texts that do not convert, lines that are too short or too long.
#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>

#include "config/conversions.h"
#include "config/step_factors.h"
#include "config/tables/current_records.h"
#include "config/text.h"
#include "custody/findings/rules.h"
#include "custody/values/file_fields.h"
#include "operations/upload_script.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

using SeenLine = SectionedText::SeenLine;

// The longest start of the text that is a number, as far as people write any.
std::string_view NumberAtStart(std::string_view text) {
  constexpr std::string_view ofNumbers = "+-.0123456789eE";
  constexpr std::size_t longestNumber = 40;
  auto size = std::min({text.find_first_not_of(ofNumbers), text.size(), longestNumber});
  while (size > 0 && !StrictNumber(text.substr(0, size))) {
    --size;
  }
  return text.substr(0, size);
}

bool HasDecimalComma(std::string_view text, std::string_view number) {
  const auto rest = text.substr(number.size());
  return !number.empty() && rest.size() > 1 && rest[0] == ',' && StrictNumber(rest.substr(1));
}

// A number by its form, but beyond all that a computer holds.
bool IsTooLarge(std::string_view text) {
  double number = 0.0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  return read.ec == std::errc::result_out_of_range && read.ptr == text.data() + text.size();
}

class FieldRules {
 public:
  FieldRules(CheckedFile& file, const StepFactors& factors) : file_{file}, factors_{factors} {}

  void Check(const SeenLine& line) {
    if (line.Is == SectionedText::LineKind::Header) {
      section_ = &FileSectionOf(line.Section);
    } else if (line.Is == SectionedText::LineKind::Key && line.Counts) {
      line_ = &line;
      CheckKey();
    }
  }

 private:
  void CheckKey() {
    if (section_->NumberIn(line_->Key)) {
      CheckRecord(PiecesOf(line_->Value));
    } else if (const auto* const field = section_->FieldUnder(line_->Key)) {
      CheckText(*field, line_->Value);
    }
  }

  void CheckRecord(const std::vector<std::string>& pieces) {
    for (const auto& field : section_->Fields) {
      if (field.Key.empty() && field.Piece < pieces.size()) {
        CheckText(field, pieces[field.Piece]);
      }
    }
    if (pieces.size() > section_->Pieces) {
      Add("extra-field", Joined(std::to_string(pieces.size()), " fields where the add-in knows ",
                                std::to_string(section_->Pieces), ": the extra ones are ignored"));
    }
    const auto lacksField = [&](const FileField& field) {
      return field.Key.empty() && field.Piece >= pieces.size() && field.Values.Kind != ValueKind::Text;
    };
    if (!pieces.empty() && std::ranges::any_of(section_->Fields, lacksField)) {
      Add("short-line",
          Joined(std::to_string(pieces.size()), " of ", std::to_string(section_->Pieces),
                 " fields: the add-in ",
                 section_->IsOfAxes() ? "keeps the others as they were before" : "takes the others for 0"));
    }
    if (section_->IsCorrection()) {
      CheckCorrection(pieces);
    }
  }

  void CheckCorrection(const std::vector<std::string>& pieces) {
    const auto correction = CorrectionIn(pieces);
    const auto key = correction ? correction->Key : "";
    if (!correction) {
      Add("no-key", "there is no key of the instrument in it: the upload sends nothing of it");
    } else if (std::ranges::any_of(key, [](char one) { return one <= ' ' || one > '~'; })) {
      Add("broken-key",
          Joined("the key ", Shown(key),
                 " has a blank in it, or what is no letter, digit or sign: no line can set it"));
    } else if (EqualIgnoringCase(key, "SAVE")) {
      Add("reserved-key",
          Joined("the key ", Shown(key), " is the instrument's command to save what it holds"));
    } else if (!correction->Sent) {
      Add("out-of-range",
          Joined("the factor is out of range: the upload sends nothing for ", Printable(key)));
    } else if (StrictNumber(pieces[correctionFactorPiece]) == 0.0) {
      Add("zero-factor", Joined("the factor is 0: the upload sends 0 for ", Printable(key)));
    }
  }

  void CheckText(const FileField& field, std::string_view text) {
    switch (field.Values.Kind) {
      case ValueKind::Text:
        return;
      case ValueKind::Flag:
        if (!StrictBoolean(text)) {
          AddText("not-a-flag", field, text, "is neither 1 nor 0: the add-in takes it for off");
        }
        return;
      case ValueKind::Whole:
      case ValueKind::Real:
        CheckNumber(field, text);
        return;
    }
  }

  void CheckNumber(const FileField& field, std::string_view text) {
    const auto number = StrictNumber(text);
    if (!number) {
      CheckNoNumber(field, text);
    } else if (!field.Converts(text, factors_)) {
      AddOutOfRange(field, text);
    } else if (field.Values.Kind == ValueKind::Whole &&
               *number != static_cast<double>(PictureWhole(*number).value_or(0))) {
      AddText("rounded", field, text, "is no whole number: the add-in rounds it");
    } else if (const auto kept = GeneralText(*number); StrictNumber(kept) != number) {
      AddText("too-many-digits", field, text,
              Joined("has more than 15 digits: the add-in works with ", kept));
    }
  }

  void CheckNoNumber(const FileField& field, std::string_view text) {
    const auto trimmed = Trimmed(text);
    const auto number = NumberAtStart(trimmed);
    const bool takesStart = field.Values.MayGoOn && !number.empty();
    if (IsTooLarge(trimmed)) {
      AddOutOfRange(field, text);
      return;
    }
    const auto* const code = HasDecimalComma(trimmed, number) ? "decimal-comma"
                             : takesStart                     ? "part-of-number"
                                                              : "not-a-number";
    AddText(
        code, field, text,
        Joined("is no number: the add-in ", takesStart ? Joined("takes ", number) : std::string{Instead()}));
  }

  void AddOutOfRange(const FileField& field, std::string_view text) {
    AddText("out-of-range", field, text,
            Joined("is out of range (", field.Values.ForPeople, "): the add-in ", Instead()));
  }

  std::string_view Instead() const { return section_->IsOfAxes() ? "keeps what it had before" : "takes 0"; }

  void AddText(std::string_view code, const FileField& field, std::string_view text, std::string_view what) {
    Add(code, Joined(Shown(text), " ", what), &field);
  }

  void Add(std::string_view code, std::string_view text, const FileField* field = nullptr) {
    const bool isPiece = field != nullptr && field->Key.empty();
    const auto name = isPiece ? NameOfPlace(line_->Section, line_->Key, field->Piece, field->Title)
                              : NameOfPlace(line_->Section, line_->Key);
    file_.Add(code, line_->Number, Joined(Printable(name), ": ", text));
  }

  CheckedFile& file_;
  StepFactors factors_;
  const FileSection* section_ = nullptr;
  const SeenLine* line_ = nullptr;
};

}  // namespace

void CheckFields(CheckedFile& file) {
  StepFactors factors;
  file.Run([&factors](const OperationContext& context, const std::string&) {
    RefreshCurrentRecords(context.Config);
    factors = CurrentStepFactors(context.Config.Current);
  });
  FieldRules rules{file, factors};
  for (const auto& line : file.Lines) {
    rules.Check(line);
  }
}

}  // namespace zolvane
