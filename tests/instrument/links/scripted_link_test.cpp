#include "instrument/links/scripted_link.h"

#include <gtest/gtest.h>

#include <random>

#include "instrument/links/sent_command.h"
#include "support/temporary_folder.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

class ScriptedLinkTest : public testing::Test {
 protected:
  ScriptedLink Link(std::string_view script) {
    return {ReadLinkScript(folder_.Put("script.json", script)), quietInterrupt};
  }

  // What is wrong with the script, behind the file's name.
  std::string Refusal(std::string_view script) {
    const auto file = folder_.Put("script.json", script);
    try {
      ReadLinkScript(file);
    } catch (const UsageError& error) {
      const std::string text = error.what();
      EXPECT_TRUE(text.starts_with(file + ": ")) << text;
      return text.substr(file.size() + 2);
    }
    return "accepted";
  }

  // The reply, or "failed".
  static std::string Send(ScriptedLink& link, std::string command) {
    std::string reply = "as it was";
    if (link.SendCommand(command, reply, 0) != true) {
      EXPECT_EQ(reply, "as it was");
      return "failed";
    }
    return reply;
  }

  TemporaryFolder folder_;
};

TEST_F(ScriptedLinkTest, AMatchingCommandGetsItsTextLineEndsIncluded) {
  auto link = Link(R"({"replies": {"STATUS_STAGE": "ABC\r\n"}})");
  EXPECT_EQ(Send(link, "STATUS_STAGE"), "ABC\r\n");
  EXPECT_EQ(Send(link, "STATUS_STAGE"), "ABC\r\n");
}

TEST_F(ScriptedLinkTest, CommandsMatchToTheLetter) {
  auto link = Link(R"({"default": "other", "replies": {"STATUS_STAGE": "ABC"}})");
  EXPECT_EQ(Send(link, "status_stage"), "other");
  EXPECT_EQ(Send(link, "STATUS_STAGE "), "other");
}

TEST_F(ScriptedLinkTest, EachUseOfAListTakesTheNextAndTheLastOneStays) {
  auto link = Link(R"({"replies": {"A": ["1", null, "3"]}})");
  EXPECT_EQ(Send(link, "A"), "1");
  EXPECT_EQ(Send(link, "A"), "failed");
  EXPECT_EQ(Send(link, "A"), "3");
  EXPECT_EQ(Send(link, "A"), "3");
}

TEST_F(ScriptedLinkTest, ANullReplyFailsAlsoWhereThereIsADefault) {
  auto link = Link(R"({"default": "OK", "replies": {"A": null}})");
  EXPECT_EQ(Send(link, "A"), "failed");
  EXPECT_EQ(Send(link, "B"), "OK");
}

TEST_F(ScriptedLinkTest, WithoutADefaultOtherCommandsFail) {
  auto none = Link("{}");
  EXPECT_EQ(Send(none, "A"), "failed");
  auto null = Link(R"({"default": null})");
  EXPECT_EQ(Send(null, "A"), "failed");
}

TEST_F(ScriptedLinkTest, TheStopFlagRisesAfterANamedCommandWasAnswered) {
  auto link = Link(R"({"default": "OK", "stop_after": ["A"]})");
  Send(link, "B");
  EXPECT_EQ(link.Stop(), false);
  Send(link, "A");
  EXPECT_EQ(link.Stop(), true);
  PassOver(link.SetStop(false));
  EXPECT_EQ(link.Stop(), false);
}

TEST_F(ScriptedLinkTest, ACommandThatFailsIsNotAnsweredAndRaisesNothing) {
  auto link = Link(R"({"replies": {"A": null}, "stop_after": ["A"]})");
  Send(link, "A");
  EXPECT_EQ(link.Stop(), false);
}

TEST_F(ScriptedLinkTest, AFileThatSaysAnythingElseIsRefused) {
  EXPECT_EQ(Refusal("[]"), "a link script is a JSON object");
  EXPECT_EQ(Refusal(R"({"default": 1})"), R"("default" is neither a text nor null)");
  EXPECT_EQ(Refusal(R"({"default": ["A"]})"), R"("default" is neither a text nor null)");
  EXPECT_EQ(Refusal(R"({"replies": []})"), R"("replies" is not an object of commands and their replies)");
  EXPECT_EQ(Refusal(R"({"replies": {"A": []}})"), R"(the reply to "A" is an empty list)");
  EXPECT_EQ(Refusal(R"({"replies": {"A": 5}})"), R"(the reply to "A" is neither a text nor null)");
  EXPECT_EQ(Refusal(R"({"replies": {"A": ["x", 5]}})"), R"(the reply to "A" is neither a text nor null)");
  EXPECT_EQ(Refusal(R"({"stop_after": "A"})"), R"("stop_after" is not a list of commands)");
  EXPECT_EQ(Refusal(R"({"stop_after": [1]})"), R"("stop_after" holds something that is not a text)");
  EXPECT_EQ(Refusal(R"({"reply": {}})"),
            R"(unknown member "reply"; a link script has "default", "replies" and "stop_after")");
}

TEST_F(ScriptedLinkTest, BrokenJsonIsRefusedWithItsLine) {
  EXPECT_TRUE(Refusal("{\n\"default\": \n}").starts_with("not JSON: line 3, column 1"));
  EXPECT_TRUE(Refusal("").starts_with("not JSON: line 1, column 1"));
}

TEST_F(ScriptedLinkTest, AFolderIsNoScript) {
  try {
    ReadLinkScript(folder_.Path("."));
    FAIL() << "accepted";
  } catch (const UsageError& error) {
    EXPECT_EQ(error.what(), folder_.Path(".") + " is a folder and no JSON file");
  }
}

TEST_F(ScriptedLinkTest, AComplaintIsOneLineWhateverTheScriptHolds) {
  EXPECT_EQ(Refusal(R"({"a\nb": 1})"),
            R"(unknown member "a\u000ab"; a link script has "default", "replies" and "stop_after")");
  EXPECT_EQ(Refusal(R"({"replies": {"\u001b[2J": 5}})"),
            R"(the reply to "\u001b[2J" is neither a text nor null)");
}

TEST_F(ScriptedLinkTest, TextBehindTheObjectIsRefused) {
  EXPECT_TRUE(Refusal("{}\n{}").starts_with("not JSON: line 2, column 1"));
}

TEST_F(ScriptedLinkTest, AnyBytesAreAScriptOrARefusalButNothingElse) {
  std::mt19937 random{20260711};
  const std::string seed = R"({"default": "OK", "replies": {"A": ["1", null]}, "stop_after": ["A"]})";
  for (int round = 0; round < 2000; ++round) {
    std::string bytes = seed;
    for (int change = 0; change < 1 + round % 4; ++change) {
      bytes[random() % bytes.size()] = static_cast<char>(random() % 256);
    }
    try {
      const auto script = ReadLinkScript(folder_.Put("script.json", bytes));
      for (const auto& [command, replies] : script.Replies) {
        EXPECT_FALSE(replies.empty()) << command;
      }
    } catch (const UsageError& error) {
      EXPECT_NE(std::string{error.what()}.find("script.json: "), std::string::npos);
    }
  }
}

}  // namespace
}  // namespace zolvane
