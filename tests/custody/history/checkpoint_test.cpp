#include "custody/history/checkpoint.h"

#include <gtest/gtest.h>

#include <string>

namespace zolvane {
namespace {

const std::string someIdentity(32, 'f');
const std::string someHash(64, '0');
const Checkpoint ofTwelve{someIdentity, 12, someHash};

TEST(Checkpoint, IsThreeLines) {
  EXPECT_EQ(LinesOf(ofTwelve), (std::vector<std::string>{someIdentity, "12", someHash}));
}

TEST(Checkpoint, IsFoundWhereverItsWordsStandBehindEachOther) {
  const std::vector<Checkpoint> found{ofTwelve};
  EXPECT_EQ(CheckpointsIn(someIdentity + "\n12\n" + someHash + "\n"), found);
  EXPECT_EQ(CheckpointsIn("Checkpoint:\r\n" + someIdentity + "\r\n12\r\n" + someHash), found);
  EXPECT_EQ(CheckpointsIn("[Arm]\r\nSpeed=1\r\n; " + someIdentity + "\r\n; 12\r\n; " + someHash + "\r\n"),
            found);
  EXPECT_EQ(CheckpointsIn("{\"checkpoint\":[\"" + someIdentity + "\",\"12\",\"" + someHash + "\"]}"), found);
  EXPECT_EQ(CheckpointsIn("<pre>" + someIdentity + "\n12\n" + someHash + "</pre>"), found);
}

TEST(Checkpoint, IsFoundAsOftenAsItStandsThere) {
  const Checkpoint other{someIdentity, 14, std::string(64, '1')};
  EXPECT_EQ(CheckpointsIn(someIdentity + " 12 " + someHash + " text " + someIdentity + " 14 " + other.Hash),
            (std::vector<Checkpoint>{ofTwelve, other}));
}

TEST(Checkpoint, IsNotFoundInParts) {
  EXPECT_TRUE(CheckpointsIn("").empty());
  EXPECT_TRUE(CheckpointsIn(someIdentity + "\n12\n").empty());
  EXPECT_TRUE(CheckpointsIn(someIdentity + "\n-\n" + someHash).empty());
  EXPECT_TRUE(CheckpointsIn(someIdentity + "\n12 of them\n" + someHash).empty());
  EXPECT_TRUE(CheckpointsIn(someIdentity + "\n99999999999999999999\n" + someHash).empty());
  EXPECT_TRUE(CheckpointsIn(someIdentity + "f\n12\n" + someHash).empty());
  EXPECT_TRUE(CheckpointsIn(someIdentity + "\n12\n" + someHash + "0").empty());
}

}  // namespace
}  // namespace zolvane
