#include "custody/record/record.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "custody/disk/sha256.h"
#include "custody/record/sample_record.h"
#include "support/long_tests.h"

namespace zolvane {
namespace {

// Small, so that each of its bits can be tried.
RecordContent SmallRecord() {
  RecordContent content;
  content.Person = "ada";
  content.Time = "2026-03-14T09:41:07.204Z";
  content.Left.Configuration = "[Z_Calibration]\r\nMountHeight=164.35\r\n";
  return content;
}

std::string AllBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) {
    bytes += static_cast<char>(byte);
  }
  return bytes;
}

void ExpectSameStates(const auto& state, const auto& expected) {
  EXPECT_EQ(state.Configuration, expected.Configuration);
  ASSERT_EQ(state.Instrument.has_value(), expected.Instrument.has_value());
  if (state.Instrument) {
    EXPECT_EQ(state.Instrument->InOrder(), expected.Instrument->InOrder());
  }
}

TEST(Record, GivesBackTheConfigurationByteForByteAndTheAnswersOfTheInstrument) {
  const auto& content = SampleRecord();
  const auto read = ReadRecord(WriteRecord(content));
  ASSERT_TRUE(read.Content) << read.Refusal;
  EXPECT_EQ(read.Refusal, "");
  ExpectSameStates(read.Content->Left, content.Left);
  ASSERT_TRUE(read.Content->Last);
  ExpectSameStates(read.Content->Last->Found, content.Last->Found);
}

TEST(Record, GivesBackWhoWhenAndWhy) {
  const auto& content = SampleRecord();
  const auto read = ReadRecord(WriteRecord(content)).Content;
  ASSERT_TRUE(read);
  EXPECT_EQ(read->Person, "M. Lindqvist");
  EXPECT_EQ(read->Reason, content.Reason);
  EXPECT_EQ(read->Time, "2026-03-14T09:41:07.204Z");
  EXPECT_EQ(read->Offset, 60);
  EXPECT_EQ(read->Machine, "LAB2-ROBOT");
  EXPECT_EQ(read->Version, "1.0.0.135");
  EXPECT_EQ(read->Instrument, "ZV400");
  EXPECT_EQ(read->Last->Number, 17U);
  EXPECT_EQ(read->Checkpoint, content.Checkpoint);
  EXPECT_EQ(read->Findings.size(), content.Findings.size());
}

TEST(Record, IsTheSameWhenItIsWrittenFromWhatWasRead) {
  const auto bytes = WriteRecord(SampleRecord());
  const auto read = ReadRecord(bytes).Content;
  ASSERT_TRUE(read);
  EXPECT_EQ(WriteRecord(*read), bytes);
}

TEST(Record, KeepsEveryByteOfEveryText) {
  auto content = SmallRecord();
  content.Person = content.Reason = content.Left.Configuration = AllBytes();
  content.Left.Instrument.emplace().Add({.Name = AllBytes(), .Text = AllBytes()});
  content.Left.Instrument->Add({.Name = "unknown", .Text = std::nullopt});
  content.Left.Instrument->Add({.Name = "silent", .Text = std::nullopt, .WasAnswered = false});
  const auto read = ReadRecord(WriteRecord(content)).Content;
  ASSERT_TRUE(read);
  EXPECT_EQ(read->Person, AllBytes());
  EXPECT_EQ(read->Reason, AllBytes());
  ExpectSameStates(read->Left, content.Left);
}

TEST(Record, OfAnEmptyConfigurationWithoutInstrumentIsReadBack) {
  const RecordContent content;
  const auto read = ReadRecord(WriteRecord(content)).Content;
  ASSERT_TRUE(read);
  ExpectSameStates(read->Left, content.Left);
  EXPECT_FALSE(read->Last);
}

TEST(Record, CutOffAnywhereIsRefused) {
  const auto bytes = WriteRecord(SampleRecord());
  std::size_t believed = 0;
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    const auto read = ReadRecord(std::string_view{bytes}.substr(0, size));
    believed += read.Content || read.Refusal.empty() ? 1 : 0;
  }
  EXPECT_EQ(believed, 0U);
}

// A bit of every byte, each in its turn; or every bit.
TEST(Record, WithAnyBitFlippedIsRefused) {
  auto bytes = WriteRecord(SmallRecord());
  ASSERT_TRUE(ReadRecord(bytes).Content);
  std::size_t believed = 0;
  for (std::size_t bit = 0; bit < 8 * bytes.size(); ++bit) {
    if (!TriesAll() && bit / 8 % 8 != bit % 8) {
      continue;
    }
    auto& byte = bytes[bit / 8];
    const char kept = byte;
    byte = static_cast<char>(byte ^ (1 << bit % 8));
    const auto read = ReadRecord(bytes);
    believed += read.Content || read.Refusal.empty() ? 1 : 0;
    byte = kept;
  }
  EXPECT_EQ(believed, 0U);
}

TEST(Record, WithSomethingAppendedIsRefused) {
  const auto bytes = WriteRecord(SmallRecord());
  EXPECT_FALSE(ReadRecord(bytes + "\n").Content);
  EXPECT_FALSE(ReadRecord(bytes + bytes).Content);
  EXPECT_FALSE(ReadRecord(bytes + "<!-- -->\n").Content);
}

TEST(Record, OfAnotherKindOfFileIsRefusedWithItsReason) {
  EXPECT_EQ(ReadRecord("").Refusal, "is no adjustment record");
  EXPECT_EQ(ReadRecord("[DeviceType]\r\nInstalled=2\r\n").Refusal, "is no adjustment record");
  EXPECT_FALSE(LooksLikeRecord("<!DOCTYPE html>\n<html></html>\n"));
  const auto record = WriteRecord(SmallRecord());
  EXPECT_TRUE(LooksLikeRecord(record));
  const auto end = record.substr(record.rfind('\n', record.size() - 2) + 1);
  EXPECT_TRUE(LooksLikeRecord("only its end\n" + end)) << end;
}

TEST(Record, RefusalsSayWhetherTheFileIsCutOffOrDamaged) {
  auto bytes = WriteRecord(SmallRecord());
  EXPECT_EQ(ReadRecord(bytes.substr(0, bytes.size() / 2)).Refusal,
            "is cut off or was changed: it does not end in the SHA-256 of a record");
  bytes[bytes.size() / 2] = '~';
  EXPECT_EQ(ReadRecord(bytes).Refusal,
            "is damaged or was changed: its SHA-256 is another than its last line says");
}

TEST(Record, DamagedInItsFirstLineIsStillTakenForOneAndRefused) {
  const auto whole = WriteRecord(SmallRecord());
  for (std::size_t at = 0; at < whole.find('\n'); ++at) {
    auto bytes = whole;
    bytes[at] = '~';
    EXPECT_EQ(ReadRecord(bytes).Refusal,
              "is damaged or was changed: its SHA-256 is another than its last line says");
    EXPECT_EQ(ReadRecord(bytes.substr(0, bytes.size() - 1)).Refusal,
              "is cut off or was changed: it does not end in the SHA-256 of a record");
  }
}

TEST(Record, SealedAgainBehindAnotherFirstLineIsRefused) {
  const auto whole = WriteRecord(SmallRecord());
  const auto end = whole.rfind("<!-- SHA-256");
  const auto other = whole.substr(1, end - 1);
  const auto bytes = other + Replaced(whole.substr(end), Sha256Hex(whole.substr(0, end)), Sha256Hex(other));
  EXPECT_EQ(ReadRecord(bytes).Refusal, "was changed: it does not begin like a record");
}

TEST(Record, OfTheSampleHasAtMost200KB) {
  EXPECT_LE(WriteRecord(SampleRecord()).size(), 200'000U);
}

TEST(Record, CallsItselfAnAdjustmentRecordAndNeverACertificate) {
  const auto bytes = WriteRecord(SampleRecord());
  EXPECT_NE(bytes.find("<h1>Adjustment record</h1>"), std::string::npos);
  EXPECT_EQ(UpperCase(bytes).find("CERTIFICATE"), std::string::npos);
}

// What a reader of the page finds, without tags.
std::string ShownBy(const RecordContent& content) {
  const auto page = WriteRecord(content);
  std::string shown;
  bool isInTag = false;
  for (const char character : page.substr(0, page.find("<pre hidden"))) {
    isInTag = character == '<' || (isInTag && character != '>');
    shown += isInTag || character == '>' || character == '\n' ? (shown.ends_with(' ') ? "" : " ")
                                                              : std::string{character};
  }
  return shown;
}

TEST(RecordPage, ShowsWhoWhenWhyAndWhat) {
  const auto shown = ShownBy(SampleRecord());
  for (const std::string_view text :
       {"Time 2026-03-14 10:41:07 +01:00 (2026-03-14T09:41:07.204Z)", "Person M. Lindqvist",
        "Reason Yearly service; stage 2 and the 8-channel nest taught again after the new gripper",
        "Model in the file Zolvane 400", "Instrument says ZV400", "File C:\\Hestrion\\Zolvane.ini",
        "Computer LAB2-ROBOT", "Program zolvane 1.0.0.135", "1f0c7be2a9d34c58b6e07d2f9a415c33",
        "9b71d224bd62f3785d96d46ad3ea3d73319bfbc2890caadae2dff72519673ca7"}) {
    EXPECT_NE(shown.find(text), std::string::npos) << text;
  }
}

TEST(RecordPage, ShowsAsFoundAndAsLeftWithBothTextsAndMillimetres) {
  const auto shown = ShownBy(SampleRecord());
  EXPECT_NE(shown.find("STAGE2_X 12391 154.888 mm 12415 155.188 mm"), std::string::npos);
  EXPECT_NE(shown.find("MountHeight 13128 164.1 mm 13148 164.35 mm"), std::string::npos);
}

TEST(RecordPage, ShowsWhereFileAndInstrumentDiffer) {
  EXPECT_NE(ShownBy(SampleRecord()).find("WASH_Y 18811 235.138 mm 18810 235.125 mm"), std::string::npos);
}

TEST(RecordPage, MapSaysWhereAPositionIsAndHowFarItMoved) {
  const auto shown = ShownBy(SampleRecord());
  EXPECT_NE(shown.find("2 STAGE2 155.188 / 24.975 moved +0.3 / −0.125"), std::string::npos);
}

// Page and data tell a missing file from an empty one.
TEST(RecordPage, SaysThatTheLastOperationFoundNoConfiguration) {
  auto content = SampleRecord();
  content.Last->Found = {};
  const auto shown = ShownBy(content);
  EXPECT_NE(shown.find("Last operation 17: upload"), std::string::npos);
  EXPECT_NE(shown.find("In the file There was no configuration before."), std::string::npos);
  EXPECT_EQ(ReadRecord(WriteRecord(content)).Content->Last->Found.Configuration, std::nullopt);
  content.Last->Found.Configuration = "";
  EXPECT_EQ(ReadRecord(WriteRecord(content)).Content->Last->Found.Configuration, "");
}

// A factor that is missing must not become millimetres.
TEST(RecordPage, GivesCountsWhereTheFactorOfTheAxisIsUnknown) {
  auto content = SampleRecord();
  content.Last.reset();
  content.Left.Instrument.reset();
  content.Left.Configuration = Replaced(content.Left.Configuration, "\"X\",0.0125,", "\"X\",0,");
  const auto shown = ShownBy(content);
  EXPECT_NE(shown.find("STAGE2 12415 1998 12415 counts 24.975 mm"), std::string::npos);
  EXPECT_EQ(shown.find("155.188"), std::string::npos);
}

TEST(RecordPage, ShowsTheFindings) {
  auto content = SmallRecord();
  content.Findings = {{.Code = "decimal-comma",
                       .Grade = Grade::Error,
                       .File = "Zolvane.ini",
                       .Line = 12,
                       .Text = "\"2,5\" is read as 2.",
                       .Advice = "Write 2.5."}};
  EXPECT_NE(ShownBy(content).find("error decimal-comma 12 &quot;2,5&quot; is read as 2. Write 2.5."),
            std::string::npos);
}

TEST(RecordPage, HasLinesForSignatures) {
  EXPECT_NE(
      ShownBy(SmallRecord()).find("Name Meaning (performed, checked, approved) Date and time Signature"),
      std::string::npos);
}

TEST(RecordPage, NamesNoInterval) {
  const auto shown = UpperCase(ShownBy(SampleRecord()));
  for (const std::string_view word : {"INTERVAL", "DUE", "VALID UNTIL", "NEXT"}) {
    EXPECT_EQ(shown.find(word), std::string::npos) << word;
  }
}

TEST(RecordPage, SaysThatNoInstrumentWasAsked) {
  EXPECT_NE(ShownBy(SmallRecord()).find("No instrument was asked."), std::string::npos);
}

// All that was said about a value is in the table at the end, even if no label of it found a place in a drawing.
TEST(RecordPage, ListsEveryValueOfTheUpload) {
  const auto shown = ShownBy(SampleRecord());
  const auto all = shown.substr(shown.find("All values"));
  const auto sent = AnswersAfterUploadOf(SampleRecord().Left.Configuration);
  for (const auto& value : sent.InOrder()) {
    EXPECT_NE(all.find(" " + value.Name + " "), std::string::npos) << value.Name;
  }
}

}  // namespace
}  // namespace zolvane
