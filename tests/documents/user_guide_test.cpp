// What the user guide says in numbers about the sample.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "support/form_session.h"
#include "support/golden.h"

namespace zolvane {
namespace {

Texts LinesOf(FormSession& session) {
  return session.Settings().SplitText("\n", session.Settings().Text()).value();
}

std::size_t DifferentLines(const Texts& before, const Texts& after) {
  EXPECT_EQ(before.size(), after.size());
  std::size_t different = 0;
  for (std::size_t line = 0; line < before.size() && line < after.size(); ++line) {
    different += before[line] == after[line] ? 0 : 1;
  }
  return different;
}

// The instrument answers from now on what it was sent, and knows nothing else.
void AnswerWhatWasSent(FakeLink& link) {
  const std::string start = "SET_CALIBRATION ";
  for (const auto& command : link.Commands) {
    const auto blank = command.rfind(' ');
    if (command.starts_with(start) && blank >= start.size()) {
      const auto key = command.substr(start.size(), blank - start.size());
      link.Replies["GET_CALIBRATION " + key] = {Answer(key + "=" + command.substr(blank + 1))};
    }
  }
  link.DefaultReply = Answer("SYNTAX_ERROR");
}

TEST(UserGuide, DownloadStraightAfterAnUploadChanges26LinesOfTheSample) {
  FormSession session{SampleConfiguration()};
  session.LoadDefaults();
  const auto before = LinesOf(session);
  session.Form->PressButton(uploadButton);
  EXPECT_EQ(LinesOf(session), before);
  AnswerWhatWasSent(session.Link());
  session.Form->PressButton(downloadButton);
  EXPECT_EQ(DifferentLines(before, LinesOf(session)), 26U);
}

// A backup with or without the heads' offsets, loaded over the file that it was saved from.
std::size_t LinesChangedByARestore(bool withOffsets) {
  const std::string backup = "/backup/sample.bak";
  FormSession session{SampleConfiguration()};
  session.LoadDefaults();
  const auto before = LinesOf(session);
  session.Process.FileAnswers = {backup, backup};
  session.Form->PressButton(exportButton);
  for (const auto* key : {"SDTeachToolOffsetMM", "SDHomeSensorSeekOffsetMM", "SDPreCollectHeightMM",
                          "SDRFIDReadHeightMM", "SDHeadEjectOffsetMM"}) {
    if (withOffsets) {
      session.Settings().Set("HeadType", key, session.Value("HeadType", key), backup);
    }
  }
  session.Process.BoxAnswers = {message_answer::yes};
  session.Form->PressButton(importButton);
  return DifferentLines(before, LinesOf(session));
}

TEST(UserGuide, RestoreFromABackupChanges15HeadsOfTheSample) {
  EXPECT_EQ(LinesChangedByARestore(false), 15U);
}

TEST(UserGuide, RestoreFromABackupWithTheOffsetsAddedChangesNothing) {
  EXPECT_EQ(LinesChangedByARestore(true), 0U);
}

}  // namespace
}  // namespace zolvane
