#include "instrument/links/link_factory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "instrument/links/sent_command.h"
#include "support/temporary_folder.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

std::string RefusedLink(const std::string& text) {
  try {
    CreateLink(text, 1.0, quietInterrupt);
  } catch (const UsageError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(LinkFactory, EveryKindOfLinkIsMade) {
  const TemporaryFolder folder;
  const auto script = folder.Put("script.json", "{}");
  for (const auto& text :
       {std::string{"sim"}, "sim:" + folder.Path("state.json"), std::string{"tcp:localhost:4000"},
        std::string{"tcp:[::1]:65535"}, std::string{"serial:/dev/ttyS0"}, std::string{"serial:COM3,115200"},
        "script:" + script, std::string{"none"}}) {
    EXPECT_NE(CreateLink(text, 1.0, quietInterrupt), nullptr) << text;
  }
}

TEST(LinkFactory, AnythingElseIsRefusedWithTheChoices) {
  for (const auto* text : {"", "simulated", "sim:", "none:", "none:x", "SIM", "usb:1", ":"}) {
    EXPECT_NE(RefusedLink(text), "accepted") << text;
  }
  EXPECT_EQ(RefusedLink("usb:1"),
            "--link takes sim, sim:FILE, tcp:HOST:PORT, serial:DEVICE[,BAUD], /dev/...[,BAUD], script:FILE "
            "or none, not \"usb:1\"");
}

TEST(LinkFactory, ThePathOfADeviceIsASerialLink) {
  EXPECT_NE(CreateLink("/dev/ttyS0", 1.0, quietInterrupt), nullptr);
  EXPECT_NE(CreateLink("/dev/ttyS0,115200", 1.0, quietInterrupt), nullptr);
  EXPECT_EQ(
      RefusedLink("/dev/ttyS0,fast"),
      "--link: serial takes DEVICE or DEVICE,BAUD with a baud rate such as 9600, not \"/dev/ttyS0,fast\"");
}

TEST(LinkFactory, AMisspeltKindIsAnsweredWithTheNearestOne) {
  EXPECT_TRUE(RefusedLink("tpc:localhost:1").ends_with("tpc:localhost:1\"; did you mean \"tcp\"?"));
  EXPECT_TRUE(RefusedLink("seriel:COM1").ends_with("seriel:COM1\"; did you mean \"serial\"?"));
}

TEST(LinkFactory, ATcpPlaceNeedsAHostAndAPort) {
  for (const auto* text : {"tcp:", "tcp:host", "tcp:host:", "tcp::4000", "tcp:host:0", "tcp:host:65536",
                           "tcp:host:40x", "tcp:host:-1"}) {
    EXPECT_EQ(RefusedLink(text), Joined("--link: tcp takes HOST:PORT with a port from 1 to 65535, not ",
                                        Quoted(std::string_view{text}.substr(4))));
  }
}

TEST(LinkFactory, ASerialPlaceNeedsADeviceAndPerhapsARate) {
  for (const auto* text :
       {"serial:", "serial:,9600", "serial:/dev/ttyS0,", "serial:/dev/ttyS0,fast", "serial:x,0"}) {
    EXPECT_EQ(RefusedLink(text),
              Joined("--link: serial takes DEVICE or DEVICE,BAUD with a baud rate such as 9600, not ",
                     Quoted(std::string_view{text}.substr(7))));
  }
}

TEST(LinkFactory, AMissingScriptIsNamed) {
  const TemporaryFolder folder;
  EXPECT_EQ(RefusedLink("script:" + folder.Path("none.json")),
            "the JSON file " + folder.Path("none.json") + " cannot be opened: No such file or directory");
  EXPECT_EQ(RefusedLink("script:"), "--link: script takes the name of a file, not \"\"");
}

TEST(LinkFactory, AScriptWithoutEndIsRefused) {
  EXPECT_EQ(RefusedLink("script:/dev/zero"),
            "/dev/zero is larger than 16 megabytes, too large for a JSON file");
}

TEST(BenchLink, NoLinkFailsEverySendAndLeavesTheReply) {
  const auto link = CreateLink("none", 1.0, quietInterrupt);
  std::string command = "STATUS_STAGE";
  std::string reply = "before";
  EXPECT_EQ(link->SendCommand(command, reply, 0), false);
  EXPECT_EQ(reply, "before");
}

TEST(BenchLink, TheStopFlagIsWhatWasSet) {
  const auto link = CreateLink("none", 1.0, quietInterrupt);
  EXPECT_EQ(link->Stop(), false);
  EXPECT_TRUE(link->SetStop(true).Ok());
  EXPECT_EQ(link->Stop(), true);
  EXPECT_TRUE(link->SetStop(false).Ok());
  EXPECT_EQ(link->Stop(), false);
  EXPECT_TRUE(link->SetHold(true).Ok());
}

TEST(BenchLink, AnInterruptOutlastsTheClearingBeforeEachCommand) {
  InterruptFlag interrupt;
  const auto link = CreateLink("sim", 1.0, interrupt);
  interrupt.Raise();
  PassOver(link->SetStop(false));
  EXPECT_EQ(link->Stop(), true);
}

TEST(BenchLink, ACommandWithALineEndIsNeverSent) {
  const auto link = CreateLink("sim", 1.0, quietInterrupt);
  std::string reply = "before";
  for (std::string command : {"RFID ON\r\nRFID OFF", "RFID ON\n", "RFID\rON"}) {
    EXPECT_EQ(link->SendCommand(command, reply, 0), false);
  }
  EXPECT_EQ(reply, "before");
}

TEST(SimulatedLink, FaultsOfTheReplyAreSeenAsAWireWouldShowThem) {
  const std::vector<std::pair<std::string, std::string>> seen{
      {"late", "failed"},    {"silent", "failed"},   {"close", "failed"}, {"no-newline", "failed"},
      {"garbage", "failed"}, {"overlong", "failed"}, {"empty", "failed"}, {"shift", "failed"},
      {"split", "KEY=7"},    {"double", "KEY=7"},    {"echo", "KEY=7"},
  };
  for (const auto& [kind, reply] : seen) {
    const auto link = CreateLink("sim", 1.0, quietInterrupt, {kind + "@2"});
    EXPECT_EQ(Send(*link, "SET_CALIBRATION KEY 7"), "OK");
    EXPECT_EQ(Send(*link, "GET_CALIBRATION KEY"), reply) << kind;
    EXPECT_EQ(Send(*link, "GET_CALIBRATION KEY"), "KEY=7") << kind;
  }
}

TEST(SimulatedLink, AReplyThatNamesNothingIsTakenAsItCame) {
  const auto link = CreateLink("sim", 1.0, quietInterrupt, {"empty@1", "shift@3", "refuse@KEY"});
  EXPECT_EQ(Send(*link, "STATUS_MECH"), "");
  EXPECT_EQ(Send(*link, "SET_CALIBRATION KEY 7"), "SYNTAX_ERROR");
  EXPECT_EQ(Send(*link, "STATUS_MECH"), "SYNTAX_ERROR");
}

TEST(SimulatedLink, FaultsOfAnotherInstrumentAreRefused) {
  try {
    CreateLink("none", 1.0, quietInterrupt, {"late@1"});
    FAIL() << "accepted";
  } catch (const UsageError& error) {
    EXPECT_STREQ(error.what(), "--fault goes with a simulated link (--link sim), not with \"none\"");
  }
}

TEST(SimulatedLink, KeepsItsMemoryInTheFileOnceItIsSaved) {
  const TemporaryFolder folder;
  const auto file = folder.Path("state.json");
  std::string reply;
  {
    const auto link = CreateLink("sim:" + file, 1.0, quietInterrupt);
    link->Begin();
    EXPECT_EQ(BytesOf(file), "{}\n");
    std::string set = "SET_CALIBRATION STAGE1_X 1612";
    std::string save = "SET_CALIBRATION SAVE";
    EXPECT_EQ(link->SendCommand(set, reply, 0), true);
    EXPECT_EQ(BytesOf(file), "{}\n");
    EXPECT_EQ(link->SendCommand(save, reply, 0), true);
  }
  const auto again = CreateLink("sim:" + file, 1.0, quietInterrupt);
  std::string get = "GET_CALIBRATION STAGE1_X";
  EXPECT_EQ(again->SendCommand(get, reply, 0), true);
  EXPECT_EQ(reply, "STAGE1_X=1612");
}

TEST(SimulatedLink, ItsFileIsCreatedWhenItBeginsAndThenOnly) {
  const TemporaryFolder folder;
  const auto link = CreateLink("sim:" + folder.Path("state.json"), 1.0, quietInterrupt);
  EXPECT_FALSE(folder.Has("state.json"));
  link->Begin();
  EXPECT_EQ(folder.Read("state.json"), "{}\n");
  folder.Put("state.json", "{ }");
  link->Begin();
  EXPECT_EQ(folder.Read("state.json"), "{ }");
}

TEST(SimulatedLink, AFileThatCannotBeCreatedWhenItBeginsIsRefused) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.Path("sub"));
  const auto link = CreateLink("sim:" + folder.Path("sub/state.json"), 1.0, quietInterrupt);
  std::filesystem::remove_all(folder.Path("sub"));
  EXPECT_THROW(link->Begin(), UsageError);
}

TEST(SimulatedLink, AStateFileThatIsNoMemoryIsRefused) {
  const TemporaryFolder folder;
  EXPECT_EQ(RefusedLink("sim:" + folder.Put("a.json", "[1]")),
            folder.Path("a.json") + ": an instrument's memory is a JSON object of keys and their values");
  EXPECT_EQ(RefusedLink("sim:" + folder.Put("b.json", R"({"KEY": 1})")),
            folder.Path("b.json") + R"(: the value of "KEY" is not a text)");
  EXPECT_EQ(RefusedLink("sim:" + folder.Path("no folder/c.json")),
            "\"" + folder.Path("no folder/c.json") + "\" is in a folder that does not exist");
  ASSERT_EQ(::mkfifo(folder.Path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(RefusedLink("sim:" + folder.Path("pipe")),
            "\"" + folder.Path("pipe") + "\" is not an ordinary file");
}

}  // namespace
}  // namespace zolvane
