#include "text/host_and_port.h"

#include <gtest/gtest.h>

#include <random>

namespace zolvane {
namespace {

// "HOST PORT", or "refused".
std::string Parsed(std::string_view text, std::uint16_t lowestPort = 1) {
  const auto place = ParseHostAndPort(text, lowestPort);
  return place ? place->Host + " " + std::to_string(place->Port) : "refused";
}

TEST(HostAndPort, ANameOrAnAddressStandsInFrontOfThePort) {
  EXPECT_EQ(Parsed("localhost:4000"), "localhost 4000");
  EXPECT_EQ(Parsed("192.168.1.17:1"), "192.168.1.17 1");
  EXPECT_EQ(Parsed("h:65535"), "h 65535");
}

TEST(HostAndPort, AHostWithColonsStandsInBrackets) {
  EXPECT_EQ(Parsed("[::1]:4000"), "::1 4000");
  EXPECT_EQ(Parsed("[fe80::2%eth0]:4000"), "fe80::2%eth0 4000");
  EXPECT_EQ(Parsed("[localhost]:4000"), "localhost 4000");
  EXPECT_EQ(Parsed("::1:4000"), "refused");
}

TEST(HostAndPort, BracketsComeInPairsAroundTheHost) {
  for (const auto* text :
       {"[::1:4000", "::1]:4000", "[]:4000", "[:4000", "[[::1]]:4000", "[::1]", "[::1]4000", "a[b]:4000"}) {
    EXPECT_EQ(Parsed(text), "refused") << text;
  }
}

TEST(HostAndPort, ThePortIsAWholeNumberWithinItsBounds) {
  for (const auto* text : {"", ":", "host", "host:", ":4000", "host:0", "host:65536", "host:-1", "host:+1",
                           "host: 1", "host:1 ", "host:0x10", "host:99999999999999999999"}) {
    EXPECT_EQ(Parsed(text), "refused") << text;
  }
  EXPECT_EQ(Parsed("host:0", 0), "host 0");
}

TEST(HostAndPort, AnyBytesAreAPlaceOrNone) {
  constexpr std::string_view bytes = "[]:%.0123456789ab\n";
  std::mt19937 random{4711};
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (auto length = random() % 10; length > 0; --length) {
      text += bytes[random() % bytes.size()];
    }
    if (const auto place = ParseHostAndPort(text, 1)) {
      EXPECT_FALSE(place->Host.empty()) << text;
      EXPECT_GE(place->Port, 1) << text;
    }
  }
}

}  // namespace
}  // namespace zolvane
