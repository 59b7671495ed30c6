// Bringing a side to a wanted state, where for each value it is known what to expect there now. Undo, restore
// and resume are nothing else:
//
//             wanted                      expected now
//   undo      what the operation found    what it left; if it was cut short, what it found or may have sent
//   resume    what it was to send         the same
//   restore   what was recorded           what the last operation left, or anything
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "custody/transfer/proving_link.h"
#include "custody/values/values.h"

namespace zolvane {

struct Wish {
  std::string Name;
  std::optional<std::string> Wanted{};  // empty: it was not known there

  // Any of these. If there are none, anything is.
  std::vector<std::optional<std::string>> Expected{};

  // Was perhaps sent by an operation that was cut short. What an instrument out of order makes of it is
  // expected.
  std::optional<std::string> PerhapsSent{};
};

enum class Standing : std::uint8_t {
  AsWanted,  // left alone
  ToDo,
  Changed,          // neither wanted nor expected: by somebody else
  CannotBeRemoved,  // not known before
  Unreadable,       // not known before and not known now, though it may have been sent
};

struct Step {
  Wish Of;
  std::optional<std::string> Present{};
  Standing Is = Standing::Changed;
};

// ---- The wire ----

// What an operation found, was to send, and left. Null: not known.
struct Traces {
  const Values* Found = nullptr;
  const Values* Intended = nullptr;
  const Values* Left = nullptr;  // what was not answered is not known
  bool IsLeftCertain = true;     // else a restart may have taken it back to what was kept
};

// A wish for each wanted value.
std::vector<Wish> WishesFor(const Values& wanted, const Traces& traces);

// Whether to restore the old spelling of a number whose value is unchanged.
enum class Spelling : std::uint8_t { Stays, GoesBack };

// Where each stands. What is not among the answered present values is `Changed`: it is not touched.
std::vector<Step> PlanFor(const std::vector<Wish>& wishes, const Values& present, Spelling spelling);

// The lines of the values that are as wanted already, to be proven with those that are sent.
std::vector<SentLine> ArrivedOf(const std::vector<Step>& plan);

enum class Ending : std::uint8_t { Prove, Save };

// Sends what is to do, in the order of the plan, and nothing after a line without answer; then SAVE, or the
// proof alone. True if all values are proven, and saved if they were to be.
bool Bring(ProvingLink& link, const std::vector<Step>& plan, Ending ending);

// ---- A file ----

// Bytes go back as a whole if the file is as expected. `present` is empty if there is no file.
Step PlanForFile(const Wish& wish, const std::optional<std::string>& present);

// The plan value by value, "[Section] Key", for a file that somebody else changed as well: what the operation
// changed from `wanted` to `left`, and what is there now.
std::vector<Step> PlanInFile(std::string_view wanted, std::string_view left, std::string_view present);

// What the page may have made of the choices in that file. It chooses what is installed whenever it is loaded, goes
// through other choices meanwhile, and takes over what the instrument says: while an operation has not ended, any
// choice that is there may be its own.
std::string WithChoicesOf(std::string_view present, std::string_view end);

// Whether an operation that was cut short between these two states of the file may have left it as it is now.
bool CouldBeOnTheWay(const std::optional<std::string>& from, const std::optional<std::string>& to,
                     const std::optional<std::string>& present);

// The file's bytes with what is to do done. What cannot be stored in a file of its encoding stays.
std::string Brought(std::string_view present, const std::vector<Step>& plan);

}  // namespace zolvane
