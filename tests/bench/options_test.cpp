#include "bench/options.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "bench/usage_error.h"

namespace zolvane {
namespace {

using Words = std::vector<std::string>;

Options Parsed(Words words) {
  return std::get<Options>(ParseOptions(std::move(words)));
}

std::string RefusedOptions(Words words) {
  try {
    ParseOptions(std::move(words));
  } catch (const UsageError& error) {
    return error.what();
  }
  return "not refused";
}

TEST(Options, WithoutAnyTheDefaultsHold) {
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
  EXPECT_EQ(options.File, std::nullopt);
  EXPECT_EQ(options.Command, (Words{"page"}));
}

TEST(Options, EachIsTakenBeforeAndBehindTheCommand) {
  const auto options = Parsed({"--link", "none", "--timeout", "0.25", "--yes", "press", "3", "--file",
                               "x.bak", "--trace=-", "--trace-reads", "--host-dialog", "--json", "--quiet"});
  EXPECT_EQ(options.Link, "none");
  EXPECT_EQ(options.TimeoutSeconds, 0.25);
  EXPECT_TRUE(options.AffirmsRest);
  EXPECT_EQ(options.Command, (Words{"press", "3"}));
  EXPECT_EQ(options.File, "x.bak");
  EXPECT_EQ(options.Trace, "-");
  EXPECT_TRUE(options.TracesReads);
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
            "The following argument was not expected: --nonsense; see zolvane-bench --help");
  EXPECT_EQ(RefusedOptions({"page", "--link"}), "--link: 1 required LINK missing; see zolvane-bench --help");
  for (const auto* timeout : {"0", "-1", "", "nan", "inf", "1e9", "0x10", "5s", " 5"}) {
    EXPECT_TRUE(RefusedOptions({"page", "--timeout", timeout}).starts_with("--timeout")) << timeout;
  }
  for (const auto* answers : {"", ",", "ok,", "retry", "o"}) {
    EXPECT_TRUE(RefusedOptions({"page", "--answer", answers}).starts_with("--answer")) << answers;
  }
  EXPECT_EQ(RefusedOptions({"page", "--folder", ""}), "--folder: the name of the folder is empty");
  EXPECT_EQ(RefusedOptions({"page", "--trace", ""}), "--trace: the name of the file is empty");
}

TEST(Options, HelpAndVersionAreTextsInsteadOfARun) {
  EXPECT_EQ(std::get<Information>(ParseOptions({"--version"})).Text, "1.00.0135\n");
  EXPECT_TRUE(std::get<Information>(ParseOptions({"-h"}))
                  .Text.starts_with("Usage: zolvane-bench [OPTIONS] COMMAND [ARGUMENTS]\n"));
}

}  // namespace
}  // namespace zolvane
