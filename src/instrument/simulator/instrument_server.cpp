#include "instrument/simulator/instrument_server.h"

#include <deque>
#include <system_error>
#include <utility>

#include "instrument/simulator/stream_service.h"
#include "text/host_and_port.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

using asio::ip::tcp;

tcp::endpoint EndpointOf(asio::io_context& io, const std::string& place) {
  const auto hostAndPort = ParseHostAndPort(place, 0);
  if (!hostAndPort) {
    throw UsageError{Joined("--listen takes HOST:PORT, not ", Quoted(place))};
  }
  tcp::resolver resolver{io};
  return *resolver.resolve(hostAndPort->Host, std::to_string(hostAndPort->Port), tcp::resolver::passive)
              .begin();
}

std::string NameOf(const tcp::endpoint& place) {
  const auto address = place.address().to_string();
  return "tcp:" + (place.address().is_v6() ? "[" + address + "]" : address) + ":" +
         std::to_string(place.port());
}

}  // namespace

// The clients in the order in which they came; the first is being served.
class ClientQueue final : public ClientWatch {
 public:
  ClientQueue(asio::io_context& io, std::chrono::milliseconds patience)
      : patience_{patience}, arrival_{io}, end_{io}, current_{io} {}

  void Join(tcp::socket client) {
    waiting_.push_back(std::move(client));
    arrival_.cancel();
    if (waiting_.size() == 1) {
      Await(isAwaited_);
    }
  }

  // Waits for the next one and lets go of the one before.
  asio::awaitable<tcp::socket*> Next() {
    Await(false);
    current_.close(ignored_);
    while (waiting_.empty()) {
      arrival_.expires_at(asio::steady_timer::time_point::max());
      co_await arrival_.async_wait(asio::redirect_error(asio::use_awaitable, ignored_));
    }
    current_ = std::move(waiting_.front());
    waiting_.pop_front();
    co_return &current_;
  }

  void Begin() override { Await(true); }
  void End() override { Await(false); }

 private:
  // Patience starts afresh with each line and each reply, and when the first other client comes.
  void Await(bool isAwaited) {
    isAwaited_ = isAwaited;
    end_.cancel();
    if (!isAwaited_ || waiting_.empty()) {
      return;
    }
    end_.expires_after(patience_);
    end_.async_wait([this](std::error_code error) {
      if (!error && isAwaited_ && end_.expiry() <= std::chrono::steady_clock::now()) {
        current_.close(ignored_);
      }
    });
  }

  std::chrono::milliseconds patience_;
  asio::steady_timer arrival_;
  asio::steady_timer end_;
  tcp::socket current_;
  std::deque<tcp::socket> waiting_;
  std::error_code ignored_;
  bool isAwaited_ = false;
};

namespace {

asio::awaitable<void> AcceptClients(tcp::acceptor acceptor, std::shared_ptr<ClientQueue> clients) {
  constexpr std::chrono::milliseconds pauseAfterFailure{100};
  for (;;) {
    std::error_code error;
    auto client = co_await acceptor.async_accept(asio::redirect_error(asio::use_awaitable, error));
    if (error) {  // most likely the process may not open any more files for now
      co_await WaitOn(acceptor, pauseAfterFailure);
      continue;
    }
    client.set_option(tcp::no_delay{true}, error);
    clients->Join(std::move(client));
  }
}

}  // namespace

std::string InstrumentServer::ServeTcp(asio::io_context& io, const std::string& place) {
  try {
    tcp::acceptor acceptor{io, EndpointOf(io, place)};
    auto name = NameOf(acceptor.local_endpoint());
    const auto clients = std::make_shared<ClientQueue>(io, setup_.Patience);
    asio::co_spawn(io, AcceptClients(std::move(acceptor), clients), asio::detached);
    asio::co_spawn(io, ServeClients(clients), asio::detached);
    return name;
  } catch (const std::system_error& error) {
    throw UsageError{"cannot listen on " + place + ": " + error.code().message()};
  }
}

asio::awaitable<void> InstrumentServer::ServeClients(std::shared_ptr<ClientQueue> clients) {
  for (;;) {
    auto* const client = co_await clients->Next();
    try {
      co_await ServeStream(*client, *clients);
    } catch (const std::system_error&) {
      continue;  // this client has gone; the next one may come
    }
  }
}

}  // namespace zolvane
