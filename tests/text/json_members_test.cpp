#include "text/json_members.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zolvane {
namespace {

struct Part {
  std::string Name;
  bool IsKnown = true;

  bool operator==(const Part&) const = default;
};

constexpr auto MembersOf(const Part*) {
  return std::tuple{Member{"name", &Part::Name, Presence::Always}, Member{"known", &Part::IsKnown}};
}

struct Whole {
  std::uint8_t Number = 0;
  std::optional<std::string> Text;
  std::vector<Part> Parts;
  std::map<std::string, std::int64_t> Counts;

  bool operator==(const Whole&) const = default;
};

constexpr auto MembersOf(const Whole*) {
  return std::tuple{Member{"number", &Whole::Number, Presence::Always}, Member{"text", &Whole::Text},
                    Member{"parts", &Whole::Parts}, Member{"counts", &Whole::Counts}};
}

const Whole whole{.Number = 7,
                  .Text = "caf\xe9",
                  .Parts = {{.Name = "a"}, {.Name = "", .IsKnown = false}},
                  .Counts = {{"lost\xff", -9007199254740992}}};

const std::string wholeText =
    R"({"number":7,"text":"caf\\xe9","parts":[{"name":"a"},{"name":"","known":false}],)"
    R"("counts":{"lost\\xff":-9007199254740992}})";

TEST(JsonMembers, LeaveOutWhatSaysNothing) {
  EXPECT_EQ(JsonOf(Whole{}).dump(), R"({"number":0})");
  EXPECT_EQ(FromJson<Whole>(R"({"number":0})"), Whole{});
}

TEST(JsonMembers, AreWrittenAndReadInOneWay) {
  EXPECT_EQ(JsonOf(whole).dump(), wholeText);
  EXPECT_EQ(FromJson<Whole>(wholeText), whole);
}

TEST(JsonMembers, ThatNobodyKnowsArePassedOver) {
  EXPECT_EQ(FromJson<Whole>(R"({"number":0,"later":[1.5,null]})"), Whole{});
}

TEST(JsonMembers, OfAnotherKindAreRefused) {
  for (const auto* text :
       {"", "{", "[]", "{}", R"({"number":"7"})", R"({"number":256})", R"({"number":-1})",
        R"({"number":1.5})", R"({"number":18446744073709551615})", R"({"number":0,"text":null})",
        R"({"number":0,"parts":{}})", R"({"number":0,"parts":[{}]})",
        R"({"number":0,"parts":[{"name":"a","known":0}]})", R"({"number":0,"counts":[]})",
        R"({"number":0,"counts":{"a":9007199254740993}})"}) {
    EXPECT_FALSE(FromJson<Whole>(text)) << text;
  }
}

}  // namespace
}  // namespace zolvane
