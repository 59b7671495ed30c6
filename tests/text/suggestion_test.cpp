#include "text/suggestion.h"

#include <gtest/gtest.h>

#include <array>

namespace zolvane {
namespace {

constexpr std::array<std::string_view, 5> words{"upload", "download", "import", "--trace", "--trace-reads"};

TEST(Suggestion, IsTheNameWithTheFewestSlips) {
  for (const auto* typed : {"uplod", "upload", "UPLOAD", "uplaod", "uploads", "upliad"}) {
    EXPECT_EQ(NearestName(typed, words), "upload") << typed;
  }
  EXPECT_EQ(NearestName("dwonlod", words), "download");
  EXPECT_EQ(NearestName("--tarce", words), "--trace");
  EXPECT_EQ(NearestName("--trace-read", words), "--trace-reads");
}

TEST(Suggestion, IsTheNameThatTheWordBegins) {
  EXPECT_EQ(NearestName("down", words), "download");
  EXPECT_EQ(NearestName("imp", words), "import");
}

TEST(Suggestion, IsNoneForAWordThatIsNearNoName) {
  for (const auto* typed : {"", "u", "frobnicate", "exit", "--verbose"}) {
    EXPECT_EQ(NearestName(typed, words), "") << typed;
  }
  EXPECT_EQ(NearestName(std::string(100000, 'u'), words), "");
}

TEST(Suggestion, IsPutAsAQuestion) {
  EXPECT_EQ(DidYouMean("uplod", words), "; did you mean \"upload\"?");
  EXPECT_EQ(DidYouMean("frobnicate", words), "");
}

}  // namespace
}  // namespace zolvane
