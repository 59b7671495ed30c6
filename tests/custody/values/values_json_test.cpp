#include "custody/values/values_json.h"

#include <gtest/gtest.h>

#include <string>

namespace zolvane {
namespace {

std::string AllBytesTwice() {
  std::string bytes;
  for (int byte = 0; byte < 512; ++byte) {
    bytes += static_cast<char>(byte);
  }
  return bytes + "\\x9b";
}

TEST(ValuesJson, SaysWhatIsKnownAndWhatWasNotAnswered) {
  Values values;
  values.Add({.Name = "STAGE1_X", .Text = "400"});
  values.Add({.Name = "NEW", .Text = std::nullopt});
  values.Add({.Name = "SILENT", .Text = std::nullopt, .WasAnswered = false});
  EXPECT_EQ(ValuesText(values),
            R"([{"name":"STAGE1_X","text":"400"},{"name":"NEW"},{"name":"SILENT","answered":false}])");
  EXPECT_EQ(ValuesIn(ValuesText(values)), values);
}

TEST(ValuesJson, KeepsEveryByteOfEveryText) {
  Values values;
  values.Add({.Name = AllBytesTwice(), .Text = AllBytesTwice()});
  EXPECT_EQ(ValuesIn(ValuesText(values)), values);
}

TEST(ValuesJson, IsNotBelievedInAnotherForm) {
  for (const auto* text : {R"([{"name":"A","answered":true}])", R"([{"answered":false,"name":"A"}])",
                           R"([{"name":"A","name":"B"}])", R"([{"name":"A"},{"name":"A"}])",
                           R"([ {"name":"A"}])", R"([{"name":"A","more":1}])"}) {
    EXPECT_FALSE(ValuesIn(text)) << text;
  }
}

TEST(ValuesJson, RefusesWhatHoldsNoValues) {
  for (const auto* text : {"", "{}", "[1]", "[{}]", R"([{"name":1}])", R"([{"name":"A","text":1}])",
                           R"([{"name":"A","answered":1}])", "[{\"name\":\"\xff\"}]"}) {
    EXPECT_FALSE(ValuesIn(text)) << text;
  }
}

}  // namespace
}  // namespace zolvane
