// Each room of src/rooms.txt uses only what the list allows it. The standard ones use nothing but the
// standard library and do not throw; headers of Windows stay in the rooms and files that are named after it.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "rooms/room_list.h"
#include "rooms/source_text.h"
#include "support/file_bytes.h"
#include "support/texts.h"

namespace zolvane {
namespace {

// ---- The rules ----

// Only headers of the standard library have neither a folder nor an ending.
bool IsStandardHeader(std::string_view name) {
  return name.find_first_of("./") == std::string_view::npos;
}

bool IsLibraryOfThePrograms(std::string_view name) {
  return name == "asio.hpp" || name.starts_with("nlohmann/") || name.starts_with("CLI/");
}

bool IsPosixHeader(std::string_view name) {
  constexpr std::array headers{"fcntl.h", "poll.h",   "pty.h",     "pwd.h",   "signal.h",
                               "stdio.h", "stdlib.h", "termios.h", "unistd.h"};
  return name.starts_with("sys/") || std::ranges::find(headers, name) != headers.end();
}

bool MayIncludeSystemHeader(std::string_view path, const Room& room, std::string_view name) {
  if (IsStandardHeader(name) || room.RestsOn == Basis::Windows) {
    return true;
  }
  return room.RestsOn == Basis::System &&
         (IsLibraryOfThePrograms(name) || path.ends_with("_windows.cpp") ||
          (path.ends_with("_posix.cpp") && (IsPosixHeader(name) || name.starts_with("openssl/"))));
}

// A system room has the rooms for Windows that it names in its sources for Windows alone.
bool MayUseFrom(std::string_view path, const std::vector<Room>& rooms, const Room& room, const Room& used) {
  if (room.RestsOn == Basis::Windows || used.RestsOn != Basis::Windows) {
    return MayUse(rooms, room, used);
  }
  return room.RestsOn == Basis::System && path.ends_with("_windows.cpp") &&
         std::ranges::find(room.Uses, used.Folder) != room.Uses.end();
}

bool MayInclude(const std::vector<Room>& rooms, std::string_view path, const Room& room,
                const Include& include) {
  if (include.IsSystem) {
    return MayIncludeSystemHeader(path, room, include.Name);
  }
  const auto* const used = RoomOf(rooms, include.Name);
  return used != nullptr && MayUseFrom(path, rooms, room, *used);
}

// What a source below src/ does against the rules.
Texts ViolationsOf(const std::vector<Room>& rooms, const std::string& path, std::string_view source) {
  const auto* const room = RoomOf(rooms, path);
  if (room == nullptr) {
    return {path + " is in no room"};
  }
  Texts violations;
  for (const auto& include : IncludesOf(source)) {
    if (!MayInclude(rooms, path, *room, include)) {
      violations.push_back(path + " includes " + include.Name);
    }
  }
  if (room->RestsOn == Basis::Standard) {
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

const std::filesystem::path projectFolder = ZOLVANE_SOURCE_PATH;
const std::filesystem::path sourceFolder = projectFolder / "src";

// Relative to `folder`.
Texts FilesOf(const std::filesystem::path& folder) {
  Texts files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator{folder}) {
    const auto extension = entry.path().extension();
    if (entry.is_regular_file() && (extension == ".h" || extension == ".cpp")) {
      files.push_back(entry.path().lexically_relative(folder).generic_string());
    }
  }
  std::ranges::sort(files);
  return files;
}

Texts SourceFiles() {
  return FilesOf(sourceFolder);
}

// A header and its sources are one unit: "terminal" for terminal.h and terminal_posix.cpp.
std::string UnitOf(std::string_view path) {
  auto name = std::string{path.substr(0, path.rfind('.'))};
  for (const std::string_view ending : {"_posix", "_windows"}) {
    if (name.ends_with(ending)) {
      name.resize(name.size() - ending.size());
    }
  }
  return name;
}

TEST(Rooms, UseOnlyWhatTheListAllows) {
  const auto files = SourceFiles();
  ASSERT_GT(files.size(), 60U);
  for (const auto& file : files) {
    EXPECT_EQ(ViolationsOf(Rooms(), file, BytesOf(sourceFolder / file)), Texts{});
  }
}

TEST(Rooms, EveryRoomIsThere) {
  const auto files = SourceFiles();
  ASSERT_FALSE(Rooms().empty());
  for (const auto& room : Rooms()) {
    EXPECT_TRUE(std::ranges::any_of(files, [&](const auto& file) { return RoomOf(Rooms(), file) == &room; }))
        << room.Folder;
  }
}

TEST(Rooms, NameWhatTheyUseAndNothingElse) {
  std::map<const Room*, std::set<std::string>> used;
  for (const auto& file : SourceFiles()) {
    for (const auto& include : IncludesOf(BytesOf(sourceFolder / file))) {
      if (const auto* const room = RoomOf(Rooms(), include.Name); !include.IsSystem && room != nullptr) {
        used[RoomOf(Rooms(), file)].insert(room->Folder);
      }
    }
  }
  for (const auto& room : Rooms()) {
    for (const auto& name : room.Uses) {
      EXPECT_TRUE(used[&room].contains(name)) << room.Folder << " does not use " << name;
    }
  }
}

TEST(Rooms, HoldNoMoreThanFifteenUnits) {
  for (const auto* tree : {"src", "tests"}) {
    std::map<std::string, std::set<std::string>> units;
    for (const auto& file : FilesOf(projectFolder / tree)) {
      units[std::filesystem::path{file}.parent_path().generic_string()].insert(UnitOf(file));
    }
    for (const auto& [folder, names] : units) {
      EXPECT_LE(names.size(), 15U) << tree << '/' << folder;
    }
  }
}

TEST(Rooms, IncludeHeadersThatExist) {
  for (const auto& file : SourceFiles()) {
    for (const auto& include : IncludesOf(BytesOf(sourceFolder / file))) {
      const auto header = sourceFolder / include.Name;
      EXPECT_TRUE(include.IsSystem || std::filesystem::exists(header) ||
                  std::filesystem::exists(header.string() + ".in"))  // made when the build is configured
          << file << " includes " << include.Name;
    }
  }
}

// ---- The list ----

TEST(RoomList, RefusesARoomThatUsesALaterOne) {
  EXPECT_EQ(RoomsOf("a | standard | | first\nb | system | a | second\n").size(), 2U);
  EXPECT_TRUE(RoomsOf("a | standard | b | first\nb | standard | | second\n").empty());
  EXPECT_TRUE(RoomsOf("a | standard | a | itself\n").empty());
}

TEST(RoomList, RefusesALineOfAnotherShape) {
  EXPECT_TRUE(RoomsOf("a | standard | \n").empty());
  EXPECT_TRUE(RoomsOf("a | portable | | unknown basis\n").empty());
  EXPECT_TRUE(RoomsOf("a | standard | | once\na | standard | | twice\n").empty());
}

// ---- The rules on made-up sources ----

const std::vector<Room>& MadeUpRooms() {
  static const auto rooms = RoomsOf(
      "# made up\n"
      "low        | standard |            | what all use\n"
      "middle     | standard | low        | what some use\n"
      "machine    | windows  | low        | the system\n"
      "tool       | system   | middle machine | with libraries\n"
      "bench      | system   | tool       | with a tool\n"
      "tool/inner | windows  | tool machine | both\n");
  return rooms;
}

Texts Violations(const std::string& path, std::string_view source) {
  return ViolationsOf(MadeUpRooms(), path, source);
}

TEST(RoomRules, AllowARoomItselfWhatItNamesAndWhatThatUses) {
  EXPECT_EQ(Violations("middle/a.cpp", "#include \"middle/b.h\"\n#include \"low/c.h\"\n"), Texts{});
  EXPECT_EQ(Violations("tool/inner/a.cpp", "#include \"machine/b.h\"\n#include \"low/c.h\"\n"), Texts{});
}

TEST(RoomRules, RefuseWhatARoomDoesNotName) {
  EXPECT_EQ(Violations("low/a.h", "# include \"middle/b.h\""), Texts{"low/a.h includes middle/b.h"});
  EXPECT_EQ(Violations("machine/a.h", "#include \"middle/b.h\"").size(), 1U);
  EXPECT_EQ(Violations("tool/a.h", "#include \"tool/inner/b.h\"").size(), 1U);
}

TEST(RoomRules, AllowARoomForWindowsToTheFilesForWindowsOfASystemRoomThatNamesIt) {
  const auto* const source = "#include \"machine/b.h\"";
  EXPECT_EQ(Violations("tool/a_windows.cpp", source), Texts{});
  EXPECT_EQ(Violations("tool/a.cpp", source).size(), 1U);
  EXPECT_EQ(Violations("tool/a.h", source).size(), 1U);
  EXPECT_EQ(Violations("tool/a_posix.cpp", source).size(), 1U);
  EXPECT_EQ(Violations("bench/a_windows.cpp", source).size(), 1U) << "its tool names it, and it does not";
  EXPECT_EQ(Violations("middle/a_windows.cpp", source).size(), 1U);
}

TEST(RoomRules, RefusePathsThatDoNotStartAtTheSources) {
  EXPECT_EQ(Violations("low/a.cpp", "#include \"b.h\""), Texts{"low/a.cpp includes b.h"});
  EXPECT_EQ(Violations("middle/a.cpp", "#include \"../low/b.h\"").size(), 1U);
  EXPECT_EQ(Violations("new_folder/a.cpp", ""), Texts{"new_folder/a.cpp is in no room"});
  EXPECT_EQ(Violations("low/deeper/a.cpp", ""), Texts{"low/deeper/a.cpp is in no room"});
}

TEST(RoomRules, AllowNothingButTheStandardLibraryInStandardRooms) {
  for (const auto* name : {"windows.h", "asio.hpp", "nlohmann/json.hpp", "unistd.h", "string.h"}) {
    EXPECT_EQ(Violations("low/a_windows.cpp", std::string{"#include <"} + name + ">"),
              Texts{std::string{"low/a_windows.cpp includes "} + name});
  }
  EXPECT_EQ(Violations("low/a.cpp", "#include <string>\n#include <filesystem>\n"), Texts{});
}

TEST(RoomRules, KeepHeadersOfWindowsWhereTheyBelong) {
  const auto* const source = "#include <windows.h>\n#include <winsock2.h>\n";
  EXPECT_EQ(Violations("tool/a.cpp", source).size(), 2U);
  EXPECT_EQ(Violations("tool/a_posix.cpp", source).size(), 2U);
  EXPECT_EQ(Violations("tool/a_windows.cpp", source), Texts{});
  EXPECT_EQ(Violations("machine/a.h", source), Texts{});
}

TEST(RoomRules, AllowTheProgramsTheirLibrariesAndPosixInItsOwnFiles) {
  EXPECT_EQ(Violations("tool/a.cpp", "#include <asio.hpp>\n#include <CLI/CLI.hpp>\n#include <vector>"),
            Texts{});
  EXPECT_EQ(Violations("tool/a_posix.cpp",
                       "#include <sys/ioctl.h>\n#include <termios.h>\n#include <openssl/evp.h>\n"),
            Texts{});
  EXPECT_EQ(Violations("tool/a.cpp", "#include <openssl/evp.h>\n").size(), 1U);
  EXPECT_EQ(Violations("tool/a.cpp", "#include <termios.h>\n").size(), 1U);
  EXPECT_EQ(Violations("tool/a.cpp", "#include <boost/any.hpp>\n").size(), 1U);
}

TEST(RoomRules, RefuseExceptionsInStandardRoomsAlone) {
  EXPECT_EQ(Violations("low/a.cpp", "void f() { try { g(); } catch (...) { throw; } }"),
            (Texts{"low/a.cpp says try", "low/a.cpp says throw", "low/a.cpp says catch"}));
  EXPECT_EQ(Violations("tool/a.cpp", "void f() { try { g(); } catch (...) { throw; } }"), Texts{});
}

TEST(RoomRules, LookPastCommentsAndLiterals) {
  EXPECT_EQ(
      Violations("low/a.cpp",
                 "// try again, throw nothing\n/* catch\n#include <windows.h>\n*/ int retry = 1'000;\n"
                 "const char* text = \"try \\\" catch\"; char c = '\\''; auto r = R\"x(throw \" )\" )x\";\n"
                 "int catching; // #include \"page/b.h\"\n"),
      Texts{});
  EXPECT_EQ(Violations("low/a.cpp", "char c = '\"'; throw 1; char d = '\"';"), Texts{"low/a.cpp says throw"});
  EXPECT_EQ(Violations("low/a.cpp", "int n = 1'000; throw 2'000;"), Texts{"low/a.cpp says throw"});
}

}  // namespace
}  // namespace zolvane
