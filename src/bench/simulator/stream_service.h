// The part of the server that is the same for sockets and pseudo-terminals.
#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "bench/simulator/instrument_server.h"

namespace zolvane {

template <class Stream>
asio::awaitable<void> Wait(Stream& stream, std::chrono::milliseconds duration) {
  asio::steady_timer timer{stream.get_executor(), duration};
  co_await timer.async_wait(asio::use_awaitable);
}

template <class Stream>
asio::awaitable<void> Write(Stream& stream, std::string_view text) {
  co_await asio::async_write(stream, asio::buffer(text), asio::use_awaitable);
}

// Ends by an exception when the stream ends.
template <class Stream>
asio::awaitable<void> InstrumentServer::ServeStream(Stream& stream) {
  constexpr std::size_t longestCommand = 1U << 20;
  std::string input;
  for (;;) {
    const auto size = co_await asio::async_read_until(stream, asio::dynamic_buffer(input, longestCommand),
                                                      '\n', asio::use_awaitable);
    auto command = input.substr(0, size - 1);
    input.erase(0, size);
    if (command.ends_with('\r')) {
      command.pop_back();
    }
    const auto* const fault = NextFault();
    auto reply = instrument_.Answer(command);
    if (setup_.Latency.count() > 0) {
      co_await Wait(stream, setup_.Latency);
    }
    if (reply) {
      co_await Reply(stream, *std::move(reply) + "\r\n", fault);
    }
  }
}

template <class Stream>
asio::awaitable<void> InstrumentServer::Reply(Stream& stream, std::string reply, const Fault* fault) {
  constexpr std::chrono::milliseconds pause{100};
  constexpr std::size_t overlong = 2'000'000;
  if (fault == nullptr) {
    co_return co_await Write(stream, reply);
  }
  switch (*fault) {
    case Fault::Late:
      co_await Wait(stream, setup_.Lateness);
      co_return co_await Write(stream, reply);
    case Fault::Silent:
      co_return;
    case Fault::Close:
      throw std::system_error{asio::error::make_error_code(asio::error::connection_aborted)};
    case Fault::Garbage:
      co_return co_await Write(stream, std::string{"\x00\xFF\xFE=\x80\x01\r\n", 8});
    case Fault::Overlong:
      co_return co_await Write(stream, std::string(overlong, 'x') + "\r\n");
    case Fault::Empty:
      co_return co_await Write(stream, "\r\n");
    case Fault::Split:
      co_await Write(stream, std::string_view{reply}.substr(0, reply.size() / 2));
      co_await Wait(stream, pause);
      co_return co_await Write(stream, std::string_view{reply}.substr(reply.size() / 2));
    case Fault::NoNewline:
      co_return co_await Write(stream, std::string_view{reply}.substr(0, reply.size() - 2));
  }
}

}  // namespace zolvane
