// The journal as text: lines that hang together by their hashes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "custody/history/entry.h"

namespace zolvane {

struct JournalDefect {
  std::size_t Line = 0;
  std::string Text;    // the end of a sentence: "it does not follow from the line before"
  bool IsGap = false;  // something is missing before this line
};

struct Journal {
  std::string Identity;                // empty if there is no line 1 that tells it
  std::vector<Entry> Entries;          // up to the first defect, as far as nothing contradicts them
  std::vector<std::string> Hashes;     // of the whole lines, defective ones too
  std::vector<JournalDefect> Defects;  // in order of lines
  std::string Torn;                    // what stands behind the last whole line
  std::size_t WholeSize = 0;           // of all whole lines
};

// Never fails: any bytes are a journal, if a defective one.
Journal ReadJournal(std::string_view bytes);

// Line 1 of a new journal, without its line end.
std::string IdentityLine(std::string_view identity);

}  // namespace zolvane
