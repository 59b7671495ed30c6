// What an operation found, meant and left, out of the history.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "custody/history/history.h"
#include "custody/transfer/wanted_state.h"
#include "zolvane/operations/custody.h"

namespace zolvane {

struct KeptOperation {
  OperationRange Numbers{};
  bool HasEnded = false;
  bool IsProven = false;
  bool Saves = true;           // it was to send SAVE
  bool SavedOrMayHave = true;  // SAVE was sent, as far as anybody knows
  bool HasSentUnreadable = false;
  Moment Found{};
  Moment Intended{};
  Moment Left{};  // of one that has ended

  // What the file may hold: what was left or, if that is not known, either end.
  std::vector<std::optional<std::string>> Ends() const {
    return HasEnded ? std::vector{Left.Configuration}
                    : std::vector{Found.Configuration, Intended.Configuration};
  }

  // The end of the file that is not `wanted`: what the operation left or, if it was cut short, whichever of found and
  // intended `wanted` is not.
  std::optional<std::string> OtherEnd(const std::optional<std::string>& wanted) const {
    return HasEnded                        ? Left.Configuration
           : wanted == Found.Configuration ? Intended.Configuration
                                           : Found.Configuration;
  }

  // What is known of the values on the instrument. It points into this object.
  Traces TracesOf() const {
    const auto pointer = [](const std::optional<Values>& values) { return values ? &*values : nullptr; };
    return {.Found = pointer(Found.Answers),
            .Intended = pointer(Intended.Answers),
            .Left = HasEnded ? pointer(Left.Answers) : nullptr,
            .IsLeftCertain = IsProven && SavedOrMayHave};
  }
};

// The operation at that place of the list; one that was resumed and what resumed it are one. Throws UsageError if the
// history has lost some of it.
KeptOperation KeptOf(History& history, const std::vector<Operation>& operations, std::size_t place);

// What the instrument held before the first of the values that no SAVE has kept since. Nothing if all are kept, or
// nobody knows.
std::optional<Values> HeldBeforeUnsaved(const History& history);

// Each value as the last of these operations left it that sent some. Of an object that the history has lost nothing is
// known. Nothing if no value is known.
std::optional<Values> LeftLast(const History& history, std::span<const Operation> operations);

// What a restart takes the instrument back to, as far as the history before that operation knows: that, or what was
// left last if all is kept. Nothing if it knows of no value.
std::optional<Values> KeptByInstrument(const History& history, std::uint64_t number);

// What the file held when it was last left, if it holds something else at present: the name of an object, empty if
// the file was not there. Nothing if it is as it was left, or if nobody knows: an operation that was cut short may
// have left anything between what it found and what it was to write.
std::optional<std::string> LeftOtherwise(const History& history, std::string_view file,
                                         const std::optional<std::string>& present);

// Whether the operation at that place, with what it resumed, has changed the configuration or the instrument, as far
// as is known.
bool HasChangedSomething(std::span<const Operation> operations, std::size_t place);

// The last operation that decides whether there is something to resume: one that changed or sent something, or proved
// that all is as it was meant. Others, such as a cancelled one, are passed over. Nothing if there is none.
std::optional<std::size_t> LastOfOurs(std::span<const Operation> operations);

// The place of the last operation that has changed something (HasChangedSomething). One that was resumed does not
// count by itself. Nothing if there is none.
std::optional<std::size_t> LastChange(const std::vector<Operation>& operations);

}  // namespace zolvane
