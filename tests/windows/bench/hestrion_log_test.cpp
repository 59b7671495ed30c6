// What HestrionBench says in its log of what the user did, and of what failed.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <regex>
#include <string>
#include <utility>

#include "support/golden.h"
#include "win32/unique_handle.h"
#include "windows/bench/hestrion_windows.h"

namespace zolvane {
namespace {

using HestrionLog = HestrionWindows;

TEST_F(HestrionLog, SaysWhatAnOperationCameToWithTheTimeOfDayAndHowLongItTook) {
  Start({});
  Press(Control(IdOfButton(queryButton)));
  EXPECT_TRUE(Logs("Query Zolvane: done ("));
  Press(Control(IdOfButton(uploadButton)));
  AnswerBox(IDOK);
  EXPECT_TRUE(Logs("Save To Zolvane: done (" + OfTheCommands(CommandsOfTheSample()) + " commands sent"));
  EXPECT_TRUE(IsAtRest());
  const std::regex line{
      R"([0-2][0-9]:[0-5][0-9]:[0-5][0-9]  Save To Zolvane: done \([^)]*; SAVE accepted\), [0-9]+\.[0-9] s\r\n)"};
  EXPECT_TRUE(std::regex_search(Log(), line)) << Log();
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 0);
}

TEST_F(HestrionLog, SaysWhatTheInstrumentCalledItselfAndWhatThatWasStoredAs) {
  Store(folder_.File("replies.json"), R"({"default": "OK", "replies": {"STATUS_STAGE": "ZV200\r\n",
      "STATUS_MECH": "96/384", "RFID READ_PERSISTENT": "0,0,5A4C0150AA7F1012,0,0", "STATUS PUMPS": "OPEN"}})");
  Start({"--link", "script:" + folder_.File("replies.json")});
  Press(Control(IdOfButton(queryButton)));
  EXPECT_TRUE(
      Logs("Found: Zolvane \"ZV200\", stored as \"Zolvane 200\"; Pipette Module \"96/384\", stored as "
           "\"96/384 Module\"; Pipette Head \"0,0,5A4C0150AA7F1012,0,0\", stored as \"96-Channel 125 "
           "ul\"; Pump Module Installed \"OPEN\", shown as \"Not Connected\"\r\n"))
      << Log();
}

TEST_F(HestrionLog, ClaimsNothingFoundThatTheInstrumentDidNotSay) {
  Store(folder_.File("replies.json"), R"({"default": null, "replies": {"STATUS_STAGE": "ZV900"}})");
  Start({"--link", "script:" + folder_.File("replies.json")});
  Press(Control(IdOfButton(queryButton)));
  for (int box = 0; box < 3; ++box) {
    AnswerBox(IDOK);
  }
  EXPECT_TRUE(Logs("Found: Zolvane \"ZV900\", not in Zolvane.ini\r\n")) << Log();
  Store(folder_.File("replies.json"), "{}");
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
  Start({"--link", "none"});
  Press(Control(IdOfButton(queryButton)));
  for (int box = 0; box < 4; ++box) {
    AnswerBox(IDOK);
  }
  EXPECT_TRUE(Logs("Query Zolvane: failed (0 of 5 commands sent"));
  EXPECT_TRUE(IsAtRest());
  EXPECT_EQ(Log().find("Found"), std::string::npos) << Log();
}

// Answers the first command and hangs up for good on the second.
TEST_F(HestrionLog, AnInstrumentUnpluggedInTheMiddleIsReportedAndThePageGoesOn) {
  const HandmadeServer instrument{[](asio::ip::tcp::acceptor& acceptor) {
    asio::ip::tcp::socket socket = acceptor.accept();
    std::string lines;
    asio::read_until(socket, asio::dynamic_buffer(lines), "\r\n");
    asio::write(socket, asio::buffer(std::string{"ZV400\r\n"}));
    lines.clear();
    asio::read_until(socket, asio::dynamic_buffer(lines), "\r\n");
    socket.close();
    acceptor.close();
  }};
  Start({"--link", instrument.Link(), "--timeout", "2"});
  Press(Control(IdOfButton(queryButton)));
  for (const auto* const step :
       {"Getting Pipette Module Type", "Enabling RFID", "Getting Pump Module Status"}) {
    EXPECT_EQ(AnswerBox(IDOK).substr(0, std::strlen(step)), step);
  }
  EXPECT_TRUE(Eventually([this] { return IsWindowEnabled(Control(IdOfButton(queryButton))) != FALSE; }));
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
  EXPECT_EQ(EventsOf(R"("event":"send","command":"STATUS_STAGE","ok":true,"reply":"ZV400")"), 1);
}

// Another program that has the configuration open for writing.
UniqueKernelHandle Opened(const std::string& file) {
  return UniqueKernelHandle{CreateFileW(std::filesystem::path{file}.c_str(), GENERIC_READ | GENERIC_WRITE,
                                        FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr)};
}

TEST_F(HestrionLog, EachChoiceThatCouldNotBeStoredIsInABoxAndInTheLogAndInTheStatus) {
  Start({});
  {
    const auto other = Opened(folder_.File("Zolvane.ini"));
    for (const auto& [box, key] : {std::pair{CheckControl::RFID, "SensorEnableRFID"},
                                   {CheckControl::Encoders, "SDXYEncodersEnable"}}) {
      Press(Control(IdOf(box)));
      EXPECT_TRUE(AnswerBox(IDOK).starts_with("Your choice could not be stored in\r\n")) << key;
      EXPECT_TRUE(Logs(std::string{"[DeviceType] "} + key + " could not be written to ")) << Log();
      EXPECT_EQ(SendMessageW(Control(IdOf(box)), BM_GETCHECK, 0, 0), BST_UNCHECKED);
    }
  }
  CloseWindow();
  EXPECT_EQ(process_->Wait(), 1);
}

std::size_t CountOf(const std::string& part, const std::string& text) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

TEST_F(HestrionLog, SaysOnceThatCharactersWereLost) {
  const auto sample = SampleFileText();
  Store(folder_.File("Zolvane.ini"), "; \xB5l\r\n" + sample);
  auto backup = sample;
  backup.replace(backup.find("Zolvane 400"), std::strlen("Zolvane 400"), "\xD0\x9A\xD0\xB0\xD0\xBD");
  Store(folder_.File("old.bak"), backup);
  Store(folder_.File("job.txt"), "import " + folder_.File("old.bak") + "\n");
  Start({"--play", folder_.File("job.txt"), "--yes"}, false);
  const std::string complaint = "characters that the encoding of a settings file lacks were written";
  EXPECT_TRUE(Logs(complaint));
  for (int message = 0; message < 20; ++message) {
    PostMessageW(Main(), WM_NULL, 0, 0);
  }
  Press(Control(IdOf(CheckControl::RFID)));
  EXPECT_TRUE(Eventually(
      [this] { return folder_.Content("Zolvane.ini").find("SensorEnableRFID=0") != std::string::npos; }));
  EXPECT_EQ(CountOf(complaint, Log()), 1U) << Log();
}

TEST_F(HestrionLog, SaysThatAnExportIntoAFileThatExistsMerges) {
  Store(folder_.File("job.txt"), "export " + folder_.File("old.bak") + "\n");
  Start({"--play", folder_.File("job.txt"), "--yes", "--replace"}, false);
  EXPECT_TRUE(Logs("old.bak\" exists: the add-in merges, so what it does not export stays in it")) << Log();
  EXPECT_TRUE(Logs("Save To File " + folder_.File("old.bak") + ": done (")) << Log();
  Order(quitId);
  EXPECT_EQ(process_->Wait(), 0) << process_->Errors();
}

}  // namespace
}  // namespace zolvane
