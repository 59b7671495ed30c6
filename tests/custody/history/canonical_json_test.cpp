#include "custody/history/canonical_json.h"

#include <gtest/gtest.h>

#include <string>

namespace zolvane {
namespace {

std::string Canonical(const std::string& text) {
  return CanonicalJson(Json::parse(text));
}

TEST(CanonicalJson, HasNoBlanksAndSortsMembers) {
  EXPECT_EQ(Canonical(" { \"b\" : [ 1 , 2 , { } ] , \"a\" : { \"d\" : null , \"c\" : true } } "),
            R"({"a":{"c":true,"d":null},"b":[1,2,{}]})");
}

TEST(CanonicalJson, WritesWholeNumbersWithDigitsAlone) {
  EXPECT_EQ(Canonical("[0, -1, 9007199254740992, -9007199254740992]"),
            "[0,-1,9007199254740992,-9007199254740992]");
}

TEST(CanonicalJson, EscapesWhatItMustInTheShortestWay) {
  EXPECT_EQ(Canonical(R"("\u0022\u005c\u0008\u0009\u000a\u000c\u000d\u0000\u001F\u002f\u007f\u00e9\u20ac")"),
            "\"\\\"\\\\\\b\\t\\n\\f\\r\\u0000\\u001f/\x7f\xc3\xa9\xe2\x82\xac\"");
}

// U+1F600 is written D83D DE00 and comes before U+E000, although it is the larger character.
TEST(CanonicalJson, SortsMembersByTheirUtf16Units) {
  EXPECT_EQ(Canonical("{\"\xee\x80\x80\":1,\"\xf0\x9f\x98\x80\":2,\"\xc3\xa9\":3,\"a\":4,\"aa\":5,\"\":6}"),
            "{\"\":6,\"a\":4,\"aa\":5,\"\xc3\xa9\":3,\"\xf0\x9f\x98\x80\":2,\"\xee\x80\x80\":1}");
}

TEST(CanonicalJson, ReplacesBytesThatAreNotUtf8) {
  EXPECT_EQ(CanonicalJson({{"name", "a\xff\xc3z"}}), "{\"name\":\"a\xef\xbf\xbd\xef\xbf\xbdz\"}");
}

TEST(CanonicalJson, EndsWhereNestingIsNobodys) {
  const std::size_t depth = 200'000;
  const auto nested = Json::parse(std::string(depth, '[') + std::string(depth, ']'));
  EXPECT_LT(CanonicalJson(nested).size(), 300U);
}

}  // namespace
}  // namespace zolvane
