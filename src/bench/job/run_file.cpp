#include "bench/job/run_file.h"

#include <algorithm>
#include <cstddef>
#include <istream>
#include <iterator>
#include <optional>
#include <set>
#include <utility>

#include "bench/job/actions.h"
#include "config/text.h"
#include "files/paths.h"
#include "files/whole_file.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {
namespace {

using Words = std::vector<std::string>;

constexpr std::string_view standardInput = "-";
constexpr std::string_view runFileKind = "run file";

// Nobody writes a longer list of commands.
constexpr std::size_t mostActions = 1'000'000;

// A run file that is being read.
struct OpenRunFile {
  std::string Identity;  // so that it is known again
  std::string Name;      // for people
  std::string Text;
  std::size_t At = 0;  // where the next line starts
  std::size_t Line = 0;

  std::string Place() const { return Joined(Name, ", line ", std::to_string(Line)); }
};

// The next line, without its end and the blanks around it.
std::optional<std::string> NextLine(OpenRunFile& file) {
  if (file.At >= file.Text.size()) {
    return std::nullopt;
  }
  const auto end = std::min(file.Text.find('\n', file.At), file.Text.size());
  auto line = std::string_view{file.Text}.substr(file.At, end - file.At);
  if (line.ends_with('\r')) {
    line.remove_suffix(1);
  }
  file.At = end + 1;
  ++file.Line;
  return std::string{Trimmed(line)};
}

// Takes "--file backup.bak" out of "press 3 --file backup.bak": the one option that belongs to a
// command, in both its spellings.
std::optional<std::string> TakeFileOption(Words& words) {
  constexpr std::string_view option = "--file";
  constexpr std::string_view joined = "--file=";
  const auto found = std::ranges::find_if(
      words, [&](const auto& word) { return word == option || word.starts_with(joined); });
  if (found == words.end()) {
    return std::nullopt;
  }
  const bool isJoined = *found != option;
  if (!isJoined && std::next(found) == words.end()) {
    throw UsageError{"--file needs the name of a file"};
  }
  std::string file = isJoined ? found->substr(joined.size()) : *std::next(found);
  words.erase(found, std::next(found, isJoined ? 1 : 2));
  if (words.empty()) {
    throw UsageError{"--file goes with press"};
  }
  return file;
}

class RunFileReader {
 public:
  explicit RunFileReader(std::istream& input) : input_{input} {}

  Job Read(const std::string& file);

 private:
  void Open(const std::string& file);
  void TakeLine(const std::string& line);
  void TakeCommand(Words words);
  std::string Places() const;

  std::istream& input_;
  std::vector<OpenRunFile> open_;
  std::vector<Action> actions_;
  std::set<std::string> files_;
};

Job RunFileReader::Read(const std::string& file) {
  Open(file);
  while (!open_.empty()) {
    if (const auto line = NextLine(open_.back())) {
      TakeLine(*line);
    } else {
      open_.pop_back();
    }
  }
  return {.Actions = std::move(actions_), .IsRun = true, .RunFiles = std::move(files_)};
}

void RunFileReader::Open(const std::string& file) {
  const bool isInput = file == standardInput;
  OpenRunFile opened{.Identity = isInput ? file : AbsolutePath(file),
                     .Name = isInput ? "standard input" : Printable(file),
                     .Text = {}};
  if (std::ranges::find(open_, opened.Identity, &OpenRunFile::Identity) != open_.end()) {
    throw UsageError{Joined(opened.Name, " runs itself")};
  }
  opened.Text =
      isInput ? ReadWholeStream(input_, opened.Name, runFileKind) : ReadWholeFile(file, runFileKind);
  if (opened.Text.find('\0') != std::string::npos) {
    throw UsageError{Joined(opened.Name, " is no list of commands in UTF-8, as there are zero bytes in it")};
  }
  if (!isInput) {
    files_.insert(opened.Identity);
  }
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  opened.At = opened.Text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
  open_.push_back(std::move(opened));
}

void RunFileReader::TakeLine(const std::string& line) {
  if (line.empty() || line.starts_with('#')) {
    return;
  }
  const auto places = Places();
  try {
    TakeCommand(SplitWords(line));
  } catch (const UsageError& error) {
    throw UsageError{places + error.what()};
  }
}

void RunFileReader::TakeCommand(Words words) {
  const auto file = TakeFileOption(words);
  if (RunsFile(words)) {
    Open(words[1]);
    return;
  }
  if (actions_.size() >= mostActions) {
    throw UsageError{Joined("there are more than ", std::to_string(mostActions), " commands")};
  }
  actions_.push_back(MakeAction(words, file));
  actions_.back().Place = open_.back().Place();
}

// Where the line being read stands: its place in each open file, the outermost first.
std::string RunFileReader::Places() const {
  std::string places;
  for (const auto& file : open_) {
    places += Joined(file.Place(), ": ");
  }
  return places;
}

}  // namespace

Job ReadRunFile(const std::string& file, std::istream& input) {
  return RunFileReader{input}.Read(file);
}

std::vector<std::string> SplitWords(std::string_view line) {
  constexpr std::string_view blanks = " \t";
  std::vector<std::string> words;
  bool isInWord = false;
  bool isQuoted = false;
  for (std::size_t at = 0; at < line.size(); ++at) {
    const char character = line[at];
    if (!isQuoted && blanks.find(character) != std::string_view::npos) {
      isInWord = false;
      continue;
    }
    if (!isInWord) {
      words.emplace_back();
      isInWord = true;
    }
    if (character != '"') {
      words.back() += character;
    } else if (isQuoted && at + 1 < line.size() && line[at + 1] == '"') {
      words.back() += line[++at];
    } else {
      isQuoted = !isQuoted;
    }
  }
  if (isQuoted) {
    throw UsageError{"a double quote is not closed"};
  }
  return words;
}

}  // namespace zolvane
