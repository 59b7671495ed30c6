#include "files/sectioned_text.h"

#include <algorithm>
#include <array>
#include <utility>

#include "config/text.h"

namespace zolvane {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view blanks = " \t";
constexpr std::string_view carriageReturnLineFeed = "\r\n";
constexpr std::string_view lineFeed = "\n";
constexpr std::string_view breaks = "\r\n";

bool StartsWithBlank(std::string_view text) {
  return !text.empty() && blanks.find(text.front()) != std::string_view::npos;
}

bool EndsWithBlank(std::string_view text) {
  return !text.empty() && blanks.find(text.back()) != std::string_view::npos;
}

// Text behind the bracket is ignored.
std::optional<std::string_view> HeaderIn(std::string_view content) {
  const std::string_view text = Trimmed(content);
  const auto end = text.starts_with('[') ? text.find(']') : std::string_view::npos;
  return end == std::string_view::npos ? std::nullopt : std::optional{Trimmed(text.substr(1, end - 1))};
}

bool LooksLikeKey(std::string_view key) {
  return !key.empty() && !key.starts_with(';') && !key.starts_with('[');
}

std::optional<std::string_view> KeyIn(std::string_view content) {
  const auto equals = content.find('=');
  if (equals == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view key = Trimmed(content.substr(0, equals));
  return LooksLikeKey(key) ? std::optional{key} : std::nullopt;
}

bool IsWritableSection(std::string_view name) {
  return name.find(']') == std::string_view::npos && name.find_first_of(breaks) == std::string_view::npos;
}

bool IsWritableKey(std::string_view key) {
  return LooksLikeKey(key) && key.find('=') == std::string_view::npos &&
         key.find_first_of(breaks) == std::string_view::npos;
}

std::string_view FirstLineEndIn(std::string_view bytes) {
  const auto end = bytes.find('\n');
  const bool isBare = end != std::string_view::npos && (end == 0 || bytes[end - 1] != '\r');
  return isBare ? lineFeed : carriageReturnLineFeed;
}

std::size_t QuestionMarksIn(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count(text, '?'));
}

}  // namespace

bool IsUtf16(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
    return true;
  }
  constexpr std::size_t enough = 4096;
  const std::string_view start = bytes.substr(0, enough);
  std::array<std::size_t, 2> zeros{};  // at even and at odd places
  for (auto zero = start.find('\0'); zero != std::string_view::npos; zero = start.find('\0', zero + 1)) {
    ++zeros[zero % 2];
  }
  // Brackets, equals signs, digits and line ends alone make an eighth of a text in any language.
  const auto [fewer, more] = std::minmax(zeros[0], zeros[1]);
  return more >= 2 && more >= start.size() / 16 && more >= 8 * fewer;
}

SectionedText::SectionedText(std::string bytes)
    : bytes_{std::move(bytes)},
      markSize_{bytes_.starts_with(byteOrderMark) ? byteOrderMark.size() : 0},
      lineEnd_{FirstLineEndIn(bytes_)},
      malformedLines_{CountMalformedLines(bytes_)} {
  Reindex();
}

std::optional<std::string> SectionedText::Find(std::string_view section, std::string_view key) const {
  const Place place = PlaceOf(section, key);
  if (!place.Section || !place.Key) {
    return std::nullopt;
  }
  const Section& inSection = sections_[*place.Section];
  return ValueIn(ContentAt(inSection.Start + inSection.KeyLines[*place.Key]));
}

// Of a line with a key.
std::string SectionedText::ValueIn(std::string_view content) const {
  return Decoded(Trimmed(content.substr(content.find('=') + 1)));
}

bool SectionedText::HasSection(std::string_view section) const {
  return PlaceOf(section, "").Section.has_value();
}

void SectionedText::VisitLines(const std::function<void(const SeenLine& line)>& visit) const {
  std::size_t section = 0;
  std::size_t number = 0;
  for (std::size_t begin = markSize_; begin < bytes_.size();) {
    const Line line = LineAt(begin);
    section += HeaderIn(ContentOf(line)) ? 1 : 0;
    SeenLine seen = Seen(line, section);
    seen.Number = ++number;
    visit(seen);
    begin = line.Next;
  }
}

// `section` is the place of the section that it stands in.
SectionedText::SeenLine SectionedText::Seen(const Line& line, std::size_t section) const {
  const std::string_view content = Trimmed(ContentOf(line));
  SeenLine seen{.Is = content.empty()            ? LineKind::Blank
                      : content.starts_with(';') ? LineKind::Comment
                                                 : LineKind::NotUnderstood};
  if (section > 0) {
    const auto name = HeaderIn(ContentAt(sections_[section].Start)).value_or(std::string_view{});
    seen.Section = Decoded(name);
    seen.Counts = FindSection(NameOf(name)) == section;
  }
  if (HeaderIn(content)) {
    seen.Is = LineKind::Header;
  } else if (const auto key = KeyIn(content)) {
    const Section& inSection = sections_[section];
    const auto found = FindKey(inSection, NameOf(*key));
    seen.Is = LineKind::Key;
    seen.Key = Decoded(*key);
    seen.Value = ValueIn(content);
    seen.Counts = seen.Counts && found && inSection.Start + inSection.KeyLines[*found] == line.Begin;
  }
  return seen;
}

std::optional<SectionedText::Edit> SectionedText::PlanValue(std::string_view section, std::string_view key,
                                                            std::string_view value) const {
  const bool fits = IsWritableSection(Trimmed(section)) && IsWritableKey(Trimmed(key)) &&
                    value.find('\n') == std::string_view::npos;
  if (!fits || IsUtf16(bytes_)) {
    return std::nullopt;
  }
  std::size_t lost = 0;
  const auto encoded = [this, &lost](std::string_view text) {
    std::string bytes = Encoded(text);
    lost += QuestionMarksIn(bytes) - QuestionMarksIn(text);
    return bytes;
  };
  const auto keyLine = [&] { return WholeLine(encoded(key) + '=' + encoded(value)); };
  const Place place = PlaceOf(section, key);
  std::optional<Edit> edit = !place.Section ? PlanSection(encoded(section), keyLine())
                             : place.Key    ? PlanReplacement(*place.Section, *place.Key, encoded(value))
                                            : PlanKey(*place.Section, keyLine());
  if (edit) {
    edit->LostCharacters = lost;
  }
  return edit;
}

std::optional<SectionedText::Edit> SectionedText::PlanBlankLine() const {
  if (IsUtf16(bytes_)) {
    return std::nullopt;
  }
  return Edit{.Change = {bytes_.size(), 0, std::string{carriageReturnLineFeed}},
              .Means = Edit::Kind::AddsLineEnd,
              .Closing = EndsInsideLine() ? carriageReturnLineFeed.size() : 0};
}

std::optional<SectionedText::Edit> SectionedText::PlanReplacement(std::size_t section, std::size_t key,
                                                                  const std::string& value) const {
  const Line line = LineAt(sections_[section].Start + sections_[section].KeyLines[key]);
  const ByteRange range = ValueRange(line, value);
  const std::size_t size = range.To - range.From;
  if (std::string_view{bytes_}.substr(range.From, size) == value) {
    return Edit{};
  }
  const bool standsBeforeLineFeed = range.To < bytes_.size() && bytes_[range.To] == '\n';
  if (value.ends_with('\r') && standsBeforeLineFeed) {
    return std::nullopt;  // it would become a part of the line end
  }
  return Edit{.Change = {range.From, size, value},
              .Means = Edit::Kind::ReplacesValue,
              .Section = section,
              .Key = key};
}

SectionedText::Edit SectionedText::PlanKey(std::size_t section, const std::string& keyLine) const {
  const std::size_t end = sections_[section].Start + sections_[section].BodySize;
  const std::string closing = end == bytes_.size() ? ClosingLineEnd() : std::string{};
  return {.Change = {end, 0, closing + keyLine},
          .Means = Edit::Kind::AddsKey,
          .Section = section,
          .Closing = closing.size()};
}

SectionedText::Edit SectionedText::PlanSection(const std::string& section, const std::string& keyLine) const {
  const std::string closing = ClosingLineEnd();
  return {.Change = {bytes_.size(), 0, closing + WholeLine('[' + section + ']') + keyLine},
          .Means = Edit::Kind::AddsSection,
          .Closing = closing.size()};
}

void SectionedText::Apply(const Edit& edit) {
  const Splice& change = edit.Change;
  if (change.ChangesNothing()) {
    return;
  }
  const TextEncoding before = Encoding();
  const ByteRange touched = LinesTouchedBy(change);
  const auto malformedIn = [this](std::size_t from, std::size_t to) {
    return CountMalformedLines(std::string_view{bytes_}.substr(from, to - from));
  };
  malformedLines_ -= malformedIn(touched.From, touched.To);
  bytes_.replace(change.Offset, change.Removed, change.Inserted);
  malformedLines_ += malformedIn(touched.From, touched.To - change.Removed + change.Inserted.size());
  if (Encoding() == before) {
    UpdateIndex(edit);
  } else {
    Reindex();
  }
}

// A text that ends in a line without line end ends inside that line, even if nothing but blanks stand in it.
bool SectionedText::EndsInsideLine() const {
  return bytes_.size() > markSize_ && bytes_.back() != '\n';
}

SectionedText::Line SectionedText::LineAt(std::size_t begin) const {
  const auto feed = bytes_.find('\n', begin);
  if (feed == std::string::npos) {
    return {begin, bytes_.size(), bytes_.size()};
  }
  const bool hasReturn = feed > begin && bytes_[feed - 1] == '\r';
  return {begin, hasReturn ? feed - 1 : feed, feed + 1};
}

std::string_view SectionedText::ContentOf(const Line& line) const {
  return std::string_view{bytes_}.substr(line.Begin, line.End - line.Begin);
}

std::string SectionedText::Decoded(std::string_view bytes) const {
  const bool isUtf8 = Encoding() == TextEncoding::Utf8 || IsAscii(bytes);
  return isUtf8 ? std::string{bytes} : Utf8FromWindows1252(bytes);
}

// Names are searched for in the file's encoding as well: one that was written with "?" for a character is
// found under that name again.
std::string SectionedText::Encoded(std::string_view text) const {
  if (IsAscii(text)) {
    return std::string{text};
  }
  return Encoding() == TextEncoding::Utf8 ? WellFormedUtf8(text) : Windows1252FromUtf8(text);
}

SectionedText::Place SectionedText::PlaceOf(std::string_view section, std::string_view key) const {
  const std::string sectionName = Encoded(Trimmed(section));
  const auto sectionFound = FindSection(NameOf(sectionName));
  if (!sectionFound) {
    return {};
  }
  const std::string keyName = Encoded(Trimmed(key));
  return {sectionFound, FindKey(sections_[*sectionFound], NameOf(keyName))};
}

std::optional<std::size_t> SectionedText::FindSection(const Name& name) const {
  return sectionByName_.Find(name.Hash, [&](std::size_t section) {
    return IsNamed(*HeaderIn(ContentAt(sections_[section].Start)), name);
  });
}

std::optional<std::size_t> SectionedText::FindKey(const Section& section, const Name& name) const {
  return section.Keys.Find(name.Hash, [&](std::size_t key) {
    return IsNamed(*KeyIn(ContentAt(section.Start + section.KeyLines[key])), name);
  });
}

// A bare LF behind a CR would make a line end of both, so such a line is ended by CR LF in any file.
std::string_view SectionedText::LineEndBehind(std::string_view content) const {
  return content.ends_with('\r') ? carriageReturnLineFeed : lineEnd_;
}

std::string SectionedText::ClosingLineEnd() const {
  return EndsInsideLine() ? std::string{LineEndBehind(bytes_)} : std::string{};
}

std::string SectionedText::WholeLine(std::string content) const {
  const std::string_view lineEnd = LineEndBehind(content);
  return content.append(lineEnd);
}

// The bytes that a new value replaces. Blanks around the old value stay, but blanks that the new one brings
// along take their place: otherwise they would pile up with each change.
ByteRange SectionedText::ValueRange(const Line& line, std::string_view newValue) const {
  const std::string_view content = ContentOf(line);
  const std::size_t behindEquals = content.find('=') + 1;
  const auto firstOfValue = content.find_first_not_of(blanks, behindEquals);
  const bool isEmpty = firstOfValue == std::string_view::npos;
  const std::size_t first = isEmpty ? content.size() : firstOfValue;
  const std::size_t last = isEmpty ? content.size() : content.find_last_not_of(blanks) + 1;
  return {line.Begin + (StartsWithBlank(newValue) ? behindEquals : first),
          line.Begin + (EndsWithBlank(newValue) ? content.size() : last)};
}

void SectionedText::Reindex() {
  sections_.assign(1, Section{.Start = markSize_, .BodySize = 0, .KeyLines = {}, .Keys = {}});
  sectionByName_ = {};
  IndexLinesFrom(markSize_);
}

void SectionedText::IndexLinesFrom(std::size_t begin) {
  while (begin < bytes_.size()) {
    const Line line = LineAt(begin);
    IndexLine(line);
    begin = line.Next;
  }
}

void SectionedText::IndexLine(const Line& line) {
  const std::string_view content = Trimmed(ContentOf(line));
  if (content.empty()) {
    return;
  }
  if (const auto header = HeaderIn(content)) {
    const Name name = NameOf(*header);
    if (!FindSection(name)) {
      sectionByName_.Add(name.Hash, sections_.size());
    }
    sections_.push_back({.Start = line.Begin, .BodySize = 0, .KeyLines = {}, .Keys = {}});
  }
  IndexInSection(sections_.back(), line);
}

void SectionedText::IndexInSection(Section& section, const Line& line) {
  section.BodySize = line.Next - section.Start;
  const auto key = KeyIn(ContentOf(line));
  if (!key) {
    return;
  }
  const Name name = NameOf(*key);
  if (!FindKey(section, name)) {
    section.Keys.Add(name.Hash, section.KeyLines.size());
    section.KeyLines.push_back(line.Begin - section.Start);
  }
}

// The text holds the change already.
void SectionedText::UpdateIndex(const Edit& edit) {
  const std::size_t firstNewLine = edit.Change.Offset + edit.Closing;
  switch (edit.Means) {
    case Edit::Kind::ReplacesValue:
      MoveEverythingBehind(edit);
      break;
    case Edit::Kind::AddsKey:
      MoveEverythingBehind(edit);
      IndexInSection(sections_[edit.Section], LineAt(firstNewLine));
      break;
    case Edit::Kind::AddsSection:
      CloseLastLine(edit);
      IndexLinesFrom(firstNewLine);
      break;
    case Edit::Kind::AddsLineEnd:
      CloseLastLine(edit);
      break;
  }
}

// Behind a value stand the later keys of its section; behind a new key there are none.
void SectionedText::MoveEverythingBehind(const Edit& edit) {
  const auto moved = [&edit](std::size_t position) {
    return position - edit.Change.Removed + edit.Change.Inserted.size();
  };
  Section& section = sections_[edit.Section];
  if (edit.Means == Edit::Kind::ReplacesValue) {
    const auto behind = section.KeyLines.begin() + static_cast<std::ptrdiff_t>(edit.Key) + 1;
    std::transform(behind, section.KeyLines.end(), behind, moved);
  }
  section.BodySize = moved(section.BodySize);
  for (std::size_t index = edit.Section + 1; index < sections_.size(); ++index) {
    sections_[index].Start = moved(sections_[index].Start);
  }
}

// The last line of the text has got its line end. Unless it is a blank one it stands
// in the last section's body.
void SectionedText::CloseLastLine(const Edit& edit) {
  Section& last = sections_.back();
  const bool standsInBody = last.Start + last.BodySize == edit.Change.Offset;
  last.BodySize += standsInBody ? edit.Closing : 0;
}

// The lines that a splice changes or touches at either end.
ByteRange SectionedText::LinesTouchedBy(const Splice& splice) const {
  const auto feedBefore = splice.Offset == 0 ? std::string::npos : bytes_.rfind('\n', splice.Offset - 1);
  const auto feedBehind = bytes_.find('\n', splice.Offset + splice.Removed);
  return {feedBefore == std::string::npos ? 0 : feedBefore + 1,
          feedBehind == std::string::npos ? bytes_.size() : feedBehind + 1};
}

}  // namespace zolvane
