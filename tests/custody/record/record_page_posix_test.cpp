// The page of a record as others see it: a parser of HTML, and a browser.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "bench/process_support.h"
#include "custody/record/sample_record.h"
#include "support/temporary_folder.h"

namespace zolvane {
namespace {

ProcessResult LookedAt(const TemporaryFolder& folder, const RecordContent& content,
                       const std::string& bytes) {
  const auto record = folder.Put("record.html", bytes);
  const auto configuration = folder.Put("configuration.ini", content.Left.Configuration);
  return RunProgram("/usr/bin/env", {"python3", ZOLVANE_SOURCE_PATH "/tests/custody/record/inert_page.py",
                                     record, configuration});
}

// Each stands in every text that comes from outside.
const std::vector<std::string>& HostileNames() {
  static const std::vector<std::string> names{
      "<script>alert(1)</script>",
      "\" onload=\"alert(1)",
      "' onclick='alert(1)",
      "</pre></svg></style></title><img src=x onerror=alert(1)>",
      "--><iframe src=\"http://192.0.2.1/\"></iframe><!--",
      "<!-- SHA-256 of all bytes before this line: 0 -->",
      "]]><svg/onload=alert(1)>",
      "&lt;b&gt;&#60;&amp",
      "a\xE2\x80\xAE"
      "b\xE2\x81\xA6",  // an override and an isolate of the direction of writing
      "\x1B[2J\x07\x01\x7F",
      "\xC2\x9B"
      "31m",
      "\xFF\xC3(\xE2\x28\xA1",
      std::string(5000, 'W'),
      "javascript:alert(1)",
      "url(http://192.0.2.1/)",
      std::string{"nul\0nul", 7},
  };
  return names;
}

RecordContent RecordWithHostile(const std::string& name) {
  auto content = SampleRecord();
  for (auto* text :
       {&content.Person, &content.Reason, &content.Machine, &content.Program, &content.Version, &content.Time,
        &content.File, &content.Link, &content.Instrument, &content.Last->Action, &content.Last->Outcome,
        &content.Last->Person, &content.Last->Reason, &content.Last->Time}) {
    *text = name;
  }
  content.Checkpoint = {name, name, name};
  content.Findings.push_back(
      {.Code = name, .Grade = Grade::Error, .File = name, .Line = 1, .Text = name, .Advice = name});
  SetValue(*content.Left.Instrument, name, name);
  SetValue(*content.Left.Instrument, name + "_X", "1");
  SetValue(*content.Left.Instrument, "MountHeight", name);
  SetValue(*content.Last->Found.Instrument, "STAGE1_X", name);
  auto& file = content.Left.Configuration;
  file = Replaced(file, "Zolvane 400", name);
  file = Replaced(file, "1/8/12 Module", name);
  file = Replaced(file, "VOL_1CHLONG_300_2", name);
  file = Replaced(file, "VolumeCorrection_8_CH_300", "VolumeCorrection_" + name);
  return content;
}

class HostileRecord : public testing::TestWithParam<std::string> {};

TEST_P(HostileRecord, StaysInertAndGivesBackItsBytes) {
  const TemporaryFolder folder;
  const auto content = RecordWithHostile(GetParam());
  const auto bytes = WriteRecord(content);
  const auto result = LookedAt(folder, content, bytes);
  EXPECT_EQ(result.Status, 0) << result.Output << result.Errors;
  const auto read = ReadRecord(bytes);
  ASSERT_TRUE(read.Content) << read.Refusal;
  EXPECT_EQ(read.Content->Left.Configuration, content.Left.Configuration);
  EXPECT_EQ(read.Content->Person, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Names, HostileRecord, testing::ValuesIn(HostileNames()),
                         [](const auto& each) { return std::to_string(each.index); });

TEST(RecordPage, OfTheSampleHasNeitherScriptNorReferenceNorEvent) {
  const TemporaryFolder folder;
  const auto result = LookedAt(folder, SampleRecord(), WriteRecord(SampleRecord()));
  EXPECT_EQ(result.Status, 0) << result.Output << result.Errors;
}

// What the script finds wrong it must be able to find.
TEST(RecordPage, WithAScriptWouldBeNoticed) {
  const TemporaryFolder folder;
  auto bytes = WriteRecord(SampleRecord());
  bytes.insert(bytes.find("<h1>"), "<script>alert(1)</script><b onclick=\"alert(1)\">x</b>");
  const auto record = folder.Put("record.html", bytes);
  const auto result = RunProgram(
      "/usr/bin/env", {"python3", ZOLVANE_SOURCE_PATH "/tests/custody/record/inert_page.py", record});
  EXPECT_EQ(result.Status, 1);
  EXPECT_NE(result.Output.find("element script"), std::string::npos) << result.Output;
  EXPECT_NE(result.Output.find("attribute onclick of b"), std::string::npos) << result.Output;
  EXPECT_NE(result.Output.find("the seal does not fit"), std::string::npos) << result.Output;
}

TEST(RecordPage, LooksAsItShouldInABrowserAndOnPaper) {
  const TemporaryFolder folder;
  const auto record = folder.Put("record.html", WriteRecord(SampleRecord()));
  const auto result = RunProgram(
      "/usr/bin/env",
      {"python3", ZOLVANE_SOURCE_PATH "/tests/custody/record/printed_page.py", record, folder.Path()},
      {.Deadline = std::chrono::minutes{8}});  // a browser on a busy machine
  EXPECT_EQ(result.Status, 0) << result.Output << result.Errors;
}

TEST(SampleRecordInTheDocuments, IsWhatThisVersionWrites) {
  ExpectKept(std::filesystem::path{ZOLVANE_SOURCE_PATH} / "docs" / "sample-record.html",
             WriteRecord(SampleRecord()));
}

}  // namespace
}  // namespace zolvane
