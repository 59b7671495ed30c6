// A settings file in memory: its bytes exactly as they are on the disk, and an index over them. Reading a
// value is a look-up. A change is first planned, as a splice of the bytes, so that it can reach the disk
// before it is applied here; applying it costs what the splice costs and never looks at the whole text again,
// unless the text thereby becomes valid UTF-8 or ceases to be.
//
// What is not understood (text before the first section, lines without "=", a "[" without "]", comments)
// stays where it is. The first section of a name counts, and in it the first line of a key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "files/hash_index.h"
#include "files/splice.h"
#include "text/text_encoding.h"

namespace zolvane {

class SectionedText {
 public:
  // What a planned change means for the index.
  struct Edit {
    enum class Kind { ReplacesValue, AddsKey, AddsSection, AddsLineEnd };

    Splice Change;  // changes nothing when the value is there already
    Kind Means = Kind::ReplacesValue;
    std::size_t Section = 0;  // of ReplacesValue and AddsKey
    std::size_t Key = 0;      // of ReplacesValue
    std::size_t Closing = 0;  // bytes at the start of the insertion that end a line which had no line end
    std::size_t LostCharacters = 0;  // stand as "?" in the text
  };

  enum class LineKind : std::uint8_t { Blank, Comment, Header, Key, NotUnderstood };

  // A line that was looked at, in UTF-8.
  struct SeenLine {
    LineKind Is = LineKind::Blank;
    std::size_t Number = 0;  // from 1
    std::string Section{};   // that it stands in; empty before the first header
    std::string Key{};       // of a key
    std::string Value{};     // of a key
    bool Counts = false;     // its section is the first of that name, and a key the first in it
  };

  explicit SectionedText(std::string bytes = {});

  const std::string& Bytes() const { return bytes_; }

  // The value in UTF-8, without the blanks around it. Names are compared without regard to case and to blanks
  // at their ends. Nothing when there is no such key.
  std::optional<std::string> Find(std::string_view section, std::string_view key) const;

  bool HasSection(std::string_view section) const;

  // All lines, in their order.
  void VisitLines(const std::function<void(const SeenLine& line)>& visit) const;

  // Gives the key its value. Nothing when the file could not hold it: a section with "]" or a line break in
  // its name, a key that is empty, has "=" or a line break in it or starts like a comment or a header, a
  // value with a line break in it, a file in UTF-16. Characters that the file's encoding does not have are
  // written as "?".
  std::optional<Edit> PlanValue(std::string_view section, std::string_view key, std::string_view value) const;

  // Appends CR LF to the text. Nothing when the file is in UTF-16.
  std::optional<Edit> PlanBlankLine() const;

  // The edit must have been planned on the text as it is now.
  void Apply(const Edit& edit);

 private:
  struct Line {
    std::size_t Begin;
    std::size_t End;   // of what stands in it
    std::size_t Next;  // behind its line end
  };

  // Positions are relative to the section's start, so that a change moves those of its own section only.
  struct Section {
    std::size_t Start = 0;
    std::size_t BodySize = 0;           // up to and with the last line that is not blank
    std::vector<std::size_t> KeyLines;  // in the order of the text
    HashIndex Keys;                     // to the key lines
  };

  // In the file's encoding, without blanks at its ends.
  struct Name {
    std::string_view Bytes;
    std::uint32_t Hash;
  };

  // Where names from outside lead to.
  struct Place {
    std::optional<std::size_t> Section;
    std::optional<std::size_t> Key;
  };

  TextEncoding Encoding() const {
    return malformedLines_ == 0 ? TextEncoding::Utf8 : TextEncoding::Windows1252;
  }
  bool EndsInsideLine() const;
  Line LineAt(std::size_t begin) const;
  SeenLine Seen(const Line& line, std::size_t section) const;
  std::string_view ContentOf(const Line& line) const;
  std::string_view ContentAt(std::size_t begin) const { return ContentOf(LineAt(begin)); }

  std::string Decoded(std::string_view bytes) const;
  std::string ValueIn(std::string_view content) const;
  std::string Encoded(std::string_view text) const;
  Name NameOf(std::string_view bytes) const { return {bytes, HashIgnoringCase(bytes, Encoding())}; }
  bool IsNamed(std::string_view bytes, const Name& name) const {
    return EqualIgnoringCase(bytes, name.Bytes, Encoding());
  }
  Place PlaceOf(std::string_view section, std::string_view key) const;
  std::optional<std::size_t> FindSection(const Name& name) const;
  std::optional<std::size_t> FindKey(const Section& section, const Name& name) const;

  std::string_view LineEndBehind(std::string_view content) const;
  std::string ClosingLineEnd() const;
  std::string WholeLine(std::string content) const;
  ByteRange ValueRange(const Line& line, std::string_view newValue) const;

  std::optional<Edit> PlanReplacement(std::size_t section, std::size_t key, const std::string& value) const;
  Edit PlanKey(std::size_t section, const std::string& keyLine) const;
  Edit PlanSection(const std::string& section, const std::string& keyLine) const;

  void Reindex();
  void IndexLinesFrom(std::size_t begin);
  void IndexLine(const Line& line);
  void IndexInSection(Section& section, const Line& line);
  void UpdateIndex(const Edit& edit);
  void MoveEverythingBehind(const Edit& edit);
  void CloseLastLine(const Edit& edit);
  ByteRange LinesTouchedBy(const Splice& splice) const;

  std::string bytes_;
  std::size_t markSize_ = 0;  // of the byte-order mark
  std::string_view lineEnd_;  // of new lines: that of the first line when it was loaded, else CR LF
  std::size_t malformedLines_ = 0;
  std::vector<Section> sections_;  // the first one is what stands before the first header
  HashIndex sectionByName_;
};

// A text of 16-bit units, in either byte order: it starts with their mark, or its
// zeros stand as in such a text.
bool IsUtf16(std::string_view bytes);

}  // namespace zolvane
