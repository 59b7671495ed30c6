// An operation of the page, as its host sees it: by its texts in the status panel, its
// commands and its questions.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "bench/host/outcome.h"
#include "host/environment.h"

namespace zolvane {

class Operation {
 public:
  using Clock = std::chrono::steady_clock;

  // `name` is its name until a better one is known.
  Operation(std::string name, Clock::time_point begin) : name_{std::move(name)}, begin_{begin} {}

  // A command is about to be sent. Of the first one it is told how many there will be, which `folder`,
  // the program folder, decides.
  void Sends(std::string_view command, const std::string& folder);

  // A file is about to be chosen.
  void AsksForFile(FileDialogueKind kind);

  const std::string& Name() const { return name_; }

  // How many commands there will be; 0: unknown.
  std::size_t Expected() const { return expected_; }

  // "17 of 178", or "17" if the total is unknown. Empty before the first command.
  std::string Progress() const;

  // For people, in one line: how it ended, and how long it took.
  std::string Result(const ActionTally& tally, Clock::time_point now) const;

  // The button of the page that began it, if known.
  std::optional<int> Button() const { return button_; }

 private:
  void IsThatOf(int button);

  std::string name_;
  Clock::time_point begin_;
  std::optional<int> button_;
  std::size_t sent_ = 0;
  std::size_t expected_ = 0;
};

}  // namespace zolvane
