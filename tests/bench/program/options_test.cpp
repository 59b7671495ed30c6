#include "bench/program/options.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "text/usage_error.h"

namespace zolvane {
namespace {

using Words = std::vector<std::string>;

Options Parsed(const Words& words) {
  return std::get<Options>(ParseOptions(words));
}

std::string RefusedOptions(const Words& words) {
  try {
    ParseOptions(words);
  } catch (const UsageError& error) {
    return error.what();
  }
  return "not refused";
}

TEST(Options, TheDefaultsHoldWithoutAnyOption) {
  const auto options = Parsed({"page"});
  EXPECT_EQ(options.Folder, std::filesystem::current_path().string());
  EXPECT_EQ(options.Link, "sim");
  EXPECT_EQ(options.TimeoutSeconds, 5);
  EXPECT_TRUE(options.Answers.empty());
  EXPECT_FALSE(options.AffirmsRest);
  EXPECT_FALSE(options.OffersHostDialog);
  EXPECT_EQ(options.Trace, std::nullopt);
  EXPECT_FALSE(options.TracesReads);
  EXPECT_FALSE(options.PrintsJson);
  EXPECT_FALSE(options.IsQuiet);
  EXPECT_FALSE(options.Replaces);
  EXPECT_EQ(options.File, std::nullopt);
  EXPECT_EQ(options.Command, (Words{"page"}));
}

TEST(Options, EachIsTakenBeforeAndBehindTheCommand) {
  const auto options =
      Parsed({"--link", "none", "--timeout", "0.25", "--yes", "press", "3", "--file", "x.bak", "--trace=-",
              "--replace", "--trace-reads", "--host-dialog", "--json", "--quiet"});
  EXPECT_EQ(options.Link, "none");
  EXPECT_EQ(options.TimeoutSeconds, 0.25);
  EXPECT_TRUE(options.AffirmsRest);
  EXPECT_EQ(options.Command, (Words{"press", "3"}));
  EXPECT_EQ(options.File, "x.bak");
  EXPECT_EQ(options.Trace, "-");
  EXPECT_TRUE(options.TracesReads);
  EXPECT_TRUE(options.Replaces);
  EXPECT_TRUE(options.OffersHostDialog);
  EXPECT_TRUE(options.PrintsJson);
  EXPECT_TRUE(options.IsQuiet);
}

TEST(Options, TheFolderBecomesAbsoluteWithoutDetours) {
  EXPECT_EQ(Parsed({"--folder", "/a/./b/../c/", "page"}).Folder, "/a/c");
  EXPECT_EQ(Parsed({"--folder", "/", "page"}).Folder, "/");
  EXPECT_EQ(Parsed({"--folder", "x", "page"}).Folder, (std::filesystem::current_path() / "x").string());
}

TEST(Options, AnAnswerListEndsBeforeTheCommand) {
  const auto options = Parsed({"--answer", "ok, Cancel,YES", "upload", "--answer", "no"});
  EXPECT_EQ(options.Answers, (std::vector<std::int32_t>{1, 2, 6, 7}));
  EXPECT_EQ(options.Command, (Words{"upload"}));
}

TEST(Options, NegativeNumbersAndOddWordsAreArguments) {
  EXPECT_EQ(Parsed({"press", "-1"}).Command, (Words{"press", "-1"}));
  EXPECT_EQ(Parsed({"press", "-99999999999999999999"}).Command, (Words{"press", "-99999999999999999999"}));
  EXPECT_EQ(Parsed({"run", "-"}).Command, (Words{"run", "-"}));
  EXPECT_EQ(Parsed({"select", "cboHeadType", ""}).Command, (Words{"select", "cboHeadType", ""}));
  EXPECT_EQ(Parsed({"import", "{}"}).Command, (Words{"import", "{}"}));
  EXPECT_EQ(Parsed({"export", "[a,b]"}).Command, (Words{"export", "[a,b]"}));
  EXPECT_EQ(Parsed({"export", "--", "--odd"}).Command, (Words{"export", "--odd"}));
}

TEST(Options, WhatCannotBeMeantIsRefusedWithItsName) {
  EXPECT_EQ(RefusedOptions({"page", "--nonsense"}),
            "there is no option \"--nonsense\"; see zolvane-bench --help");
  EXPECT_EQ(RefusedOptions({"page", "-x"}), "there is no option \"-x\"; see zolvane-bench --help");
  EXPECT_EQ(RefusedOptions({"page", "--tarce", "x"}),
            "there is no option \"--tarce\"; did you mean \"--trace\"?");
  EXPECT_EQ(RefusedOptions({"--jsn=1", "page"}), "there is no option \"--jsn\"; did you mean \"--json\"?");
  EXPECT_EQ(RefusedOptions({"page", "--link"}), "--link needs a value: --link LINK");
  EXPECT_EQ(RefusedOptions({"page", "--quiet=very"}), "--quiet takes no value");
  EXPECT_EQ(RefusedOptions({"--link", "sim", "--link=none", "page"}), "--link is given more than once");
  for (const auto* timeout : {"0", "-1", "", "nan", "inf", "1e9", "0x10", "5s", " 5"}) {
    EXPECT_TRUE(RefusedOptions({"page", "--timeout", timeout}).starts_with("--timeout")) << timeout;
  }
  for (const auto* answers : {"", ",", "ok,", "retry", "o"}) {
    EXPECT_TRUE(RefusedOptions({"page", "--answer", answers}).starts_with("--answer")) << answers;
  }
  EXPECT_EQ(RefusedOptions({"page", "--folder", ""}), "--folder: the name of the folder is empty");
  EXPECT_EQ(RefusedOptions({"page", "--trace", ""}), "--trace: the name of the file is empty");
}

std::string TextFor(const Words& words) {
  return std::get<Information>(ParseOptions(words)).Text;
}

TEST(Options, HelpAndVersionAreTextsInsteadOfARun) {
  EXPECT_EQ(TextFor({"--version"}), "zolvane-bench 1.00.0135\n");
  for (const auto& words : {Words{"-h"}, Words{"--help"}, Words{"help"}, Words{"--quiet", "help"}}) {
    EXPECT_TRUE(TextFor(words).starts_with("Usage: zolvane-bench [OPTIONS] COMMAND [ARGUMENTS]\n"));
  }
}

TEST(Options, HelpOnACommandHasItsUseAndAnExample) {
  for (const auto& words : {Words{"help", "press"}, Words{"press", "--help"}, Words{"press", "4", "-h"}}) {
    EXPECT_EQ(TextFor(words),
              "Usage: zolvane-bench [OPTIONS] press N\n"
              "\n"
              "  press the button of any number; --file FILE for its file dialogue\n"
              "\n"
              "0 upload, 1 download, 2 query, 3 import, 4 export. A number without a button does nothing.\n"
              "\n"
              "Example:\n"
              "  zolvane-bench press 4 --file backup.bak\n"
              "\n"
              "The options: zolvane-bench --help\n");
  }
  for (const auto* command : {"page", "query", "upload", "download", "import", "export", "press", "select",
                              "tick", "script", "run", "help"}) {
    EXPECT_TRUE(
        TextFor({"help", command}).starts_with("Usage: zolvane-bench [OPTIONS] " + std::string{command}));
  }
}

TEST(Options, HelpOnACommandThatIsNoneNamesTheNearest) {
  EXPECT_EQ(RefusedOptions({"help", "uplod"}), "there is no command \"uplod\"; did you mean \"upload\"?");
  EXPECT_EQ(RefusedOptions({"uplod", "--help"}), "there is no command \"uplod\"; did you mean \"upload\"?");
}

}  // namespace
}  // namespace zolvane
