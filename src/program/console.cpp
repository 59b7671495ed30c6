#include "program/console.h"

#include <ostream>

#include "program/write_failure.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

// Often enough to look alive, seldom enough not to slow down what it reports.
constexpr std::chrono::milliseconds drawingPause{40};

constexpr std::string_view eraseLine = "\r\x1b[K";

// Cut between two characters.
std::string_view FirstColumns(std::string_view text, std::size_t columns) {
  const auto isContinuation = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
  std::size_t end = 0;
  while (end < text.size() && columns > 0) {
    ++end;
    while (end < text.size() && isContinuation(text[end])) {
      ++end;
    }
    --columns;
  }
  return text.substr(0, end);
}

}  // namespace

Console::Console(std::ostream& results, std::ostream& notes, const Setup& setup)
    : results_{results}, notes_{notes}, setup_{setup} {}

Console::~Console() {
  ClearStatus();
  notes_.flush();
}

void Console::Print(std::string_view text) {
  if (setup_.IsQuiet) {
    return;
  }
  if (setup_.ResultsGoToNotes) {
    ClearStatus();
    notes_ << PrintableLines(text) << std::flush;
  } else {
    PrintResult(PrintableLines(text));
  }
}

void Console::PrintDocument(std::string_view text) {
  PrintResult(Joined(text, "\n"));
}

void Console::Note(std::string_view line) {
  if (!setup_.IsQuiet) {
    ClearStatus();
    notes_ << Printable(line) << '\n' << std::flush;
  }
}

void Console::Error(std::string_view line) {
  ClearStatus();
  notes_ << setup_.Program << (setup_.Program.empty() ? "" : ": ") << Printable(line) << '\n' << std::flush;
}

void Console::ShowStatus(std::string_view text) {
  if (setup_.IsQuiet || text == status_) {
    return;
  }
  status_ = text;
  if (setup_.NotesWidth) {
    Draw();
  } else if (!text.empty()) {
    notes_ << Printable(text) << '\n' << std::flush;
  }
}

void Console::ExpectCommands(std::size_t number) {
  expected_ = number;
  counted_ = 0;
}

void Console::CountCommand() {
  ++counted_;
  if (CountsCommands() && Clock::now() >= nextDrawing_) {
    Draw();
  }
}

void Console::ClearStatus() {
  if (isDrawn_) {
    notes_ << eraseLine << std::flush;
    isDrawn_ = false;
  }
}

void Console::PrintResult(std::string_view text) {
  ClearStatus();
  errno = 0;
  if (results_ && !(results_ << text << std::flush)) {
    failure_ = LastWriteFailure();
  }
}

std::error_code Console::Flush() {
  PrintResult("");
  return failure_;
}

void Console::Draw() {
  ClearStatus();
  nextDrawing_ = Clock::now() + drawingPause;
  if (status_.empty() || !setup_.NotesWidth) {
    return;
  }
  std::string line = Printable(status_);
  if (expected_ > 0 && counted_ > 0) {
    line += Joined("  ", std::to_string(counted_), " of ", std::to_string(expected_));
  }
  notes_ << FirstColumns(line, *setup_.NotesWidth - 1) << std::flush;
  isDrawn_ = true;
}

}  // namespace zolvane
