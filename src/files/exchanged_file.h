// A file on the disk that is replaced as a whole with each change: whoever opens it, at whatever moment,
// finds a state between two changes, and so does everybody after a crash, a power cut or on a full disk.
// Changes that other programs make to the file are noticed and are never overwritten.
//
// This is the seam to the operating system; each system has an implementation of its own. None
// of the calls waits for another program: what stands in the way is returned, and the caller
// decides how long to try again.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "files/splice.h"
#include "host/status.h"

namespace zolvane {

// Larger files are no settings files; they are not read into memory.
inline constexpr std::uintmax_t largestSettingsFile = std::uintmax_t{256} * 1024 * 1024;

struct FileContent {
  enum class State {
    Present,
    Missing,    // the system says that there is no such file
    Unreadable  // anything else that went wrong; says nothing about what the file holds
  };

  State Is = State::Unreadable;
  std::string Bytes;            // empty unless it is present
  bool IsBeingWritten = false;  // another program has it open for writing, as far as the system can tell
};

enum class WriteOutcome {
  Done,
  Changed,  // another program changed the file first: its change stands, this one is not made
  InUse,    // another program has the file open for writing: the change is not made, the file is as it was
  Locked,   // another writer of this kind is at work in the folder: the same
  Failed    // the file is as it was
};

class ExchangedFile {
 public:
  virtual ~ExchangedFile() = default;

  // The file is what was last read or written through this object. False before the first reading, and
  // whenever that cannot be told for sure.
  virtual bool IsCurrent() = 0;

  virtual FileContent Read() = 0;

  // Makes the change to `text`, which is what was last read or written; a missing file is created. When it
  // returns Done, everybody who opens the file finds the change. Owner, permissions, access lists and
  // extended attributes are kept, or it fails.
  virtual WriteOutcome Write(std::string_view text, const Splice& change) = 0;

  // When it returns without failure, all that was written survives a power cut.
  virtual Status Flush() = 0;

  // Programs that had the file open while it was exchanged may write into the state that was replaced. What
  // they wrote is never removed: it is kept in a file of its own. Returns these files, each once.
  virtual std::vector<std::string> TakeRescued() { return {}; }
};

enum class Durability {
  EachWrite,  // a power cut leaves the file before or after a write
  OnFlush     // a power cut between two calls of Flush may damage the file; a crash of the program does not
};

struct ExchangedFileOptions {
  Durability Survives = Durability::EachWrite;
  bool KeepsCopy = true;  // keep a second copy and swap the two; else write a complete new file each time
};

// Opens nothing yet: the file is looked for at each reading.
std::unique_ptr<ExchangedFile> OpenExchangedFile(const std::string& path,
                                                 const ExchangedFileOptions& options = {});

enum class FileUse { ReadOnly, ReadAndWrite };

// Why the file cannot be used so, as the end of a sentence about it ("is a folder"). Nothing when it can. For
// reading and writing the file may be missing if its folder lets it be created.
std::optional<std::string> ReasonFileIsInaccessible(const std::string& path, FileUse use);

}  // namespace zolvane
