#include "operations/table_walks.h"

#include <gtest/gtest.h>

#include <string>

#include "support/operation_fixture.h"

namespace zolvane {
namespace {

template <class Walk>
Texts NamesOf(Walk walk) {
  Texts names;
  ForEachRecord(walk, [&names](const auto& record) { names.push_back(record.Name); });
  return names;
}

TEST(TableWalks, VisitTheNamedItemsOfTheConfigurationFileFromOneOn) {
  OperationFixture fixture{
      "[CageType]\nInstalled=2\nItem0=\"zero\"\nItem1=\"c1\"\nItem2=\"c2\"\n"
      "[HeadType]\nItem1=\"h1\"\nItem2=\"h2\"\nItem4=\"h4\"\n"
      "[TipType]\nItem1=\"t1\"\nItem2=\"\",CODE\nItem3=\"t3\"\n"
      "[NestType]\nItem1=\"n1\"\n"};
  EXPECT_EQ(NamesOf(Cages(fixture.Config)), (Texts{"c1", "c2"}));
  EXPECT_EQ(NamesOf(Heads(fixture.Config)), (Texts{"h1", "h2"}));
  EXPECT_EQ(NamesOf(Tips(fixture.Config)), Texts{"t1"});
  EXPECT_EQ(NamesOf(Nests(fixture.Config)), Texts{"n1"});
}

TEST(FindMicrotiterCage, GivesTheFirstOfItsClass) {
  OperationFixture fixture{
      "[CageType]\nItem1=\"a\",SERIALDILUTE\nItem2=\"b\",MICROTITER,0,0,0,5\nItem3=\"c\",MICROTITER\n"};
  const auto cage = FindMicrotiterCage(fixture.Config);
  EXPECT_EQ(cage.ID, "2");
  EXPECT_EQ(cage.Field5, 5);
}

TEST(FindMicrotiterCage, ComparesTheClassExactly) {
  OperationFixture fixture{"[CageType]\nItem1=\"a\",microtiter\nItem2=\"b\",\"MICROTITER\"\n"};
  EXPECT_EQ(FindMicrotiterCage(fixture.Config).ID, "3");
}

TEST(FindMicrotiterCage, GivesTheEndRecordWithItsValuesWhenThereIsNone) {
  OperationFixture fixture{
      "[CageType]\nItem1=\"a\",SERIALDILUTE\nItem2=\"\",OTHER,0,0,0,7\nItem3=\"c\",MICROTITER\n"};
  const auto cage = FindMicrotiterCage(fixture.Config);
  EXPECT_EQ(cage.ID, "2");
  EXPECT_EQ(cage.Field5, 7);
}

}  // namespace
}  // namespace zolvane
