#include "text/plain_json.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace zolvane {
namespace {

struct PlainPart {
  std::string Name;
  std::int64_t Size = 0;

  friend bool operator==(const PlainPart&, const PlainPart&) = default;
};

constexpr auto MembersOf(const PlainPart*) {
  return std::tuple{Member{"name", &PlainPart::Name, Presence::Always}, Member{"size", &PlainPart::Size}};
}

struct PlainWhole {
  std::uint8_t Number = 0;
  std::vector<PlainPart> Parts;
  std::map<std::string, int> Counts;

  friend bool operator==(const PlainWhole&, const PlainWhole&) = default;
};

constexpr auto MembersOf(const PlainWhole*) {
  return std::tuple{Member{"number", &PlainWhole::Number, Presence::Always},
                    Member{"parts", &PlainWhole::Parts}, Member{"counts", &PlainWhole::Counts}};
}

const std::string plainText =
    R"({"counts":{"all":-12,"none":0},"number":255,"parts":[{"name":"a b~"},{"size":9007199254740992,"name":""}]})";

TEST(PlainJson, GivesWhatTheLibraryGives) {
  const auto read = FromPlainJson<PlainWhole>(plainText);
  EXPECT_EQ(read, (PlainWhole{255, {{"a b~", 0}, {"", std::int64_t{1} << 53}}, {{"all", -12}, {"none", 0}}}));
  EXPECT_EQ(read, FromJson<PlainWhole>(plainText));
  EXPECT_EQ(FromPlainJson<PlainWhole>(R"({"number":0,"parts":[],"counts":{}})"), PlainWhole{});
}

TEST(PlainJson, LeavesEveryOtherSpellingToTheLibrary) {
  for (const auto* const text :
       {R"({ "number":1})", R"({"number":1} )", R"({"number":1,"other":2})", R"({"number":1,"number":2})",
        R"({"number":1.0})", R"({"number":1,"parts":[{"name":"a\"b"}]})",
        "{\"number\":1,\"parts\":[{\"name\":\"\xC3\xA4\"}]}"}) {
    EXPECT_FALSE(FromPlainJson<PlainWhole>(text)) << text;
  }
}

TEST(PlainJson, TakesNothingThatTheLibraryRefuses) {
  for (const auto* const text :
       {"", "{", "{}", "[]", "1", R"({"number":01})", R"({"number":-00})", R"({"number":256})",
        R"({"number":-1})", R"({"number":"1"})", R"({"number":1,})", R"({"number":1,"counts":{"a":1,}})",
        R"({"number":1,"parts":[{}]})", R"({"number":1,"parts":[{"name":"a","size":9007199254740993}]})",
        R"({"number":1,"parts":[{"name":"a)", "{\"number\":1,\"parts\":[{\"name\":\"\x1f\"}]}",
        R"({"number":+1})", R"({"number":})"}) {
    EXPECT_FALSE(FromPlainJson<PlainWhole>(text)) << text;
    EXPECT_FALSE(FromJson<PlainWhole>(text)) << text;
  }
}

// Any other byte at any place: declined, or read as the library reads it.
TEST(PlainJson, NeverDisagreesWithTheLibrary) {
  std::size_t taken = 0;
  for (std::size_t at = 0; at < plainText.size(); ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      auto text = plainText;
      text[at] = static_cast<char>(byte);
      if (const auto read = FromPlainJson<PlainWhole>(text)) {
        ASSERT_EQ(read, FromJson<PlainWhole>(text)) << text;
        ++taken;
      }
    }
  }
  EXPECT_GT(taken, plainText.size());
}

}  // namespace
}  // namespace zolvane
