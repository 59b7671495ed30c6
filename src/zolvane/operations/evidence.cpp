#include "zolvane/operations/evidence.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "bench/host/outcome.h"
#include "bench/host/result_text.h"
#include "custody/values/sides.h"
#include "instrument/links/interrupt_flag.h"
#include "text/counted.h"
#include "text/joined.h"
#include "text/listed.h"
#include "text/printable.h"
#include "zolvane/work/printing.h"

namespace zolvane {
namespace {

ReportedValue ReportedOf(const Verdict& verdict) {
  return {.Key = verdict.Key,
          .Found = verdict.Found,
          .Sent = verdict.Sent,
          .Left = verdict.Left,
          .Verdict = std::string{NameOf(verdict.Is)},
          .Cause = std::string{verdict.Why == Cause::None ? std::string_view{} : NameOf(verdict.Why)}};
}

// What was not sent is as it was found.
Values LeftBy(const std::vector<Verdict>& verdicts, const Values& found) {
  Values left = found;
  for (const auto& verdict : verdicts) {
    left.Add({.Name = verdict.Key, .Text = verdict.Left, .WasAnswered = verdict.Is != Proof::Unknown});
  }
  return left;
}

std::size_t NumberOf(const std::vector<Verdict>& verdicts, Proof proof) {
  return static_cast<std::size_t>(std::ranges::count(verdicts, proof, &Verdict::Is));
}

std::string SaveText(const TransferTally& tally, bool isToBeSaved) {
  return tally.IsSaved       ? "saved"
         : tally.SaveWasSent ? "SAVE was sent, but what the instrument kept is not proven"
         : isToBeSaved       ? "SAVE was not sent, so what the instrument keeps is as it was"
                             : "SAVE was not needed, as none had been sent";
}

// The first line that was not sent, or whose effect is unknown, where the transfer broke off. Nothing if no line was
// sent.
std::optional<std::size_t> UnknownSince(const TransferTally& tally, const std::vector<Verdict>& verdicts) {
  if (tally.Sent == 0) {
    return std::nullopt;
  }
  const bool isUnproven = NumberOf(verdicts, Proof::Unknown) > 0 && !tally.SaveWasSent;
  return isUnproven && !tally.UnknownSince ? tally.Sent + 1 : tally.UnknownSince;
}

bool IsVerified(const ReportedValue& value) {
  return value.Verdict == NameOf(Proof::Verified);
}

// A line for each value that is not what was sent. Of the others nothing is known.
std::string UnprovenText(const std::vector<ReportedValue>& values, const Descriptions& measures) {
  std::vector<TextRow> rows{{"value", "sent", "holds", "why"}};
  for (const auto& value : values) {
    if (!IsVerified(value) && value.Verdict != NameOf(Proof::Unknown)) {
      rows.push_back({Printable(value.Key), MeasuredText(measures, value.Key, value.Sent),
                      MeasuredText(measures, value.Key, value.Left),
                      value.Cause.empty() ? value.Verdict : Joined(value.Verdict, ", ", value.Cause)});
    }
  }
  return rows.size() == 1 ? std::string{} : ColumnsText(rows);
}

int WeightOf(std::string_view outcome) {
  constexpr std::array order{outcome::done, outcome::notProven, outcome::cancelled, outcome::refused,
                             outcome::failed};
  return static_cast<int>(std::ranges::find(order, outcome) - order.begin());
}

// What the add-in's own operation came to, where it did not run to its end.
std::string_view OutcomeNameOf(const ActionTally& tally) {
  if (tally.WasMisused) {
    return outcome::cancelled;  // the box was left without an answer
  }
  switch (OutcomeOf(tally)) {
    case Outcome::Done:
      return outcome::done;
    case Outcome::Cancelled:
      return outcome::cancelled;
    case Outcome::Refused:
    case Outcome::Disabled:
      return outcome::refused;
    default:
      return outcome::failed;
  }
}

}  // namespace

void Evidence::Worsen(std::string_view outcome, std::string fact) {
  if (WeightOf(outcome) > WeightOf(outcome_)) {
    outcome_ = outcome;
  }
  if (!fact.empty()) {
    facts_.push_back(std::move(fact));
  }
}

void Evidence::TakeInstrument(const ProvingLink& link, bool isToBeSaved) {
  const auto& tally = link.Tally();
  const auto verdicts = link.Verdicts();
  auto& report = custody_.Work.Result;
  std::ranges::transform(verdicts, std::back_inserter(report.Values), ReportedOf);
  custody_.Left.Answers = LeftBy(verdicts, custody_.Found.Answers.value_or(Values{}));
  const auto verified = NumberOf(verdicts, Proof::Verified);
  report.Counts.insert(report.Counts.end(), {{"values", verdicts.size()},
                                             {"sent", tally.Sent},
                                             {"answered", tally.Answered},
                                             {"accepted", tally.Accepted},
                                             {"verified", verified},
                                             {"differs", NumberOf(verdicts, Proof::Differs)},
                                             {"unreadable", NumberOf(verdicts, Proof::Unreadable)},
                                             {"unknown", NumberOf(verdicts, Proof::Unknown)},
                                             {"save_sent", tally.SaveWasSent ? 1 : 0},
                                             {"saved", tally.IsSaved ? 1 : 0}});
  const bool isProven =
      std::ranges::all_of(verdicts, [&](const auto& verdict) { return link.IsProven(verdict); });
  NameWhatCounts(link, verdicts);
  Add(Joined(CountOf(tally.Sent, "line"), " sent, ", std::to_string(tally.Answered), " answered, ",
             std::to_string(verified), " of ", CountOf(verdicts.size(), "value"), " verified"));
  if (!link.Problem().empty()) {
    Add(link.Problem());
  } else {
    Add(SaveText(tally, isToBeSaved));
  }
  const bool isWhole = isProven && link.Problem().empty() && (!isToBeSaved || tally.IsSaved);
  if (!isWhole && ProgramInterrupt().IsRaised()) {
    Worsen(outcome::failed, "stopped by the user");
  }
  if (const auto line = UnknownSince(tally, verdicts)) {
    Worsen(outcome::failed, Joined("unknown since line ", std::to_string(*line)));
  } else if (!isWhole) {
    Worsen(tally.Sent == 0 && NumberOf(verdicts, Proof::Unknown) > 0 ? outcome::failed : outcome::notProven,
           "");
  }
}

// What --despite made of values that were not given back as they were sent.
void Evidence::NameWhatCounts(const ProvingLink& link, const std::vector<Verdict>& verdicts) {
  for (const auto& verdict : verdicts) {
    if (verdict.Is == Proof::Verified || !link.IsProven(verdict)) {
      continue;
    }
    const auto code = verdict.Is == Proof::Unreadable ? objection_code::unreadable : objection_code::rounded;
    const auto text = [&verdict](std::string_view value) { return Joined(verdict.Key, " = ", value); };
    for (auto* const objections : {&custody_.Draft.Objections, &custody_.Work.Result.Objections}) {
      Object(*objections, code, text(verdict.Sent), text(verdict.Left.value_or("(none)")));
    }
  }
}

void Evidence::ReportFileValues(const Values& found, const Values& intended, const Values& left) {
  for (const auto& change : Compare(found, intended).Differences) {
    const auto is = left.TextOf(change.Name);
    const auto proof = SameValue(is, change.B) ? Proof::Verified : Proof::Differs;
    custody_.Work.Result.Values.push_back({.Key = change.Name,
                                           .Found = change.A,
                                           .Sent = change.B,
                                           .Left = is,
                                           .Verdict = std::string{NameOf(proof)}});
  }
}

void Evidence::TakeConfiguration() {
  auto& work = custody_.Work;
  const auto content = work.Files.Read(work.ConfigFile());
  if (content.Is == DiskContent::State::Unreadable) {
    Worsen(outcome::notProven, Joined(work.ConfigFile(), " cannot be read back: ", content.Reason));
    return;
  }
  if (content.Is == DiskContent::State::Present) {
    custody_.Left.Configuration = content.Bytes;
  }
  const bool wasNotBegun = outcome_ == outcome::cancelled || outcome_ == outcome::refused;
  if (wasNotBegun && custody_.Left.Configuration == custody_.Found.Configuration) {
    Add("the file is as it was");
    return;
  }
  const auto found = FileFace(custody_.Found.Configuration.value_or(""));
  const auto intended = FileFace(custody_.Intended.Configuration.value_or(""));
  const auto left = FileFace(content.Bytes);
  ReportFileValues(found, intended, left);
  const auto wrong = Compare(intended, left).Differences;
  if (!wrong.empty()) {
    Worsen(outcome::notProven, Joined("the file does not hold what was meant: ",
                                      CountOf(wrong.size(), "value"), ", the first is ", wrong.front().Name));
  }
  const auto changed = Compare(found, left).Differences.size();
  work.Result.Counts.emplace_back("file_values_changed", changed);
  if (changed > 0) {
    Add(Joined(CountOf(changed, "value"), " of the file changed"));
  }
}

void Evidence::TakeFile(const std::string& path, const std::string& intended) {
  const auto content = custody_.Work.Files.Read(path);
  if (content.Is != DiskContent::State::Present || content.Bytes != intended) {
    Worsen(outcome::notProven, Joined(Quoted(path), " does not hold what was meant"));
  }
}

void Evidence::TakeUntouched(const std::string& key, const std::optional<std::string>& present,
                             std::string_view verdict) {
  custody_.Work.Result.Values.push_back(
      {.Key = key, .Found = present, .Left = present, .Verdict = std::string{verdict}});
}

void Evidence::TakeTally(const ActionTally& tally, bool isProvenOtherwise) {
  for (const auto& message : tally.Messages) {
    details_.Boxes.push_back(
        {.Title = message.Title, .Text = message.Text, .Answer = std::string{ButtonName(message.Answer)}});
  }
  if (tally.WasCancelled || tally.WasRefused || tally.WasMisused || !isProvenOtherwise) {
    Worsen(OutcomeNameOf(tally), "");
  }
  if (tally.WasMisused) {
    custody_.Work.Result.Worsen(exit_status::unusable);
  }
  if (!isProvenOtherwise) {
    std::ranges::for_each(ReasonsOf(tally), [this](const auto& reason) { Add(reason); });
  }
}

void Evidence::TakeRoundTrip(const std::vector<Difference>& changes) {
  for (const auto& change : changes) {
    details_.RoundTrip.push_back({.Key = change.Name, .Found = change.A, .Sent = change.B});
  }
  custody_.Work.Result.RoundTrip = details_.RoundTrip;
}

Conclusion Evidence::Conclude() {
  auto& work = custody_.Work;
  if (outcome_ != outcome::done) {
    const auto& configuration = custody_.Intended.Configuration;
    work.Out.Print(
        UnprovenText(work.Result.Values, Descriptions{WireFaceOfFile(configuration.value_or(""))}));
  }
  details_.Values = work.Result.Values;
  std::string account;
  for (const auto& fact : facts_) {
    AddListed(account, "; ", fact);
  }
  return {.Outcome = outcome_, .Account = std::move(account), .Details = std::move(details_)};
}

}  // namespace zolvane
