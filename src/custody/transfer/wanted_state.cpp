#include "custody/transfer/wanted_state.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "custody/transfer/verdict.h"
#include "custody/values/file_fields.h"
#include "custody/values/sides.h"
#include "files/sectioned_text.h"
#include "host/instrument_link.h"
#include "text/joined.h"

namespace zolvane {
namespace {

using Text = std::optional<std::string>;

bool IsExpected(const Wish& wish, const Text& present) {
  return wish.Expected.empty() ||
         std::ranges::any_of(wish.Expected, [&](const auto& text) { return SameValue(text, present); }) ||
         (wish.PerhapsSent && present && CouldBeDamage(*wish.PerhapsSent, *present));
}

bool IsAsWanted(const Wish& wish, const Text& present, Spelling spelling) {
  const bool isOurSpelling = spelling == Spelling::GoesBack && std::ranges::count(wish.Expected, present) > 0;
  return present == wish.Wanted || (SameValue(present, wish.Wanted) && !isOurSpelling);
}

Standing StandingOf(const Wish& wish, const Text& present, Spelling spelling) {
  return IsAsWanted(wish, present, spelling) ? Standing::AsWanted
         : !IsExpected(wish, present)        ? Standing::Changed
         : !wish.Wanted                      ? Standing::CannotBeRemoved
                                             : Standing::ToDo;
}

const Value* Known(const Values* values, const std::string& name) {
  const auto* const value = values != nullptr ? values->Find(name) : nullptr;
  return value != nullptr && value->WasAnswered ? value : nullptr;
}

// What an operation that was cut short may have left: what it found, what it was to send, and what belongs to
// the key behind this one, should the instrument have stored that here.
void ExpectWhatWasBegun(Wish& wish, const Traces& traces) {
  if (const auto* const found = Known(traces.Found, wish.Name)) {
    wish.Expected.push_back(found->Text);
  }
  const auto* const intended = Known(traces.Intended, wish.Name);
  if (intended == nullptr) {
    return;
  }
  wish.PerhapsSent = intended->Text;
  const auto& all = traces.Intended->InOrder();
  const auto place = static_cast<std::size_t>(intended - all.data());
  for (std::size_t at = place; at < std::min(place + 2, all.size()); ++at) {
    wish.Expected.push_back(all[at].Text);
  }
}

// The line of a record with one of its pieces exchanged.
std::string WithPiece(std::string_view line, std::size_t piece, const std::string& text) {
  auto pieces = PiecesOf(line);
  pieces.resize(std::max(pieces.size(), piece + 1));
  pieces[piece] = text;
  std::string changed;
  for (const auto& one : pieces) {
    changed.append(&one == &pieces.front() ? "" : ",").append(one);
  }
  return changed;
}

}  // namespace

// ---- The wire ----

std::vector<Wish> WishesFor(const Values& wanted, const Traces& traces) {
  std::vector<Wish> wishes;
  for (const auto& value : wanted.InOrder()) {
    Wish wish{.Name = value.Name, .Wanted = value.Text};
    const auto* const left = Known(traces.Left, value.Name);
    if (left == nullptr) {
      ExpectWhatWasBegun(wish, traces);
    } else {
      wish.Expected.push_back(left->Text);
      const auto* const found = traces.IsLeftCertain ? nullptr : Known(traces.Found, value.Name);
      if (found != nullptr) {
        wish.Expected.push_back(found->Text);
      }
    }
    wishes.push_back(std::move(wish));
  }
  return wishes;
}

std::vector<Step> PlanFor(const std::vector<Wish>& wishes, const Values& present, Spelling spelling) {
  std::vector<Step> plan;
  for (const auto& wish : wishes) {
    const auto* const value = Known(&present, wish.Name);
    plan.push_back({.Of = wish,
                    .Present = value != nullptr ? value->Text : std::nullopt,
                    .Is = value != nullptr ? StandingOf(wish, value->Text, spelling) : Standing::Changed});
  }
  return plan;
}

std::vector<SentLine> ArrivedOf(const std::vector<Step>& plan) {
  std::vector<SentLine> lines;
  for (const auto& step : plan) {
    if (step.Is == Standing::AsWanted && step.Of.Wanted) {
      lines.push_back({.Key = step.Of.Name, .Text = *step.Of.Wanted, .Reply = std::nullopt});
    }
  }
  return lines;
}

bool Bring(ProvingLink& link, const std::vector<Step>& plan, Ending ending) {
  std::string reply;
  const auto send = [&](std::string line) { return MetOnlyIf(link.SendCommand(line, reply, 0)); };
  for (const auto& step : plan) {
    if (step.Is == Standing::ToDo &&
        !send(Joined(settingStart, step.Of.Name, " ", step.Of.Wanted.value_or("")))) {
      return false;
    }
  }
  return ending == Ending::Prove ? link.Prove() : send(std::string{saveLine}) && link.Tally().IsSaved;
}

// ---- A file ----

Step PlanForFile(const Wish& wish, const Text& present) {
  const bool isExpected = wish.Expected.empty() || std::ranges::count(wish.Expected, present) > 0;
  return {.Of = wish,
          .Present = present,
          .Is = present == wish.Wanted ? Standing::AsWanted
                : isExpected           ? Standing::ToDo
                                       : Standing::Changed};
}

std::vector<Step> PlanInFile(std::string_view wanted, std::string_view left, std::string_view present) {
  const auto now = FileFace(present);
  std::vector<Wish> wishes;
  Values there{NameCase::Ignored};
  for (const auto& change : Compare(FileFace(wanted), FileFace(left)).Differences) {
    wishes.push_back({.Name = change.Name, .Wanted = change.A, .Expected = {change.B}});
    const auto* const value = now.Find(change.Name);
    there.Add({.Name = change.Name, .Text = value != nullptr ? value->Text : std::nullopt});
  }
  return PlanFor(wishes, there, Spelling::GoesBack);
}

std::string WithChoicesOf(std::string_view present, std::string_view end) {
  std::vector<Step> choices;
  for (const auto& change : Compare(FileFace(end), FileFace(present)).Differences) {
    if (change.B && change.Name.ends_with("] Installed")) {
      choices.push_back({.Of = {.Name = change.Name, .Wanted = change.B}, .Is = Standing::ToDo});
    }
  }
  return Brought(end, choices);
}

// However it is spelled, and wherever in the section.
bool CouldBeOnTheWay(const Text& from, const Text& to, const Text& present) {
  if (present == from || present == to) {
    return true;
  }
  const auto now = present.value_or("");
  const auto end = WithChoicesOf(now, to.value_or(""));
  const auto brought = Brought(now, PlanInFile(end, from.value_or(""), now));
  return Compare(FileFace(brought), FileFace(end)).Differences.empty();
}

std::string Brought(std::string_view present, const std::vector<Step>& plan) {
  SectionedText file{std::string{present}};
  for (const auto& step : plan) {
    const auto place = step.Is == Standing::ToDo ? PlaceNamed(step.Of.Name) : std::nullopt;
    if (!place) {
      continue;
    }
    const auto line = file.Find(place->Section, place->Key).value_or("");
    const auto wanted = step.Of.Wanted.value_or("");
    const auto value = place->Piece ? WithPiece(line, *place->Piece, wanted) : wanted;
    if (const auto edit = file.PlanValue(place->Section, place->Key, value)) {
      file.Apply(*edit);
    }
  }
  return file.Bytes();
}

}  // namespace zolvane
