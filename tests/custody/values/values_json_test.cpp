#include "custody/values/values_json.h"

#include <gtest/gtest.h>

namespace zolvane {
namespace {

TEST(ValuesJson, SaysWhatIsKnownOfEachValue) {
  Values values;
  values.Add({.Name = "A", .Text = "1.50"});
  values.Add({.Name = "B", .Text = std::nullopt});
  values.Add({.Name = "C", .Text = std::nullopt, .WasAnswered = false});
  const auto* const text = R"([{"name":"A","text":"1.50"},{"name":"B"},{"answered":false,"name":"C"}])";
  EXPECT_EQ(ValuesText(values), text);
  const auto read = ValuesIn(text);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->InOrder(), values.InOrder());
}

TEST(ValuesJson, IsNotBelievedInAnotherForm) {
  for (const auto* text :
       {R"([{"answered":true,"name":"A"}])", R"([{"name":"A","name":"B"}])", R"([{"name":"A"},{"name":"A"}])",
        R"([ {"name":"A"}])", R"([{"name":"A","more":1}])", R"([{"name":"A","text":1}])", R"([{"text":"1"}])",
        R"({"name":"A"})", R"([1])", "[", ""}) {
    EXPECT_FALSE(ValuesIn(text)) << text;
  }
}

}  // namespace
}  // namespace zolvane
