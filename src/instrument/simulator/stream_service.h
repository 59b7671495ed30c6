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

inline std::string BytesOf(const LineReply& reply) {
  constexpr std::string_view lineEnd = "\r\n";
  std::string bytes;
  for (const auto& line : reply.Lines) {
    bytes.append(line).append(lineEnd);
  }
  bytes.resize(bytes.size() - (reply.LacksEnd && !bytes.empty() ? lineEnd.size() : 0));
  return bytes;
}

// Ends by an exception when the stream ends.
template <class Stream>
asio::awaitable<void> InstrumentServer::ServeStream(Stream& stream, ClientWatch& watch) {
  Conversation<Stream> client{stream, watch};
  for (;;) {
    const auto command = co_await client.ReadLine();
    const auto reply = instrument_.Answer(command);
    if (setup_.Latency.count() > 0) {
      co_await client.Pause(setup_.Latency);
    }
    co_await Reply(client, reply);
  }
}

template <class Stream>
asio::awaitable<void> InstrumentServer::Reply(Conversation<Stream>& client, const LineReply& reply) {
  constexpr std::chrono::milliseconds pause{100};
  if (reply.IsClosing) {
    throw std::system_error{asio::error::make_error_code(asio::error::connection_aborted)};
  }
  if (reply.IsLate) {
    co_await client.Pause(setup_.Lateness);
  }
  const auto bytes = BytesOf(reply);
  const auto half = reply.IsSplit ? bytes.size() / 2 : 0;
  if (half > 0) {
    co_await client.Write(std::string_view{bytes}.substr(0, half));
    co_await client.Pause(pause);
  }
  if (!bytes.empty()) {
    co_await client.Write(std::string_view{bytes}.substr(half));
  }
}

}  // namespace zolvane
