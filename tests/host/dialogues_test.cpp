#include "host/dialogues.h"

#include <gtest/gtest.h>

#include <optional>

namespace zolvane {
namespace {

TEST(MessageStyle, HasTheNumbersOfTheSystem) {
  EXPECT_EQ(message_style::okOnly, 0);
  EXPECT_EQ(message_style::okCancel, 1);
  EXPECT_EQ(message_style::yesNoCancel, 3);
  EXPECT_EQ(message_style::buttonMask, 15);
  EXPECT_EQ(message_style::stopIcon, 16);
  EXPECT_EQ(message_style::exclamationIcon, 48);
  EXPECT_EQ(message_style::informationIcon, 64);
  EXPECT_EQ(message_style::bringToForeground, 65536);
}

TEST(MessageAnswer, HasTheNumbersOfTheSystem) {
  EXPECT_EQ(message_answer::ok, 1);
  EXPECT_EQ(message_answer::cancel, 2);
  EXPECT_EQ(message_answer::yes, 6);
  EXPECT_EQ(message_answer::no, 7);
}

TEST(FileDialogue, HasNoFlagsUntilTheyAreSet) {
  EXPECT_EQ(FileDialogue{}.Flags, std::nullopt);
}

TEST(FileDialogueFlag, HasTheNumbersOfTheSystem) {
  EXPECT_EQ(file_dialogue_flag::overwritePrompt, 2);
  EXPECT_EQ(file_dialogue_flag::hideReadOnly, 4);
  EXPECT_EQ(file_dialogue_flag::pathMustExist, 2048);
}

}  // namespace
}  // namespace zolvane
