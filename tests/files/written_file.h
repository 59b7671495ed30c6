// A file on the disk together with the text that it held last.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "files/exchanged_file.h"

namespace zolvane {

class WrittenFile {
 public:
  explicit WrittenFile(const std::string& path, const ExchangedFileOptions& options = {})
      : file_{OpenExchangedFile(path, options)}, text_{file_->Read().Bytes} {}

  WriteOutcome Write(std::size_t offset, std::size_t removed, std::string inserted) {
    const Splice change{offset, removed, std::move(inserted)};
    const WriteOutcome outcome = file_->Write(text_, change);
    if (outcome == WriteOutcome::Done) {
      text_.replace(change.Offset, change.Removed, change.Inserted);
    }
    return outcome;
  }
  bool Append(std::string_view bytes) {
    return Write(text_.size(), 0, std::string{bytes}) == WriteOutcome::Done;
  }

  bool Replace(std::size_t offset, std::string inserted) {
    const std::size_t removed = inserted.size();
    return Write(offset, removed, std::move(inserted)) == WriteOutcome::Done;
  }

  ExchangedFile& File() { return *file_; }
  const std::string& Text() const { return text_; }

 private:
  std::unique_ptr<ExchangedFile> file_;
  std::string text_;
};

}  // namespace zolvane
