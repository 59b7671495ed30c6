// The one list on which all fakes note what they were asked, in order, and the place that decides which calls
// fail.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/status.h"

namespace zolvane {

class Journal {
 public:
  // The code that every failing call reports.
  static constexpr std::int32_t failureCode = -2147467259;

  std::vector<std::string> Events;

  // Calls that can fail, noted since the last Clear.
  std::size_t CallCount = 0;

  // The call of this number fails, counted from 1. 0: none.
  std::size_t FailingCall = 0;

  // Calls whose event makes this true fail.
  std::function<bool(std::string_view event)> FailsIf;

  // Notes a call that cannot fail.
  void Note(std::string event) { Events.push_back(std::move(event)); }

  // Notes a call that can fail; true when it has to.
  bool Fails(std::string event) {
    ++CallCount;
    const bool fails = CallCount == FailingCall || (FailsIf && FailsIf(event));
    Events.push_back(std::move(event));
    return fails;
  }

  Status Outcome(std::string event) {
    return Fails(std::move(event)) ? Status::Failure(failureCode) : Status::Success();
  }

  void FailEverythingThatStartsWith(std::string start) {
    FailsIf = [start = std::move(start)](std::string_view event) { return event.starts_with(start); };
  }

  // Does something in the middle of the calls that start so.
  void DoDuring(std::string start, std::function<void()> act) {
    FailsIf = [start = std::move(start), act = std::move(act)](std::string_view event) {
      if (event.starts_with(start)) {
        act();
      }
      return false;
    };
  }

  void Clear() {
    Events.clear();
    CallCount = 0;
  }

  // The events that start with one of these words.
  std::vector<std::string> Of(std::initializer_list<std::string_view> starts) const {
    std::vector<std::string> chosen;
    for (const auto& event : Events) {
      if (std::ranges::any_of(starts, [&event](auto start) { return event.starts_with(start); })) {
        chosen.push_back(event);
      }
    }
    return chosen;
  }

  std::size_t Count(std::string_view event) const {
    return static_cast<std::size_t>(std::ranges::count(Events, event));
  }
};

}  // namespace zolvane
