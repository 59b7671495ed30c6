// The link between the add-in and the instrument: what was sent is asked again before it is saved.
//
// Each key is asked once when SAVE comes, and SAVE goes on only if every value is proven. One more question behind
// SAVE, or two, notice a restart in between. Without faults the sender sees what it would see on the link behind it.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "custody/transfer/verdict.h"
#include "custody/values/values.h"
#include "instrument/links/bench_link.h"

namespace zolvane {

// How far the lines that set values came, SAVE not among them.
struct TransferTally {
  std::size_t Sent = 0;
  std::size_t Answered = 0;
  std::size_t Accepted = 0;
  bool SaveWasSent = false;
  bool IsSaved = false;  // accepted, after everything before it was verified

  // The number, from 1 on, of the first line sent of which nothing is known: it was not answered, or the question
  // for its value was not. Nothing was asked since.
  std::optional<std::size_t> UnknownSince;
};

class ProvingLink final : public BenchLink {
 public:
  struct Setup {
    Values Found{};                   // what the instrument answered before
    std::optional<Values> Kept{};     // what a restart takes it back to, if that is known and not Found
    std::vector<SentLine> Arrived{};  // sent earlier, and proven with the rest
    bool LetsUnreadablePass = false;  // such values count as proven
    bool LetsRoundedPass = false;
  };

  // The link is not null.
  ProvingLink(std::shared_ptr<BenchLink> link, Setup setup, const InterruptFlag& interrupt);

  void Begin() override { link_->Begin(); }

  // Asks for every value. True if all are proven, or count as proven. Asks nothing after a line that was not
  // answered: false.
  bool Prove();

  const TransferTally& Tally() const { return tally_; }
  std::vector<Verdict> Verdicts() const { return Judged(lines_, setup_.Found, left_); }
  bool IsProven(const Verdict& verdict) const;

  // Why SAVE was held back or is not believed, as a sentence. Empty if it was neither. The delivery of SAVE does not
  // repeat it.
  const std::string& Problem() const { return problem_; }

 private:
  std::optional<std::string> Exchange(const std::string& command, Delivery& delivery) override;
  std::optional<std::string> PassOn(const std::string& command, Delivery& delivery);
  std::optional<std::string> Save(const std::string& command, Delivery& delivery);
  void Note(Value setting, const std::optional<std::string>& reply, const Delivery& delivery);
  std::vector<Verdict> Telltales(const std::vector<Verdict>& verdicts) const;
  std::vector<std::string> InOrderOfProof() const;
  bool EndedWithATelltale() const;
  bool HoldsStill(std::string_view fact);
  void NoteUnknownSince(const std::string& key);
  std::string Unproven(const std::vector<Verdict>& verdicts) const;

  std::shared_ptr<BenchLink> link_;
  Setup setup_;
  std::vector<SentLine> lines_;
  std::vector<std::string> order_;  // of the questions of the last proof
  Values left_;
  TransferTally tally_;
  bool isDead_ = false;  // a line was not answered
  std::string problem_;
};

}  // namespace zolvane
