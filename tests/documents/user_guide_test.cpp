// What the user guide says in numbers about the sample.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string>

#include "support/form_session.h"
#include "support/golden.h"

namespace zolvane {
namespace {

Texts LinesOf(FormSession& session) {
  return session.Settings().SplitText("\n", session.Settings().Text()).value();
}

// One text for each changed line: what it was and what it became. A line that gained fields has been too short for
// its record, which is nothing that the guide speaks of.
Texts ChangedLines(const Texts& before, const Texts& after) {
  EXPECT_EQ(before.size(), after.size());
  Texts changed;
  for (std::size_t line = 0; line < before.size() && line < after.size(); ++line) {
    if (before[line] != after[line]) {
      const bool isTooShort = std::ranges::count(before[line], ',') < std::ranges::count(after[line], ',');
      changed.push_back(
          "\n  " + before[line] + "\nbecame\n  " + after[line] +
          (isTooShort ? "\nas the sample's line is too short: its record has more fields" : ""));
    }
  }
  return changed;
}

void ExpectChanges(std::size_t count, const Texts& changed) {
  EXPECT_EQ(changed.size(), count) << "of the sample"
                                   << std::accumulate(changed.begin(), changed.end(), std::string{});
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
  ExpectChanges(26, ChangedLines(before, LinesOf(session)));
}

// A backup with or without the heads' offsets, loaded over the file that it was saved from.
Texts LinesChangedByARestore(bool withOffsets) {
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
  return ChangedLines(before, LinesOf(session));
}

TEST(UserGuide, RestoreFromABackupChanges15HeadsOfTheSample) {
  ExpectChanges(15, LinesChangedByARestore(false));
}

TEST(UserGuide, RestoreFromABackupWithTheOffsetsAddedChangesNothing) {
  ExpectChanges(0, LinesChangedByARestore(true));
}

}  // namespace
}  // namespace zolvane
