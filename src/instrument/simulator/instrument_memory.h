// What the simulated instrument remembers, and the file that keeps it.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "files/exchanged_file.h"
#include "files/file_claim.h"

namespace zolvane {

class InstrumentMemory {
 public:
  // Loads the file and claims it, so that no other instrument uses it; creates nothing yet. An empty name
  // means a memory that ends with the process. Throws UsageError if the file cannot be used.
  explicit InstrumentMemory(std::string file);

  // What was never saved is gone.
  ~InstrumentMemory();

  InstrumentMemory(const InstrumentMemory&) = delete;
  InstrumentMemory& operator=(const InstrumentMemory&) = delete;

  // Creates a missing file. False if that fails.
  bool CreateFile();

  void Set(std::string_view key, std::string_view value);

  // Null if there is no such key. Keys are case-sensitive.
  const std::string* Find(std::string_view key) const;

  // Saves what was set since the last time, all of it or nothing; the cost depends on that, not on the size
  // of the file. False if that failed.
  bool Save();

  // Back to what was saved last.
  void Restart();

 private:
  using Values = std::map<std::string, std::string, std::less<>>;

  void Load();
  bool Append();
  bool Rewrite();
  WriteOutcome Write(const Splice& change);

  std::string file_;
  std::unique_ptr<FileClaim> claim_;
  std::unique_ptr<ExchangedFile> disk_;
  Values values_;
  Values kept_;
  std::set<std::string, std::less<>> unsaved_;  // keys that were set since the last saving
  std::string document_;                        // what the file holds
  bool isKept_ = false;                         // the file holds `kept_`
  bool isOurLayout_ = false;                    // one member in a line, as it was written here
  std::size_t outdated_ = 0;  // bytes of members in the document that later ones of the same key replace
};

}  // namespace zolvane
