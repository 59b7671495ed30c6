// What was proven at the end of an operation: of the instrument by the proving link, of files by reading them
// back.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bench/host/action_tally.h"
#include "custody/transfer/proving_link.h"
#include "zolvane/operations/custody.h"

namespace zolvane {

class Evidence {
 public:
  // The custody outlives it.
  explicit Evidence(Custody& custody) : custody_{custody} {}

  // Every value that was sent. What the instrument holds now is what the operation left.
  void TakeInstrument(const ProvingLink& link, bool isToBeSaved);

  // Reads the configuration back: it is to hold what was intended.
  void TakeConfiguration();

  // The same of another file.
  void TakeFile(const std::string& path, const std::string& intended);

  // A value that is not as wanted and was left alone, and why.
  void TakeUntouched(const std::string& key, const std::optional<std::string>& present,
                     std::string_view verdict);

  // What the add-in said, and what its operation came to unless the instrument has the last word.
  void TakeTally(const ActionTally& tally, bool isProvenOtherwise);

  // What an upload would now change.
  void TakeRoundTrip(const std::vector<Difference>& changes);

  // Something that keeps the operation from being proven; `fact` is a clause for the account.
  void Worsen(std::string_view outcome, std::string fact);

  // So far.
  bool IsProven() const { return outcome_ == outcome::done; }

  // A clause for the account.
  void Add(std::string fact) { facts_.push_back(std::move(fact)); }

  // Prints what is not proven.
  Conclusion Conclude();

 private:
  void NameWhatCounts(const ProvingLink& link, const std::vector<Verdict>& verdicts);
  void ReportFileValues(const Values& found, const Values& intended, const Values& left);

  Custody& custody_;
  std::string_view outcome_ = outcome::done;
  std::vector<std::string> facts_;
  OperationDetails details_;
};

}  // namespace zolvane
