// The rules of `check`, and what they are applied to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench/host/dry_run.h"
#include "config/tables/current_records.h"
#include "custody/disk/disk.h"
#include "custody/findings/findings.h"
#include "custody/values/play.h"
#include "files/sectioned_text.h"
#include "operations/upload_script.h"

namespace zolvane {

// All codes, in findings.cpp. A new finding is a row there and a CheckedFile::Add in the source of its subject.
const std::vector<Rule>& Rules();

// What the add-in asked a file for.
struct AskedPlace {
  std::string Section;
  std::string Key;
  std::string Fallback;
  bool IsByWalk = false;  // by an operation, and not only by the lists of the page
};

// Makes the key of a place in the maps below. Two names that the file takes for one have the same key.
std::string IndexedAs(std::string_view section, std::string_view key);

// Puts a text of the file in double quotes, for people, and shortens a long one to its start.
std::string Shown(std::string_view text);

// A file on its way through the rules.
class CheckedFile {
 public:
  enum class Kind : std::uint8_t { Configuration, Backup };

  // For a backup `configuration` is the file that it would be imported over. `name` is for the findings.
  CheckedFile(Kind kind, std::string bytes, std::string name, const std::string& configuration);

  const Kind Is;
  const SectionedText Text;
  std::vector<SectionedText::SeenLine> Lines;

  // What opening the page, upload, download and export ask for, or the import of a backup.
  std::map<std::string, AskedPlace> Asked;

  // What opening the page writes.
  std::vector<SettingWrite> PageWrites;

  // What an upload and a download, and an export and its import, write into a configuration.
  using Places = std::map<std::string, DrySettings::Kept>;  // under IndexedAs
  Places Downloaded;
  Places Imported;

  // Whether the file has another value for this key, or none.
  bool Changes(const SettingWrite& write) const;
  bool IsWrittenByPage(std::string_view section, std::string_view key) const;

  // From 1; 0 if the file has no such key, or no such section.
  std::size_t LineOf(std::string_view section, std::string_view key) const;
  std::size_t LineOf(std::string_view section) const { return LineOf(section, ""); }

  void Add(std::string_view code, std::size_t line, std::string text);
  std::vector<Finding> TakeFindings();  // in the order of the lines

  // Runs operations on the file, with an instrument that stores every value. The writes stay in the settings
  // that are returned.
  using OperationOnFile = std::function<void(const OperationContext& context, const std::string& path)>;
  std::shared_ptr<DrySettings> Run(
      const OperationOnFile& operation, DrySettings::ReadObserver observe = [](auto, auto, auto, auto) {});

 private:
  void Watch();
  std::vector<SettingWrite> LoadPage(const DrySettings::ReadObserver& observe);
  void Store(const std::vector<SettingWrite>& writes);
  Places WrittenBy(const OperationOnFile& operation, const DrySettings::ReadObserver& observe);

  MemoryDisk disk_;
  std::string path_;
  std::string name_;
  std::map<std::string, std::size_t> lines_;
  std::multimap<std::size_t, Finding> findings_;  // by line
};

// ---- The rules, a subject a source

// Lines that stand twice, that nothing reads, or that are missing.
void CheckLines(CheckedFile& file);

// Texts that do not convert, lines that are too short or too long.
void CheckFields(CheckedFile& file);

// What the page and the operations make of a configuration.
void CheckOperations(CheckedFile& file);

// Classes, codes and names of the items in the lists, by which upload and query find them.
void CheckItems(CheckedFile& file, const Configuration& configuration);

// Numbers of which the upload, whose lines are in `script`, sends less than the file says.
void CheckRounding(CheckedFile& file, const CurrentRecords& inForce, const std::vector<UploadLine>& script);

// What a backup, or the way over the instrument and back, would change.
void CheckRoundTrips(CheckedFile& file);

}  // namespace zolvane
