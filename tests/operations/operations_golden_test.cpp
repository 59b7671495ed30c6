// Whole operations on two configurations, from the page's button to the last call they make, against lists of calls
// in tests/golden.
#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

#include "support/form_session.h"
#include "support/golden.h"

namespace zolvane {
namespace {

// Each command has to clear the stop flag, set the hold flag and be sent, each through a fresh link.
void ExpectCommandsThroughFreshLinks(const Texts& calls) {
  const Texts before{"get link", "stop=false", "get link", "hold=true", "get link"};
  for (std::size_t call = 0; call < calls.size(); ++call) {
    if (calls[call].starts_with("send ")) {
      ASSERT_GE(call, before.size());
      const auto end = calls.begin() + static_cast<std::ptrdiff_t>(call);
      EXPECT_EQ(Texts(end - static_cast<std::ptrdiff_t>(before.size()), end), before) << calls[call];
    }
  }
}

struct GoldenSession : FormSession {
  // A page on the configuration with its controls filled.
  explicit GoldenSession(const std::string& configuration) : FormSession{configuration} { LoadDefaults(); }

  void ReplyTo(const std::string& command, const std::string& reply) {
    Link().Replies[command] = {Answer(reply)};
  }

  void ExpectCallsOf(int button, const std::string& golden) {
    Calls.Clear();
    Form->PressButton(button);
    ExpectGolden(golden, Calls.Events, Readings::LeftOut);
    ExpectCommandsThroughFreshLinks(Calls.Events);
  }
};

// ---- Loading the page ----

TEST(Operations, LoadTheSmallConfiguration) {
  FormSession session{SmallConfiguration()};
  session.Form->IAddInForm_LoadDefaults();
  ExpectGolden("load_of_the_small.txt", session.Calls.Events, Readings::Kept);
}

TEST(Operations, LoadTheSample) {
  FormSession session{SampleConfiguration()};
  session.Form->IAddInForm_LoadDefaults();
  ExpectGolden("load_of_the_sample.txt", session.Calls.Events, Readings::LeftOut);
}

TEST(Operations, LeaveTheSampleAsItIsWhenItIsLoaded) {
  FormSession session{SampleConfiguration()};
  const auto before = session.Settings().Text();
  session.Form->IAddInForm_LoadDefaults();
  EXPECT_EQ(session.Settings().Text(), before);
}

// ---- Query ----

TEST(Operations, QueryOnTheSmallConfiguration) {
  GoldenSession session{SmallConfiguration()};
  session.ReplyTo("STATUS_STAGE", "ZV300\r\n");
  session.ReplyTo("STATUS_MECH", "SD\r\n");
  session.Link().Replies["RFID READ_PERSISTENT"] = {NoAnswer()};
  session.ReplyTo("STATUS PUMPS", "PUMPS OPEN\r\n");
  session.Form->PressButton(queryButton);
  ExpectGolden("query_of_the_small.txt", session.Calls.Events, Readings::Kept);
  ExpectCommandsThroughFreshLinks(session.Calls.Events);
}

TEST(Operations, QueryOnTheSample) {
  GoldenSession session{SampleConfiguration()};
  session.ReplyTo("STATUS_STAGE", "zv400\r\n");
  session.ReplyTo("STATUS_MECH", "96/384\r\n");
  session.ReplyTo("RFID READ_PERSISTENT", "1,0,5A4C0150AA7F2031,0,OK\r\n");
  session.ReplyTo("STATUS PUMPS", "PUMPS READY\r\n");
  session.ExpectCallsOf(queryButton, "query_of_the_sample.txt");
  EXPECT_EQ(session.Model().Of(ListControl::HeadType).Selected, 10);
  EXPECT_EQ(session.Model().PumpText, "Connected");
}

// ---- Upload ----

TEST(Operations, UploadOfTheSmallConfiguration) {
  GoldenSession session{SmallConfiguration()};
  session.ExpectCallsOf(uploadButton, "upload_of_the_small.txt");
}

TEST(Operations, UploadOfTheSample) {
  GoldenSession session{SampleConfiguration()};
  session.ExpectCallsOf(uploadButton, "upload_of_the_sample.txt");
  EXPECT_EQ(session.Link().Commands.size(), CommandsOfTheSample());
}

// ---- Download ----

// An instrument that holds what the upload of the sample gave it, each value three higher.
std::map<std::string, std::string> MemoryAfterTheUpload() {
  const std::string start = "send SET_CALIBRATION ";
  std::map<std::string, std::string> memory;
  std::istringstream calls{BytesOf(GoldenFile("upload_of_the_sample.txt"))};
  for (std::string line; std::getline(calls, line);) {
    const auto blank = line.rfind(' ');
    if (line.starts_with(start) && blank >= start.size()) {
      const auto key = line.substr(start.size(), blank - start.size());
      memory[key] = std::to_string(std::stol(line.substr(blank + 1)) + 3);
    }
  }
  return memory;
}

TEST(Operations, DownloadOntoTheSample) {
  GoldenSession session{SampleConfiguration()};
  session.Link().DefaultReply = Answer("SYNTAX_ERROR\r\n");
  const auto memory = MemoryAfterTheUpload();
  EXPECT_GT(memory.size(), 170U);
  for (const auto& [key, value] : memory) {
    session.ReplyTo("GET_CALIBRATION " + key, key + "=" + value + "\r\n");
  }
  session.ExpectCallsOf(downloadButton, "download_of_the_sample.txt");
}

TEST(Operations, DownloadOntoTheSmallConfiguration) {
  const std::map<std::string, std::optional<std::string>> replies{
      {"STAGE1_X", "STAGE1_X=1700.5"},
      {"STAGE1_Y", "2100"},
      {"CHUTESTAGE_X", "CHUTESTAGE_X=34021"},
      {"CHUTESTAGE_Y", std::nullopt},
      {"Delta_Z", "Delta_Z= 25.125 mm"},
      {"TipChange_Z", "x=11850.75"},
      {"TipChange_S", "x=1880"},
      {"HeadChange_S", "x=2160"},
      {"AspirateOrigin_96_384", "x=1190"},
      {"HeadEject_SD_S", "x=1700"},
      {"HeadLock_SD_S", "x=390"},
      {"PickUp_TeachTool_Z", "x=10700.5"},
      {"DropOff_TeachTool_Z", std::nullopt},
      {"TipEject_8Ch_12_S", "x=-13.126"},
      {"AspirateOrigin_8Ch_12_S", "x=1460"},
      {"PickUp_1CHSHORT_Z", "x=10800"},
      {"DropOff_1CHSHORT_Z", "x=10400"},
      {"ChuteEject_Z", "x=9400"},
      {"RackPickup_12_300_Z", "x=285"},
      {"RackEject_12_300_Z", "x=251"},
      {"WELL_A1_SD_X", "x=8433"},
      {"CHUTE_SD_X", "x=18901"},
      {"CHUTE_SD_Y", "x=16252"},
      {"NEST8_SD_X", std::nullopt},
  };
  GoldenSession session{SmallConfiguration()};
  session.Link().DefaultReply = Answer("SYNTAX_ERROR");
  for (const auto& [key, reply] : replies) {
    session.Link().Replies["GET_CALIBRATION " + key] = {reply ? Answer(*reply) : NoAnswer()};
  }
  session.ExpectCallsOf(downloadButton, "download_of_the_small.txt");
}

// ---- Export and import ----

TEST(Operations, ExportOfTheSmallConfigurationAndImportOfAnotherBackup) {
  GoldenSession session{SmallConfiguration()};
  session.Process.FileAnswers = {"/backup/small.bak", "/backup/small.bak"};
  session.ExpectCallsOf(exportButton, "export_of_the_small.txt");
  session.Settings().Load("/backup/small.bak", BytesOf(GoldenFile("small_backup.ini")));
  session.Process.BoxAnswers = {message_answer::yes};
  session.ExpectCallsOf(importButton, "import_of_the_small.txt");
}

TEST(Operations, ExportOfTheSampleAndImportOfWhatWasExported) {
  GoldenSession session{SampleConfiguration()};
  const auto before = session.Settings().Text();
  session.Process.FileAnswers = {"/backup/sample.bak", "/backup/sample.bak"};
  session.ExpectCallsOf(exportButton, "export_of_the_sample.txt");
  EXPECT_EQ(session.Settings().Text(), before);
  session.Process.BoxAnswers = {message_answer::yes};
  session.ExpectCallsOf(importButton, "import_of_the_sample.txt");
  // The offsets of the heads are no part of a backup: what is derived from them comes back without them.
  auto expected = before;
  for (const auto& [with, without] :
       std::initializer_list<std::pair<const char*, const char*>>{{",1670,380,1520,", ",1520,380,1520,"},
                                                                  {",1635,380,1485,", ",1485,380,1485,"},
                                                                  {",1620,380,1470,", ",1470,380,1470,"},
                                                                  {",1590,380,1440,", ",1440,380,1440,"},
                                                                  {",1575,380,1425,", ",1425,380,1425,"},
                                                                  {",1660,380,1510,", ",1510,380,1510,"},
                                                                  {",1600,380,1450,", ",1450,380,1450,"},
                                                                  {",1585,380,1435,", ",1435,380,1435,"},
                                                                  {",1560,380,1410,", ",1410,380,1410,"},
                                                                  {",1545,380,1395,", ",1395,380,1395,"},
                                                                  {",1615,380,1465,", ",1465,380,1465,"},
                                                                  {",1598,380,1448,", ",1448,380,1448,"},
                                                                  {",1572,380,1422,", ",1422,380,1422,"},
                                                                  {",1552,380,1402,", ",1402,380,1402,"},
                                                                  {",1650,380,1500,", ",1500,380,1500,"}}) {
    expected = Replaced(expected, with, without);
  }
  EXPECT_EQ(session.Settings().Text(), expected);
}

}  // namespace
}  // namespace zolvane
