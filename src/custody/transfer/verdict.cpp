#include "custody/transfer/verdict.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <map>

#include "config/conversions.h"
#include "config/text.h"
#include "operations/instrument_command.h"

namespace zolvane {
namespace {

constexpr std::array<std::string_view, 4> proofNames{"verified", "differs", "unreadable", "unknown"};
constexpr std::array<std::string_view, 10> causeNames{"",        "kept", "refused", "neighbour", "cut",
                                                      "rounded", "sign", "factor",  "limited",   "other"};

// ---- Causes that the two texts show ----

// Of a text that is no number the number is none, and no comparison with it holds.
struct Change {
  std::string_view Sent;
  std::string_view Left;
  double SentNumber = NumberIn(Sent);
  double LeftNumber = NumberIn(Left);

  static double NumberIn(std::string_view text) {
    return StrictNumber(text).value_or(std::numeric_limits<double>::quiet_NaN());
  }
};

bool IsNearly(double number, double other) {
  constexpr double tolerance = 1e-12;  // binary numbers do not hold every decimal
  return std::abs(number - other) <= tolerance * std::max(std::abs(number), std::abs(other));
}

bool LacksLastCharacter(const Change& change) {
  return !change.Sent.empty() && change.Left == change.Sent.substr(0, change.Sent.size() - 1);
}

std::size_t DecimalsOf(std::string_view text) {
  const auto point = text.find('.');
  return point == std::string_view::npos ? 0 : text.size() - point - 1;
}

// By half of the last place that is left, whichever way a half is rounded.
bool IsRounded(const Change& change) {
  constexpr double tolerance = 1 + 1e-9;
  const auto decimals = DecimalsOf(change.Left);
  const double half = 0.5 * std::pow(10.0, -static_cast<double>(decimals));
  return decimals < DecimalsOf(change.Sent) &&
         std::abs(change.LeftNumber - change.SentNumber) <= half * tolerance;
}

int FactorOf(const Change& change) {
  for (const int factor : {10, 100, 1000}) {
    if (IsNearly(change.LeftNumber, change.SentNumber * factor) ||
        IsNearly(change.LeftNumber * factor, change.SentNumber)) {
      return factor;
    }
  }
  return 0;
}

bool IsNearerToZero(const Change& change) {
  return change.LeftNumber * change.SentNumber >= 0 &&
         std::abs(change.LeftNumber) < std::abs(change.SentNumber);
}

struct CauseRow {
  Cause Is = Cause::Other;
  bool (*Holds)(const Change& change) = nullptr;
  bool IsTelling = true;  // hardly anybody sets such a value by chance
};

// The first that holds. `cut` comes before `factor`: 120 of which 12 is left has lost a character.
constexpr std::array<CauseRow, 8> causeRows{{
    {Cause::Cut, LacksLastCharacter},
    {Cause::Rounded, IsRounded},
    {Cause::Sign, [](const Change& change) { return change.LeftNumber == -change.SentNumber; }},
    {Cause::Factor, [](const Change& change) { return FactorOf(change) != 0; }},
    {Cause::Limited, [](const Change& change) { return IsNearly(2 * change.LeftNumber, change.SentNumber); }},
    {Cause::Cut, [](const Change& change) { return change.Sent.starts_with(change.Left); }},
    {Cause::Limited, IsNearerToZero, false},
    {Cause::Other, [](const Change&) { return true; }, false},
}};

const CauseRow& CauseOf(const Change& change) {
  return *std::ranges::find_if(causeRows, [&](const auto& row) { return row.Holds(change); });
}

// ---- Causes that the lines around it show ----

class Judge {
 public:
  Judge(std::span<const SentLine> lines, const Values& found, const Values& left)
      : lines_{lines}, found_{found}, left_{left} {
    for (std::size_t line = 0; line < lines.size(); ++line) {
      const auto [place, isNew] = last_.insert_or_assign(lines[line].Key, line);
      if (isNew) {
        keys_.push_back(lines[line].Key);
      }
    }
  }

  std::vector<Verdict> All() const {
    std::vector<Verdict> verdicts;
    std::ranges::transform(keys_, std::back_inserter(verdicts),
                           [this](const auto& key) { return Of(last_.find(key)->second); });
    return verdicts;
  }

 private:
  Verdict Of(std::size_t line) const {
    const auto& sent = lines_[line];
    const auto* const found = found_.Find(sent.Key);
    const auto* const left = left_.Find(sent.Key);
    Verdict verdict{
        .Key = sent.Key, .Found = found != nullptr ? found->Text : std::nullopt, .Sent = sent.Text};
    if (left == nullptr || !left->WasAnswered) {
      return verdict;
    }
    verdict.Left = left->Text;
    verdict.Is = IsVerified(line)                  ? Proof::Verified
                 : !verdict.Left && !verdict.Found ? Proof::Unreadable
                                                   : Proof::Differs;
    if (verdict.Is != Proof::Verified) {
      Explain(verdict, line);
    }
    return verdict;
  }

  void Explain(Verdict& verdict, std::size_t line) const {
    const bool isKept = SameValue(verdict.Left, verdict.Found);
    const auto& reply = lines_[line].Reply;
    if (isKept && reply && !lines_[line].IsAccepted()) {
      verdict.Why = Cause::Refused;
    } else if ((isKept && StandsUnderNeighbour(line)) || HoldsOfNeighbour(line)) {
      verdict.Why = Cause::Neighbour;
    } else if (verdict.Is == Proof::Differs) {
      verdict.Why = isKept          ? Cause::Kept
                    : !verdict.Left ? Cause::Other
                                    : CauseOf({verdict.Sent, *verdict.Left}).Is;
    }
    if (verdict.Left && verdict.Why == Cause::Factor) {
      verdict.Factor = FactorOf({verdict.Sent, *verdict.Left});
    }
  }

  // The text that came last for the key of this line's text.
  bool IsVerified(std::size_t line) const { return Holds(line, lines_[line].Text); }

  bool Holds(std::size_t line, std::string_view text) const {
    const auto* const left = left_.Find(lines_[line].Key);
    return left != nullptr && left->Text && SameText(*left->Text, text);
  }

  bool IsLast(std::size_t line) const { return last_.find(lines_[line].Key)->second == line; }

  // The value of this line stands where the line before put another one.
  bool StandsUnderNeighbour(std::size_t line) const {
    return line > 0 && IsLast(line - 1) && !IsVerified(line - 1) && Holds(line - 1, lines_[line].Text);
  }

  // The value of the next line stands here. That line's own value is not where it should be, or has been there
  // before.
  bool HoldsOfNeighbour(std::size_t line) const {
    return line + 1 < lines_.size() && IsLast(line + 1) && Holds(line, lines_[line + 1].Text) &&
           (!IsVerified(line + 1) || (WasThere(line + 1) && !SameText(lines_[line + 1].Text, "0")));
  }

  bool WasThere(std::size_t line) const {
    const auto* const found = found_.Find(lines_[line].Key);
    return found != nullptr && found->Text && SameText(*found->Text, lines_[line].Text);
  }

  std::span<const SentLine> lines_;
  const Values& found_;
  const Values& left_;
  std::map<std::string, std::size_t, std::less<>> last_;  // the last line of a key
  std::vector<std::string> keys_;
};

}  // namespace

std::string_view NameOf(Proof proof) {
  return proofNames.at(static_cast<std::size_t>(proof));
}

std::string_view NameOf(Cause cause) {
  return causeNames.at(static_cast<std::size_t>(cause));
}

bool SentLine::IsAnswered() const {
  const auto reply = JudgedReply(Reply.value_or(""));
  return !reply.empty() && reply.find('=') == std::string::npos &&
         std::ranges::all_of(reply, [](char one) { return one >= ' ' && one <= '~'; });
}

bool SentLine::IsAccepted() const {
  return Reply && IsAcceptance(*Reply);
}

std::vector<Verdict> Judged(std::span<const SentLine> lines, const Values& found, const Values& left) {
  return Judge{lines, found, left}.All();
}

bool CouldBeRounded(const Verdict& verdict) {
  return verdict.Why == Cause::Rounded || (verdict.Why == Cause::Kept && verdict.Left &&
                                           CauseOf({verdict.Sent, *verdict.Left}).Is == Cause::Rounded);
}

bool CouldBeDamage(std::string_view sent, std::string_view left) {
  return CauseOf({sent, left}).IsTelling;
}

}  // namespace zolvane
