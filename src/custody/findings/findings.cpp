#include "custody/findings/findings.h"

#include <algorithm>
#include <array>

#include "custody/findings/rules.h"
#include "text/joined.h"

namespace zolvane {

const std::vector<Rule>& Rules() {
  // clang-format off
  static const std::vector<Rule> rules{
      {"unreadable", Grade::Error, "The file is a UTF-16 text. The add-in's host cannot use it here.",
       "Save it as UTF-8 or Windows-1252."},
      {"missing-section", Grade::Error, "The add-in reads a section that the file lacks.",
       "Look for a misspelt header, or take the section from a backup."},
      {"missing-value", Grade::Error, "A number is missing and counts as 0.",
       "Look for a misspelt key, or enter the value."},
      {"missing-key", Grade::Warning, "The add-in reads a key that the file lacks, and takes it for empty.",
       "Enter the key, with 0 if that is meant."},
      {"default-value", Grade::Note, "A missing key gets its default value.",
       "Nothing, if that value is right."},
      {"missing-correction", Grade::Warning, "The upload looks for a volume correction that the file lacks.",
       "Nothing, if there is none for this head; the instrument keeps the factors that it has."},
      {"missing-class", Grade::Error, "The upload sends values of a module that it does not find, as 0.",
       "Write the class of the module to the letter, in capitals."},
      {"missing-position", Grade::Error, "The upload sends other numbers, mostly 0, for a position that the file lacks.",
       "Enter the position, with its name to the letter, before the first gap of the items."},
      {"not-understood", Grade::Warning, "A line that the add-in passes over.",
       "Make a comment of it, with a ; in front, or repair it."},
      {"unread-section", Grade::Warning, "A section that nothing reads, whichever device and module is installed.",
       "Look for a misspelt name; remove it if it is not needed."},
      {"unread-key", Grade::Warning, "A key that nothing reads.",
       "Look for a misspelt name; remove it if it is not needed."},
      {"repeated-section", Grade::Warning, "A section stands twice, and only the first one counts.",
       "Move its lines into the first one."},
      {"repeated-key", Grade::Warning, "A key stands twice in its section, and only the first one counts.",
       "Remove the line that is wrong."},
      {"repeated-name", Grade::Error, "An axis or a position stands in two lines, and only one of them counts.",
       "Remove the line that is wrong, and number the others without a gap."},
      {"gap", Grade::Error, "Numbered lines end at the first number that is missing or has no name.",
       "Number the lines without a gap."},
      {"only-listed", Grade::Error, "The page lists an item that upload, download and backup never come to.",
       "Number the items from 1 without a gap."},
      {"not-a-number", Grade::Error, "A text stands where a number belongs. It counts as 0, or leaves an axis as it was.",
       "Enter the number."},
      {"part-of-number", Grade::Error, "Only the start of the text is a number, and only that counts.",
       "Remove what stands behind the number."},
      {"decimal-comma", Grade::Error, "A number is written with a decimal comma.",
       "Write a point for the comma."},
      {"out-of-range", Grade::Error,
       "A number too large for its place. It counts as 0, is not sent, or leaves an axis as it was.",
       "Enter a number within the range."},
      {"rounded", Grade::Warning, "A number with decimals where only whole ones are kept.",
       "Enter the whole number that is meant."},
      {"sent-rounded", Grade::Note,
       "The instrument takes the number in whole steps or parts, and the upload sends the nearest.",
       "Nothing, unless the rest matters; no number in between can be sent."},
      {"sent-as-zero", Grade::Error, "A number so small that the upload sends 0 for it.",
       "Enter the number with the unit and the factor that belong to it."},
      {"too-many-digits", Grade::Warning, "A number with more digits than the 15 that the add-in works with.",
       "Enter the number with at most 15 digits."},
      {"not-a-flag", Grade::Error, "A text stands where 1 or 0 belongs, and counts as 0.",
       "Enter 1 or 0."},
      {"extra-field", Grade::Error, "A line has more fields than the add-in knows: one of them may be cut in two.",
       "Look for a comma within a number or a name."},
      {"short-line", Grade::Error, "A line has fewer fields than the add-in knows.",
       "Enter the missing fields, with 0 if that is meant."},
      {"no-key", Grade::Error, "A volume correction without the key of the instrument is not sent.",
       "Enter the key as the third field, in double quotes."},
      {"broken-key", Grade::Error,
       "The instrument's key of a volume correction has a blank or a control character in it.",
       "Enter the key in letters, digits and signs."},
      {"reserved-key", Grade::Error, "The key of a volume correction is the instrument's command to save.",
       "Enter the key that the instrument has for this correction."},
      {"zero-factor", Grade::Error, "A factor between file and instrument is 0 or missing.",
       "Enter the factor of this instrument, as an older record or configuration has it."},
      {"inherited-factor", Grade::Error,
       "The scale of an axis is missing or no number, and the add-in keeps what it had before.",
       "Enter the scale of this instrument, as an older record or configuration has it."},
      {"page-changes", Grade::Error, "Opening the page changes what the file says is installed, or fails to say.",
       "Choose what is installed on the page."},
      {"unstorable-name", Grade::Error, "A name holds a ], and so cannot be a part of a section's name.",
       "Give it another name."},
      {"misspelt-class", Grade::Error, "The class of an item, or the layout of a head, is nearly one that the upload looks for.",
       "Write it to the letter, in capitals."},
      {"unknown-class", Grade::Error, "An item without a class that the upload looks for is never sent, or another one in its place.",
       "Enter the class or layout as other items of its kind have it."},
      {"unknown-size", Grade::Error, "A head with channels or tips that its layout or the instrument does not know.",
       "Enter the channels that its layout has, and the volume of its tips as other heads have it."},
      {"undetectable", Grade::Warning, "The query looks for the code of each item, and finds another item first or none.",
       "Give each device and each head a code of its own."},
      {"undetected-module", Grade::Note, "The query knows one module for 96/384 and one for 1/8/12 channels.",
       "Nothing; choose other modules on the page."},
      {"overridden", Grade::Error, "The upload sends several values under one key; the last one stays.",
       "See which records share the key, and give them the same value."},
      {"sent-twice", Grade::Note, "The upload sends one value several times.", "Nothing."},
      {"backup-changes", Grade::Note, "A value that an export and its import would change.",
       "Enter the value as it would become, if that is right."},
      {"respelled", Grade::Note, "A line that saving spells in another way, with the same values.", "Nothing."},
      {"download-changes", Grade::Note,
       "A value that an upload and a download would change, as the instrument keeps fewer values than the file.",
       "Make a backup before a download."},
  };
  // clang-format on
  return rules;
}

std::string_view NameOf(Grade grade) {
  constexpr std::array<std::string_view, 3> names{"error", "warning", "note"};
  return names.at(static_cast<std::size_t>(grade));
}

Json JsonOf(Grade grade) {
  return NameOf(grade);
}

bool Take(const Json& from, Grade& grade) {
  const auto* const found =
      std::ranges::find_if(allGrades, [&from](Grade each) { return from == NameOf(each); });
  const bool isGrade = found != allGrades.end();
  grade = isGrade ? *found : Grade::Note;
  return isGrade;
}

namespace {

std::vector<Finding> FindingsIn(CheckedFile::Kind kind, const std::string& bytes, const std::string& name,
                                const std::string& configuration) {
  if (IsUtf16(bytes)) {
    const auto& rule = Rules().front();
    return {
        {std::string{rule.Code}, rule.Grade, name, 0, std::string{rule.Meaning}, std::string{rule.Advice}}};
  }
  CheckedFile file{kind, bytes, name, configuration};
  CheckLines(file);
  CheckFields(file);
  if (kind == CheckedFile::Kind::Configuration) {
    CheckOperations(file);
    CheckRoundTrips(file);
  }
  return file.TakeFindings();
}

}  // namespace

std::vector<Finding> CheckConfiguration(const std::string& configuration, const std::string& file) {
  return FindingsIn(CheckedFile::Kind::Configuration, configuration, file, configuration);
}

std::vector<Finding> CheckBackup(const std::string& backup, const std::string& file,
                                 const std::string& configuration) {
  return FindingsIn(CheckedFile::Kind::Backup, backup, file, configuration);
}

bool HasError(const std::vector<Finding>& findings) {
  return std::ranges::find(findings, Grade::Error, &Finding::Grade) != findings.end();
}

std::vector<std::string_view> FindingCodes() {
  std::vector<std::string_view> codes;
  std::ranges::transform(Rules(), std::back_inserter(codes), &Rule::Code);
  return codes;
}

const Rule* RuleOf(std::string_view code) {
  const auto rule = std::ranges::find(Rules(), code, &Rule::Code);
  return rule == Rules().end() ? nullptr : &*rule;
}

std::string ExplanationOf(const Rule& rule) {
  return Joined(rule.Code, " (", NameOf(rule.Grade), ")\n\n  ", rule.Meaning, "\n  What to do: ", rule.Advice,
                "\n");
}

}  // namespace zolvane
