// The folders of the sources form layers, host <- config <- link <- transfer <- page <- shell <- (shell/windows |
// bench) <- bench/windows, and each uses only those to its left. The portable ones use nothing but the standard
// library and do not throw; headers of Windows stay in the folders and files that are named after it.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zolvane {
namespace {

using Texts = std::vector<std::string>;

// ---- The layers ----

struct Layer {
  std::string_view Folder;
  std::vector<std::string_view> Uses;
  bool IsPortable = true;
};

const std::vector<Layer>& Layers() {
  static const std::vector<Layer> layers{
      {"host", {"host"}},
      {"config", {"host", "config"}},
      {"link", {"host", "config", "link"}},
      {"transfer", {"host", "config", "link", "transfer"}},
      {"page", {"host", "config", "link", "transfer", "page"}},
      {"shell", {"host", "config", "link", "transfer", "page", "shell"}},
      {"shell/windows", {"host", "config", "link", "transfer", "page", "shell", "shell/windows"}, false},
      {"bench", {"host", "config", "link", "transfer", "page", "shell", "bench"}, false},
      {"bench/windows",
       {"host", "config", "link", "transfer", "page", "shell", "shell/windows", "bench", "bench/windows"},
       false},
  };
  return layers;
}

// The layer of a path below src/: that with the longest matching folder. Null outside all of them.
const Layer* LayerOf(std::string_view path) {
  const Layer* best = nullptr;
  for (const auto& layer : Layers()) {
    const bool isIn = path.starts_with(std::string{layer.Folder} + "/");
    if (isIn && (best == nullptr || layer.Folder.size() > best->Folder.size())) {
      best = &layer;
    }
  }
  return best;
}

// ---- The text of a source ----

// The text without its comments, and without what stands in its literals if they are dropped.
class Stripper {
 public:
  Stripper(std::string_view text, bool dropLiterals) : rest_{text}, dropLiterals_{dropLiterals} {}

  std::string Run() {
    while (!rest_.empty()) {
      const bool isDigitSeparator = rest_[0] == '\'' && !result_.empty() &&
                                    std::isalnum(static_cast<unsigned char>(result_.back())) != 0;
      if (rest_.starts_with("//")) {
        rest_.remove_prefix(std::min(rest_.find('\n'), rest_.size()));
      } else if (rest_.starts_with("/*")) {
        SkipBlockComment();
      } else if (rest_.starts_with("R\"")) {
        TakeRawLiteral();
      } else if (rest_[0] == '"' || (rest_[0] == '\'' && !isDigitSeparator)) {
        TakeLiteral(rest_[0]);
      } else {
        Take(1, true);
      }
    }
    return result_;
  }

 private:
  void Take(std::size_t count, bool isKept) {
    if (isKept) {
      result_.append(rest_.substr(0, count));
    }
    rest_.remove_prefix(std::min(count, rest_.size()));
  }

  void SkipBlockComment() {
    const auto end = rest_.find("*/", 2);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 2);
    result_ += ' ';
  }

  void TakeRawLiteral() {
    const auto open = rest_.find('(');
    const auto delimiter = ")" + std::string{rest_.substr(2, open - 2)} + "\"";
    const auto end = rest_.find(delimiter, open);
    Take(end == std::string_view::npos ? rest_.size() : end + delimiter.size(), !dropLiterals_);
  }

  void TakeLiteral(char quote) {
    std::size_t end = 1;
    while (end < rest_.size() && rest_[end] != quote && rest_[end] != '\n') {
      end += rest_[end] == '\\' ? 2 : 1;
    }
    Take(end + 1, !dropLiterals_);
  }

  std::string_view rest_;
  bool dropLiterals_;
  std::string result_;
};

struct Include {
  std::string Name;
  bool IsSystem = false;
};

std::vector<Include> IncludesOf(std::string_view source) {
  std::vector<Include> includes;
  const auto text = Stripper{source, false}.Run();
  for (auto place = text.find('#'); place != std::string::npos; place = text.find('#', place + 1)) {
    const auto word = text.find_first_not_of(" \t", place + 1);
    if (word == std::string::npos || text.compare(word, 7, "include") != 0) {
      continue;
    }
    const auto open = text.find_first_of("<\"\n", word);
    const auto close = open == std::string::npos ? open : text.find_first_of(">\"\n", open + 1);
    if (close != std::string::npos) {
      includes.push_back({text.substr(open + 1, close - open - 1), text[open] == '<'});
    }
  }
  return includes;
}

bool HasWord(std::string_view text, std::string_view word) {
  const auto isLetter = [text](std::size_t place) {
    return place < text.size() &&
           (std::isalnum(static_cast<unsigned char>(text[place])) != 0 || text[place] == '_');
  };
  for (auto place = text.find(word); place != std::string_view::npos; place = text.find(word, place + 1)) {
    const bool startsInside = place > 0 && isLetter(place - 1);
    if (!startsInside && !isLetter(place + word.size())) {
      return true;
    }
  }
  return false;
}

// ---- The rules ----

bool IsStandardHeader(const std::string& name) {
  static const std::set<std::string> headers{"algorithm",
                                             "any",
                                             "array",
                                             "atomic",
                                             "barrier",
                                             "bit",
                                             "bitset",
                                             "cassert",
                                             "cctype",
                                             "cerrno",
                                             "cfenv",
                                             "cfloat",
                                             "charconv",
                                             "chrono",
                                             "cinttypes",
                                             "climits",
                                             "clocale",
                                             "cmath",
                                             "compare",
                                             "complex",
                                             "concepts",
                                             "condition_variable",
                                             "coroutine",
                                             "csetjmp",
                                             "csignal",
                                             "cstdarg",
                                             "cstddef",
                                             "cstdint",
                                             "cstdio",
                                             "cstdlib",
                                             "cstring",
                                             "ctime",
                                             "cuchar",
                                             "cwchar",
                                             "cwctype",
                                             "deque",
                                             "exception",
                                             "execution",
                                             "filesystem",
                                             "format",
                                             "forward_list",
                                             "fstream",
                                             "functional",
                                             "future",
                                             "initializer_list",
                                             "iomanip",
                                             "ios",
                                             "iosfwd",
                                             "iostream",
                                             "istream",
                                             "iterator",
                                             "latch",
                                             "limits",
                                             "list",
                                             "locale",
                                             "map",
                                             "memory",
                                             "memory_resource",
                                             "mutex",
                                             "new",
                                             "numbers",
                                             "numeric",
                                             "optional",
                                             "ostream",
                                             "queue",
                                             "random",
                                             "ranges",
                                             "ratio",
                                             "regex",
                                             "scoped_allocator",
                                             "semaphore",
                                             "set",
                                             "shared_mutex",
                                             "source_location",
                                             "span",
                                             "sstream",
                                             "stack",
                                             "stdexcept",
                                             "stop_token",
                                             "streambuf",
                                             "string",
                                             "string_view",
                                             "syncstream",
                                             "system_error",
                                             "thread",
                                             "tuple",
                                             "type_traits",
                                             "typeindex",
                                             "typeinfo",
                                             "unordered_map",
                                             "unordered_set",
                                             "utility",
                                             "valarray",
                                             "variant",
                                             "vector",
                                             "version"};
  return headers.contains(name);
}

bool IsLibraryOfTheBench(std::string_view name) {
  return name == "asio.hpp" || name.starts_with("nlohmann/") || name.starts_with("CLI/");
}

bool IsPosixHeader(std::string_view name) {
  constexpr std::array headers{"fcntl.h",  "poll.h",  "pty.h",     "signal.h",
                               "stdlib.h", "stdio.h", "termios.h", "unistd.h"};
  return name.starts_with("sys/") || std::ranges::find(headers, name) != headers.end();
}

// Whether a file outside the portable layers is named after Windows, or lies in a folder that is.
bool IsForWindows(std::string_view path) {
  return path.find("/windows/") != std::string_view::npos || path.ends_with("_windows.cpp");
}

bool MayIncludeSystemHeader(std::string_view path, const Layer& layer, const std::string& name) {
  if (IsStandardHeader(name)) {
    return true;
  }
  if (layer.IsPortable) {
    return false;
  }
  return IsForWindows(path) || IsLibraryOfTheBench(name) ||
         (path.ends_with("_posix.cpp") && IsPosixHeader(name));
}

bool MayInclude(std::string_view path, const Layer& layer, const Include& include) {
  if (include.IsSystem) {
    return MayIncludeSystemHeader(path, layer, include.Name);
  }
  const auto* const used = LayerOf(include.Name);
  return used != nullptr && std::ranges::find(layer.Uses, used->Folder) != layer.Uses.end();
}

// What a source below src/ does against the rules.
Texts ViolationsOf(const std::string& path, std::string_view source) {
  const auto* const layer = LayerOf(path);
  if (layer == nullptr) {
    return {path + " is in no layer"};
  }
  Texts violations;
  for (const auto& include : IncludesOf(source)) {
    if (!MayInclude(path, *layer, include)) {
      violations.push_back(path + " includes " + include.Name);
    }
  }
  if (layer->IsPortable) {
    const auto code = Stripper{source, true}.Run();
    for (const auto* word : {"try", "throw", "catch"}) {
      if (HasWord(code, word)) {
        violations.push_back(path + " says " + word);
      }
    }
  }
  return violations;
}

// ---- The sources themselves ----

const std::filesystem::path sourceFolder = std::filesystem::path{ZOLVANE_SOURCE_PATH} / "src";

std::string ContentOf(const std::filesystem::path& file) {
  std::ifstream stream{file, std::ios::binary};
  return {std::istreambuf_iterator<char>{stream}, {}};
}

Texts SourceFiles() {
  Texts files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator{sourceFolder}) {
    const auto extension = entry.path().extension();
    if (entry.is_regular_file() && (extension == ".h" || extension == ".cpp")) {
      files.push_back(entry.path().lexically_relative(sourceFolder).generic_string());
    }
  }
  std::ranges::sort(files);
  return files;
}

TEST(Layers, UseOnlyWhatIsToTheirLeft) {
  const auto files = SourceFiles();
  ASSERT_GT(files.size(), 60U);
  for (const auto& file : files) {
    EXPECT_EQ(ViolationsOf(file, ContentOf(sourceFolder / file)), Texts{});
  }
}

TEST(Layers, AreAllThere) {
  const auto files = SourceFiles();
  for (const auto& layer : Layers()) {
    EXPECT_TRUE(std::ranges::any_of(files, [&](const auto& file) { return LayerOf(file) == &layer; }))
        << layer.Folder;
  }
}

TEST(Layers, EndInHeadersThatExist) {
  for (const auto& file : SourceFiles()) {
    for (const auto& include : IncludesOf(ContentOf(sourceFolder / file))) {
      const auto header = sourceFolder / include.Name;
      EXPECT_TRUE(include.IsSystem || std::filesystem::exists(header) ||
                  std::filesystem::exists(header.string() + ".in"))  // made when the build is configured
          << file << " includes " << include.Name;
    }
  }
}

// ---- The rules on made-up sources ----

TEST(LayerRules, AllowAFolderItselfAndThoseToItsLeft) {
  EXPECT_EQ(
      ViolationsOf("link/a.cpp", "#include \"link/b.h\"\n#include \"config/c.h\"\n#include \"host/d.h\"\n"),
      Texts{});
  EXPECT_EQ(ViolationsOf("shell/windows/a.cpp", "#include \"shell/b.h\"\n#include \"shell/windows/c.h\"\n"),
            Texts{});
  EXPECT_EQ(ViolationsOf("bench/links/a.cpp", "#include \"bench/b.h\"\n#include \"shell/c.h\"\n"), Texts{});
}

TEST(LayerRules, RefuseAStepToTheRight) {
  const Texts folders{"host", "config", "link", "transfer", "page", "shell", "bench"};
  for (std::size_t user = 0; user < folders.size(); ++user) {
    for (std::size_t used = user + 1; used < folders.size(); ++used) {
      const auto header = folders[used] + "/b.h";
      EXPECT_EQ(ViolationsOf(folders[user] + "/a.h", "# include \"" + header + "\""),
                Texts{folders[user] + "/a.h includes " + header});
    }
  }
}

TEST(LayerRules, RefuseAStepBetweenTheComponentAndTheBench) {
  EXPECT_EQ(ViolationsOf("bench/a.cpp", "#include \"shell/windows/b.h\"").size(), 1U);
  EXPECT_EQ(ViolationsOf("shell/windows/a.cpp", "#include \"bench/b.h\"").size(), 1U);
  EXPECT_EQ(ViolationsOf("shell/a.cpp", "#include \"shell/windows/b.h\"").size(), 1U);
  EXPECT_EQ(ViolationsOf("bench/a.cpp", "#include \"bench/windows/b.h\"").size(), 1U);
}

TEST(LayerRules, RefusePathsThatDoNotStartAtTheSources) {
  EXPECT_EQ(ViolationsOf("link/a.cpp", "#include \"b.h\""), Texts{"link/a.cpp includes b.h"});
  EXPECT_EQ(ViolationsOf("link/a.cpp", "#include \"../page/b.h\"").size(), 1U);
  EXPECT_EQ(ViolationsOf("new_folder/a.cpp", ""), Texts{"new_folder/a.cpp is in no layer"});
}

TEST(LayerRules, AllowNothingButTheStandardLibraryInPortableFolders) {
  for (const auto* name : {"windows.h", "asio.hpp", "nlohmann/json.hpp", "unistd.h", "string.h"}) {
    for (const auto* folder : {"host", "config", "link", "transfer", "page", "shell"}) {
      const auto path = std::string{folder} + "/a_windows.cpp";
      EXPECT_EQ(ViolationsOf(path, std::string{"#include <"} + name + ">"),
                Texts{path + " includes " + name});
    }
  }
  EXPECT_EQ(ViolationsOf("link/a.cpp", "#include <string>\n#include <filesystem>\n"), Texts{});
}

TEST(LayerRules, KeepHeadersOfWindowsWhereTheyBelong) {
  const auto* const source = "#include <windows.h>\n#include <winsock2.h>\n";
  EXPECT_EQ(ViolationsOf("bench/a.cpp", source).size(), 2U);
  EXPECT_EQ(ViolationsOf("bench/a_posix.cpp", source).size(), 2U);
  EXPECT_EQ(ViolationsOf("bench/links/a.h", source).size(), 2U);
  EXPECT_EQ(ViolationsOf("bench/links/a_windows.cpp", source), Texts{});
  EXPECT_EQ(ViolationsOf("shell/windows/a.h", source), Texts{});
  EXPECT_EQ(ViolationsOf("bench/windows/a.h", source), Texts{});
}

TEST(LayerRules, AllowTheBenchItsLibrariesAndPosixInItsOwnFiles) {
  EXPECT_EQ(ViolationsOf("bench/a.cpp", "#include <asio.hpp>\n#include <CLI/CLI.hpp>\n#include <vector>"),
            Texts{});
  EXPECT_EQ(ViolationsOf("bench/a_posix.cpp", "#include <sys/ioctl.h>\n#include <termios.h>\n"), Texts{});
  EXPECT_EQ(ViolationsOf("bench/a.cpp", "#include <termios.h>\n").size(), 1U);
  EXPECT_EQ(ViolationsOf("bench/a.cpp", "#include <boost/any.hpp>\n").size(), 1U);
}

TEST(LayerRules, RefuseExceptionsInPortableFoldersAlone) {
  EXPECT_EQ(ViolationsOf("link/a.cpp", "void f() { try { g(); } catch (...) { throw; } }"),
            (Texts{"link/a.cpp says try", "link/a.cpp says throw", "link/a.cpp says catch"}));
  EXPECT_EQ(ViolationsOf("bench/a.cpp", "void f() { try { g(); } catch (...) { throw; } }"), Texts{});
}

TEST(LayerRules, LookPastCommentsAndLiterals) {
  EXPECT_EQ(
      ViolationsOf("link/a.cpp",
                   "// try again, throw nothing\n/* catch\n#include <windows.h>\n*/ int retry = 1'000;\n"
                   "const char* text = \"try \\\" catch\"; char c = '\\''; auto r = R\"x(throw \" )\" )x\";\n"
                   "int catching; // #include \"page/b.h\"\n"),
      Texts{});
  EXPECT_EQ(ViolationsOf("link/a.cpp", "char c = '\"'; throw 1; char d = '\"';"),
            Texts{"link/a.cpp says throw"});
  EXPECT_EQ(ViolationsOf("link/a.cpp", "int n = 1'000; throw 2'000;"), Texts{"link/a.cpp says throw"});
}

}  // namespace
}  // namespace zolvane
