#include "program/console.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sstream>
#include <streambuf>
#include <system_error>

namespace zolvane {
namespace {

struct Screen {
  explicit Screen(const Console::Setup& setup) : Out{Results, Notes, setup} {}

  std::ostringstream Results;
  std::ostringstream Notes;
  Console Out;
};

Console::Setup Terminal(std::size_t width) {
  return {.IsQuiet = false, .ResultsGoToNotes = false, .NotesWidth = width};
}

TEST(Progress, ElsewhereThanOnATerminalIsALinePerText) {
  Screen screen{{}};
  screen.Out.ExpectCommands(3);
  screen.Out.ShowStatus("Working");
  screen.Out.ShowStatus("Working");
  screen.Out.CountCommand();
  screen.Out.ShowStatus("");
  screen.Out.ShowStatus("Working");
  EXPECT_EQ(screen.Notes.str(), "Working\nWorking\n");
  EXPECT_FALSE(screen.Out.CountsCommands());
}

TEST(Progress, ATerminalShowsOneLineThatMakesRoomForOthers) {
  Screen screen{Terminal(80)};
  EXPECT_TRUE(screen.Out.CountsCommands());
  screen.Out.ExpectCommands(3);
  screen.Out.ShowStatus("Working");
  screen.Out.CountCommand();
  screen.Out.ShowStatus("Resting");
  screen.Out.Note("A note");
  screen.Out.ShowStatus("");
  EXPECT_EQ(screen.Notes.str(), "Working\r\x1b[KResting  1 of 3\r\x1b[KA note\n");
}

TEST(Progress, NeverIsWiderThanTheTerminal) {
  Screen screen{Terminal(8)};
  screen.Out.ShowStatus("\xc3\xa4\xc3\xb6\xc3\xbc 4567890");
  EXPECT_EQ(screen.Notes.str(), "\xc3\xa4\xc3\xb6\xc3\xbc 456");
}

TEST(Output, GoesToTheNotesWhenSomethingElseIsPrinted) {
  Screen screen{{.IsQuiet = false, .ResultsGoToNotes = true, .NotesWidth = std::nullopt}};
  screen.Out.Print("result\n");
  EXPECT_EQ(screen.Results.str(), "");
  EXPECT_EQ(screen.Notes.str(), "result\n");
}

TEST(Output, AQuietProgramPrintsErrorsAndDocumentsAlone) {
  Screen screen{{.IsQuiet = true, .ResultsGoToNotes = false, .NotesWidth = 80}};
  screen.Out.ShowStatus("Working");
  screen.Out.Note("A note");
  screen.Out.Print("result\n");
  screen.Out.Error("wrong");
  screen.Out.PrintDocument("{}");
  EXPECT_EQ(screen.Notes.str(), "zolvane-bench: wrong\n");
  EXPECT_EQ(screen.Results.str(), "{}\n");
  EXPECT_FALSE(screen.Out.CountsCommands());
}

TEST(Output, NeverSteersTheTerminal) {
  Screen screen{{}};
  screen.Out.Print("a\x1b[2J\nb\n");
  screen.Out.Note("c\xc2\x9b");
  screen.Out.Error(
      "d\xe2\x80"
      "\xae");
  screen.Out.ShowStatus("e\x9b");
  EXPECT_EQ(screen.Results.str(), "a\\u001b[2J\nb\n");
  EXPECT_EQ(screen.Notes.str(), "c\\u009b\nzolvane-bench: d\\u202e\ne\\x9b\n");
}

class FullDisk final : public std::streambuf {
  int sync() override {
    errno = ENOSPC;
    return -1;
  }
  int_type overflow(int_type byte) override { return byte; }
};

TEST(Output, LostResultsAreKnownWithTheirFirstReason) {
  Screen screen{{}};
  EXPECT_FALSE(screen.Out.Flush());
  FullDisk disk;
  std::ostream results{&disk};
  Console out{results, screen.Notes, {}};
  out.Print("result\n");
  out.Print("another\n");
  EXPECT_EQ(out.Flush(), std::errc::no_space_on_device);
}

}  // namespace
}  // namespace zolvane
