#include "custody/transfer/proving_link.h"

#include <algorithm>
#include <iterator>
#include <ranges>
#include <span>
#include <utility>

#include "custody/values/sides.h"
#include "host/instrument_link.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

std::string TextOf(const Verdict& verdict) {
  const auto held = verdict.Left ? Quoted(*verdict.Left) : "nothing";
  const auto why = verdict.Why == Cause::None ? NameOf(verdict.Is) : NameOf(verdict.Why);
  return Joined(verdict.Key, " holds ", held, " and not ", Quoted(verdict.Sent), " (", why, ")");
}

std::vector<std::string> KeysOf(const std::vector<Verdict>& verdicts) {
  std::vector<std::string> keys;
  std::ranges::transform(verdicts, std::back_inserter(keys), &Verdict::Key);
  return keys;
}

}  // namespace

ProvingLink::ProvingLink(std::shared_ptr<BenchLink> link, Setup setup, const InterruptFlag& interrupt)
    : BenchLink{interrupt}, link_{std::move(link)}, setup_{std::move(setup)}, lines_{setup_.Arrived} {}

bool ProvingLink::IsProven(const Verdict& verdict) const {
  return verdict.Is == Proof::Verified ||
         (setup_.LetsUnreadablePass && verdict.Is == Proof::Unreadable && verdict.Why == Cause::None) ||
         (setup_.LetsRoundedPass && CouldBeRounded(verdict));
}

std::optional<std::string> ProvingLink::Exchange(const std::string& command, Delivery& delivery) {
  if (command == saveLine) {
    return Save(command, delivery);
  }
  auto reply = PassOn(command, delivery);
  if (auto setting = SettingIn(command)) {
    Note(*std::move(setting), reply, delivery);
  }
  return reply;
}

std::optional<std::string> ProvingLink::PassOn(const std::string& command, Delivery& delivery) {
  PassOver(link_->SetStop(false));
  auto reply = HandOn(*link_, command, delivery);
  if (MetOnlyIf(link_->Stop())) {
    RaiseStop();
  }
  return reply;
}

void ProvingLink::Note(Value setting, const std::optional<std::string>& reply, const Delivery& delivery) {
  isDead_ |= !reply;
  if (!delivery.HasLeft) {
    return;
  }
  lines_.push_back({.Key = std::move(setting.Name), .Text = setting.Text.value_or(""), .Reply = reply});
  ++tally_.Sent;
  tally_.Answered += lines_.back().IsAnswered() ? 1 : 0;
  tally_.Accepted += lines_.back().IsAccepted() ? 1 : 0;
  if (!reply && !tally_.UnknownSince) {
    tally_.UnknownSince = tally_.Sent;
  }
}

std::optional<std::string> ProvingLink::Save(const std::string& command, Delivery& delivery) {
  if (!Prove() || (!EndedWithATelltale() && !HoldsStill("SAVE was not sent, as"))) {
    delivery = {.HasLeft = false, .Problem = {}, .SkippedLine = std::nullopt};
    return std::nullopt;
  }
  auto reply = PassOn(command, delivery);
  tally_.SaveWasSent = delivery.HasLeft;
  if (!reply || !SentLine{.Key = {}, .Text = {}, .Reply = reply}.IsAccepted()) {
    return reply;
  }
  tally_.IsSaved = HoldsStill("SAVE was answered, but");
  return tally_.IsSaved ? reply : std::nullopt;
}

bool ProvingLink::Prove() {
  if (isDead_) {
    problem_ = "the instrument did not answer a line, so nothing was asked again and SAVE was not sent";
    return false;
  }
  order_ = InOrderOfProof();
  left_ = WireFaceOfInstrument(*link_, order_);
  const auto verdicts = Verdicts();
  if (const auto unknown = std::ranges::find(verdicts, Proof::Unknown, &Verdict::Is);
      unknown != verdicts.end()) {
    NoteUnknownSince(unknown->Key);
    return false;
  }
  const bool isProven = std::ranges::all_of(verdicts, [this](const auto& one) { return IsProven(one); });
  problem_ = isProven ? "" : Unproven(verdicts);
  return isProven;
}

void ProvingLink::NoteUnknownSince(const std::string& key) {
  const auto sent = std::span{lines_}.subspan(setup_.Arrived.size());
  const auto line = std::ranges::find(sent, key, &SentLine::Key);
  tally_.UnknownSince = line == sent.end() ? 1 : static_cast<std::size_t>(line - sent.begin()) + 1;
  isDead_ = true;
  const auto isUnanswered = [this](const std::string& asked) { return !left_.Find(asked)->WasAnswered; };
  problem_ = Joined("the instrument did not answer for ", *std::ranges::find_if(order_, isUnanswered),
                    ", so SAVE was not sent");
}

std::string ProvingLink::Unproven(const std::vector<Verdict>& verdicts) const {
  const auto isUnproven = [this](const auto& verdict) { return !IsProven(verdict); };
  const auto count = std::ranges::count_if(verdicts, isUnproven);
  return Joined("SAVE was not sent, as ", std::to_string(count), " of ", std::to_string(verdicts.size()),
                " values did not arrive; the first: ", TextOf(*std::ranges::find_if(verdicts, isUnproven)));
}

// The values that reveal a restart are asked last, so that a restart amid the questions does not escape.
std::vector<std::string> ProvingLink::InOrderOfProof() const {
  auto arrived = Verdicts();
  std::ranges::for_each(arrived, [](Verdict& one) { one.Left = one.Sent; });
  auto keys = KeysOf(arrived);
  for (const auto& last : Telltales(arrived)) {
    const auto place = std::ranges::find(keys, last.Key);
    std::rotate(place, std::next(place), keys.end());
  }
  return keys;
}

// Whether the proof asked last for a value that reveals a restart. The order of its questions follows from what was
// sent; a value that was stored otherwise, and yet counts as proven, may upset it.
bool ProvingLink::EndedWithATelltale() const {
  return order_.empty() || Telltales(Verdicts()).back().Key == order_.back();
}

// The values that reveal a restart. One between proof and SAVE takes every value back to what was kept: to what this
// history knows of it or, if somebody else has saved since, to what was found. A value that differs from both reveals
// a restart; otherwise one that differs from each is needed.
std::vector<Verdict> ProvingLink::Telltales(const std::vector<Verdict>& verdicts) const {
  const auto differs = [](const Verdict& one, const std::optional<std::string>& before) {
    return one.Left && !(before && SameText(*before, *one.Left));
  };
  const auto fromFound = [&](const Verdict& one) { return differs(one, setup_.Found.TextOf(one.Key)); };
  const auto fromKept = [&](const Verdict& one) {
    const bool isKnown = setup_.Kept && setup_.Kept->Find(one.Key) != nullptr;
    return isKnown ? differs(one, setup_.Kept->TextOf(one.Key)) : fromFound(one);
  };
  const auto fromBoth = [&](const Verdict& one) { return fromKept(one) && fromFound(one); };
  std::vector<Verdict> telltales;
  const auto addLast = [&](const auto& changed) {
    const auto last = std::ranges::find_if(verdicts | std::views::reverse, changed);
    telltales.insert(telltales.end(), last, last == verdicts.rend() ? last : std::next(last));
  };
  addLast(fromBoth);
  if (telltales.empty()) {
    addLast(fromKept);
    addLast(fromFound);
  }
  if (telltales.empty() && !verdicts.empty()) {
    telltales.push_back(verdicts.back());
  }
  return telltales;
}

bool ProvingLink::HoldsStill(std::string_view fact) {
  for (const auto& asked : Telltales(Verdicts())) {
    const auto now = WireFaceOfInstrument(*link_, std::span{&asked.Key, 1}).InOrder().front();
    if (!now.WasAnswered || now.Text != asked.Left) {
      problem_ = Joined(fact, " the instrument ",
                        now.WasAnswered ? "no longer holds what was sent: it may have restarted"
                                        : "does not say what it holds",
                        "; asked for ", asked.Key);
      left_ = now.WasAnswered ? Values{} : left_;
      return false;
    }
  }
  return true;
}

}  // namespace zolvane
