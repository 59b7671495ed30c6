// The part of the server that is the same for sockets and pseudo-terminals.
#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "instrument/simulator/instrument_server.h"

namespace zolvane {

template <class Stream>
asio::awaitable<void> WaitOn(Stream& stream, std::chrono::milliseconds duration) {
  asio::steady_timer timer{stream.get_executor(), duration};
  co_await timer.async_wait(asio::use_awaitable);
}

// One client's lines and replies. Everything ends by an exception when the stream ends.
template <class Stream>
class Conversation {
 public:
  // Both outlive it.
  Conversation(Stream& stream, ClientWatch& watch) : stream_{stream}, watch_{watch} {}

  // Without its line end.
  asio::awaitable<std::string> ReadLine() {
    constexpr std::size_t longestLine = 1U << 20;
    watch_.Begin();
    const auto size = co_await asio::async_read_until(stream_, asio::dynamic_buffer(input_, longestLine),
                                                      '\n', asio::use_awaitable);
    watch_.End();
    auto line = input_.substr(0, size - 1);
    input_.erase(0, size);
    if (line.ends_with('\r')) {
      line.pop_back();
    }
    co_return line;
  }

  asio::awaitable<void> Write(std::string_view text) {
    watch_.Begin();
    co_await asio::async_write(stream_, asio::buffer(text), asio::use_awaitable);
    watch_.End();
  }

  asio::awaitable<void> Pause(std::chrono::milliseconds duration) { co_await WaitOn(stream_, duration); }

 private:
  Stream& stream_;
  ClientWatch& watch_;
  std::string input_;
};

// Ends by an exception when the stream ends.
template <class Stream>
asio::awaitable<void> InstrumentServer::ServeStream(Stream& stream, ClientWatch& watch) {
  Conversation<Stream> client{stream, watch};
  for (;;) {
    const auto command = co_await client.ReadLine();
    const auto* const fault = NextFault();
    auto reply = instrument_.Answer(command);
    if (setup_.Latency.count() > 0) {
      co_await client.Pause(setup_.Latency);
    }
    if (reply) {
      co_await Reply(client, *std::move(reply) + "\r\n", fault);
    }
  }
}

template <class Stream>
asio::awaitable<void> InstrumentServer::Reply(Conversation<Stream>& client, std::string reply,
                                              const Fault* fault) {
  constexpr std::chrono::milliseconds pause{100};
  constexpr std::size_t overlong = 2'000'000;
  if (fault == nullptr) {
    co_return co_await client.Write(reply);
  }
  switch (*fault) {
    case Fault::Late:
      co_await client.Pause(setup_.Lateness);
      co_return co_await client.Write(reply);
    case Fault::Silent:
      co_return;
    case Fault::Close:
      throw std::system_error{asio::error::make_error_code(asio::error::connection_aborted)};
    case Fault::Garbage:
      co_return co_await client.Write(std::string{"\x00\xFF\xFE=\x80\x01\r\n", 8});
    case Fault::Overlong:
      co_return co_await client.Write(std::string(overlong, 'x') + "\r\n");
    case Fault::Empty:
      co_return co_await client.Write("\r\n");
    case Fault::Split:
      co_await client.Write(std::string_view{reply}.substr(0, reply.size() / 2));
      co_await client.Pause(pause);
      co_return co_await client.Write(std::string_view{reply}.substr(reply.size() / 2));
    case Fault::NoNewline:
      co_return co_await client.Write(std::string_view{reply}.substr(0, reply.size() - 2));
  }
}

}  // namespace zolvane
