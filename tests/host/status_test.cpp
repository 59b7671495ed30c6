#include "host/status.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

namespace zolvane {
namespace {

TEST(Status, IsSuccessWithTheCodeZero) {
  EXPECT_TRUE(Status::Success().Ok());
  EXPECT_EQ(Status::Success().Code(), 0);
}

TEST(Status, KeepsTheCodeOfAFailure) {
  EXPECT_FALSE(Status::Failure(-2147467259).Ok());
  EXPECT_EQ(Status::Failure(-2147467259).Code(), -2147467259);
}

TEST(Status, IsAFailureAlsoWithoutACode) {
  EXPECT_FALSE(Status::Failure().Ok());
  EXPECT_EQ(Status::Failure().Code(), -1);
}

TEST(AssignIf, StoresAValueThatIsThere) {
  std::string target = "before";
  AssignIf(target, std::optional<std::string>{"after"});
  EXPECT_EQ(target, "after");
  AssignIf(target, std::optional<std::string>{""});
  EXPECT_EQ(target, "");
}

TEST(Status, GoesOnToTheNextStepAfterASuccess) {
  EXPECT_TRUE(Status::Success().Then([] { return Status::Success(); }).Ok());
  EXPECT_EQ(Status::Success().Then([] { return Status::Failure(5); }).Code(), 5);
}

TEST(Status, KeepsItsFailureAndTakesNoFurtherStep) {
  bool isTaken = false;
  const auto step = [&isTaken] {
    isTaken = true;
    return Status::Success();
  };
  EXPECT_EQ(Status::Failure(5).Then(step).Code(), 5);
  EXPECT_FALSE(isTaken);
}

TEST(AssignIf, KeepsTheTargetWithoutAValue) {
  std::int32_t target = 7;
  AssignIf(target, std::optional<std::int32_t>{});
  EXPECT_EQ(target, 7);
}

template <class Target, class Value>
concept Assignable = requires(Target& target, std::optional<Value> value) { AssignIf(target, value); };

TEST(AssignIf, TakesOnlyAValueOfTheTargetsOwnType) {
  EXPECT_TRUE((Assignable<std::int32_t, std::int32_t>));
  EXPECT_FALSE((Assignable<std::int16_t, std::int32_t>));
  EXPECT_FALSE((Assignable<std::int32_t, double>));
}

TEST(MetOnlyIf, TakesAConditionThatCouldNotBeReadForNotMet) {
  EXPECT_TRUE(MetOnlyIf(true));
  EXPECT_FALSE(MetOnlyIf(false));
  EXPECT_FALSE(MetOnlyIf(std::nullopt));
}

}  // namespace
}  // namespace zolvane
