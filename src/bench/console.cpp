#include "bench/console.h"

#include <ostream>

#include "bench/joined.h"
#include "config/text.h"

namespace zolvane {
namespace {

// Often enough to be alive, seldom enough not to slow down what it reports.
constexpr std::chrono::milliseconds drawingPause{40};

constexpr std::string_view eraseLine = "\r\x1b[K";

bool IsControl(unsigned char byte) {
  return byte < 0x20 || byte == 0x7F;
}

// A control character of the second block: two bytes in UTF-8.
bool IsLateControl(std::string_view text, std::size_t at) {
  return text[at] == '\xC2' && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
}

// Cut so that no character is cut.
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

std::string Printable(std::string_view text) {
  std::string printable;
  printable.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (IsLateControl(text, at)) {
      ++at;
      printable += '?';
    } else {
      printable += IsControl(static_cast<unsigned char>(text[at])) ? '?' : text[at];
    }
  }
  return printable;
}

std::string Quoted(std::string_view text) {
  return InQuotes(Printable(text));
}

std::string OneLine(std::string_view text) {
  constexpr std::string_view blanks = " \r\n\t";
  std::string line;
  while (!text.empty()) {
    const auto start = text.find_first_not_of(blanks);
    if (start == std::string_view::npos) {
      break;
    }
    text.remove_prefix(start);
    const auto word = text.substr(0, text.find_first_of(blanks));
    line.append(line.empty() ? "" : " ").append(Printable(word));
    text.remove_prefix(word.size());
  }
  return line;
}

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
  ClearStatus();
  (setup_.ResultsGoToNotes ? notes_ : results_) << text << std::flush;
}

void Console::PrintDocument(std::string_view text) {
  ClearStatus();
  results_ << text << '\n';
}

void Console::Note(std::string_view line) {
  if (!setup_.IsQuiet) {
    ClearStatus();
    notes_ << line << '\n' << std::flush;
  }
}

void Console::Error(std::string_view line) {
  ClearStatus();
  notes_ << "zolvane-bench: " << line << '\n' << std::flush;
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

bool Console::Flush() {
  return static_cast<bool>(results_.flush());
}

void Console::Draw() {
  ClearStatus();
  nextDrawing_ = Clock::now() + drawingPause;
  if (status_.empty()) {
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
