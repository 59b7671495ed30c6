#include "bench/windows/waiting_link.h"

#include <asio/post.hpp>
#include <future>
#include <stdexcept>
#include <utility>

namespace zolvane {

WaitingLink::WaitingLink(std::shared_ptr<BenchLink> inner, const InterruptFlag& interrupt, Events events)
    : BenchLink{interrupt},
      inner_{std::move(inner)},
      events_{std::move(events)},
      done_{CreateEventW(nullptr, FALSE, FALSE, nullptr)} {
  if (!done_) {
    throw std::runtime_error{"the link cannot be waited for"};
  }
}

WaitingLink::~WaitingLink() = default;

// The inner link's stop flag is that of one command, and is handed on. An interrupt is
// not: it is seen here as well.
std::optional<std::string> WaitingLink::Exchange(const std::string& command, Delivery& delivery) {
  events_.Sending(command);
  PassOver(inner_->SetStop(false));
  std::string line = command;
  std::string reply;
  std::packaged_task<bool()> send{[&] { return inner_->SendCommand(line, reply, 0).value_or(false); }};
  auto sent = send.get_future();
  asio::post(sender_, [&] {
    send();
    SetEvent(done_.Get());
  });
  events_.Wait(done_.Get());
  const bool isAnswered = sent.get();
  delivery = inner_->LastDelivery();
  if (!Interrupt().IsRaised() && inner_->Stop().value_or(false)) {
    RaiseStop();
  }
  if (!isAnswered) {
    return std::nullopt;
  }
  events_.Answered(command, reply);
  return reply;
}

}  // namespace zolvane
