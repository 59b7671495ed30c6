// A link that does not block the thread that uses it: the host's window stays alive
// while the instrument answers.
#pragma once

#include <asio/thread_pool.hpp>
#include <functional>
#include <memory>

#include "instrument/links/bench_link.h"
#include "win32/unique_handle.h"

namespace zolvane {

// Sends on a thread of its own, one and the same for all commands. Everything else is done by the caller.
class WaitingLink final : public BenchLink {
 public:
  struct Events {
    // Called before a command is sent.
    std::function<void(const std::string& command)> Sending;

    // Called when it has been answered.
    std::function<void(const std::string& command, const std::string& reply)> Answered;

    // Returns when the event is set; not before, as the caller's variables are in use until then.
    std::function<void(HANDLE event)> Wait;
  };

  // The link is not null and has been begun; the interrupt is its own. Throws std::runtime_error.
  WaitingLink(std::shared_ptr<BenchLink> inner, const InterruptFlag& interrupt, Events events);
  ~WaitingLink() override;
  WaitingLink(const WaitingLink&) = delete;
  WaitingLink& operator=(const WaitingLink&) = delete;

 private:
  std::optional<std::string> Exchange(const std::string& command, Delivery& delivery) override;

  std::shared_ptr<BenchLink> inner_;
  Events events_;
  UniqueKernelHandle done_;
  asio::thread_pool sender_{1};
};

}  // namespace zolvane
