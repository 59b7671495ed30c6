#include "documents/configuration_reference.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "config/tables/axes.h"
#include "config/tables/devices.h"
#include "config/tables/heads.h"
#include "config/tables/heights.h"
#include "config/tables/modules.h"
#include "config/tables/nests.h"
#include "config/tables/plates.h"
#include "config/tables/stage.h"
#include "config/tables/tips.h"
#include "operations/upload_script.h"
#include "page/page_controls.h"
#include "support/form_session.h"
#include "support/golden.h"

namespace zolvane {
namespace {

constexpr std::array<std::string_view, 15> unitNames{
    "",           "µl",         "mm",         "0.01 mm", "mm per step", "steps per file unit",
    "file units", "file units", "file units", "Z steps", "S steps",     "SDX steps",
    "SDY steps",  "X counts",   "Y counts"};

std::string_view NameOf(Unit unit) {
  return unitNames.at(static_cast<std::size_t>(unit));
}

// ---- What the operations do with a value ----

// Key and value of each line of an upload.
using Script = std::map<std::string, std::string>;

Script UploadOf(OperationFixture& operation) {
  operation.Refresh();
  Script script;
  const auto lines =
      operation.Config.Settings.SplitText("\r\n", BuildUploadScript(operation.Config, nullptr));
  for (const auto& line : lines) {
    const auto blank = line.rfind(' ');
    script[line.substr(0, blank)] = line.substr(blank + 1);
  }
  return script;
}

// Where a value stands: a key of a section, or a piece of its numbered lines.
struct Place {
  std::string Section;
  std::string Key;                   // of a line: what stands in front of its number
  std::optional<std::size_t> Piece;  // of a line
};

std::string OtherText(const std::string& text, const ValueTexts& values) {
  switch (values.Kind) {
    case ValueKind::Text:
      return text.starts_with('"') ? "\"X" + text.substr(1) : "X" + text;
    case ValueKind::Flag:
      return FlagText(text != "1");
    case ValueKind::Whole:
    case ValueKind::Real:
      break;
  }
  return GeneralText(LeadingNumber(text) + 8);
}

void ChangePiece(FakeSettings& settings, const Place& place, const std::string& key,
                 const ValueTexts& values) {
  auto pieces = settings.SplitText(",", settings.Value(place.Section, key).value()).value();
  if (*place.Piece < pieces.size()) {
    pieces[*place.Piece] = OtherText(pieces[*place.Piece], values);
  }
  std::string line;
  for (const auto& piece : pieces) {
    line += (line.empty() ? "" : ",") + piece;
  }
  settings.Set(place.Section, key, line);
}

// Gives the value another text, in every line that has it.
void Change(FakeSettings& settings, const Place& place, const ValueTexts& values) {
  if (!place.Piece) {
    settings.Set(place.Section, place.Key,
                 OtherText(settings.Value(place.Section, place.Key).value_or(""), values));
    return;
  }
  for (int number = 1; settings.Value(place.Section, place.Key + WholeText(number)); ++number) {
    ChangePiece(settings, place, place.Key + WholeText(number), values);
  }
}

// The lines of the upload that another value changes, by their instrument keys.
std::vector<std::string> UploadedAs(const Place& place, const ValueTexts& values) {
  OperationFixture operation{SampleConfiguration()};
  static const auto before = UploadOf(operation);
  Change(operation.Settings(), place, values);
  const auto after = UploadOf(operation);
  std::vector<std::string> keys;
  for (const auto& [command, value] : before) {
    const auto found = after.find(command);
    if (found == after.end() || found->second != value) {
      keys.push_back(command.substr(std::string_view{"SET_CALIBRATION "}.size()));
    }
  }
  return keys;
}

// The file after a download from an instrument that gives every question this answer.
std::unique_ptr<FormSession> AfterDownload(const std::string& answer) {
  auto session = std::make_unique<FormSession>(SampleConfiguration());
  session->LoadDefaults();
  session->Link().DefaultReply = Answer(answer);
  session->Form->PressButton(downloadButton);
  return session;
}

class DownloadedPlaces {
 public:
  bool Contain(const Place& place) const {
    if (!place.Piece) {
      return Value(*known_, place.Section, place.Key) != Value(*unknown_, place.Section, place.Key);
    }
    for (int number = 1; known_->Settings().Value(place.Section, place.Key + WholeText(number)); ++number) {
      if (Piece(*known_, place, number) != Piece(*unknown_, place, number)) {
        return true;
      }
    }
    return false;
  }

 private:
  static std::string Value(FormSession& session, const std::string& section, const std::string& key) {
    return session.Settings().Value(section, key).value_or("");
  }

  static std::string Piece(FormSession& session, const Place& place, int number) {
    const auto pieces = session.Settings()
                            .SplitText(",", Value(session, place.Section, place.Key + WholeText(number)))
                            .value();
    return *place.Piece < pieces.size() ? pieces[*place.Piece] : "";
  }

  std::unique_ptr<FormSession> known_ = AfterDownload("KEY=4711");
  std::unique_ptr<FormSession> unknown_ = AfterDownload("SYNTAX_ERROR");
};

// ---- Who reads a section ----

struct Operation {
  std::string_view Name;
  int Button;
};

constexpr std::array<Operation, 5> operations{{{"Query Zolvane", queryButton},
                                               {"Save To Zolvane", uploadButton},
                                               {"Load From Zolvane", downloadButton},
                                               {"Load from File", importButton},
                                               {"Save To File", exportButton}}};

constexpr std::string_view inBackup = " in /backup/sample.bak";

// The calls that opening the page and each operation make.
class Calls {
 public:
  Calls() {
    Collect("opening the page", [](FormSession& session) { session.Form->IAddInForm_LoadDefaults(); });
    for (const auto& operation : operations) {
      Collect(operation.Name, [&operation](FormSession& session) {
        session.LoadDefaults();
        session.Form->PressButton(operation.Button);
      });
    }
  }

  // Who makes calls of a kind ("read ", "write ") in the section of Zolvane.ini, with commas.
  std::string Makers(std::string_view kind, std::string_view section) const {
    std::string names;
    const auto start = std::string{kind}.append("[").append(section).append("] ");
    for (const auto& [name, calls] : made_) {
      const bool isMaker = std::ranges::any_of(
          calls, [&](const auto& call) { return call.starts_with(start) && !call.ends_with(inBackup); });
      names += isMaker ? (names.empty() ? "" : ", ") + std::string{name} : "";
    }
    return names.empty() ? "nobody" : names;
  }

 private:
  template <class Play>
  void Collect(std::string_view name, Play play) {
    FormSession session{SampleConfiguration()};
    session.Process.FileAnswers = {"/backup/sample.bak"};
    if (name == "Load from File") {
      session.Process.BoxAnswers = {message_answer::yes};
    }
    session.Settings().Load("/backup/sample.bak", SampleConfiguration());
    session.Link().Replies["RFID READ_PERSISTENT"] = {Answer("1,0,5A4C0150AA7F2031,0,OK")};
    play(session);
    made_.emplace_back(name, session.Calls.Events);
  }

  std::vector<std::pair<std::string_view, std::vector<std::string>>> made_;
};

// ---- The document ----

class Reference {
 public:
  void Add(std::string_view text) { text_.append(text); }

  // The rows of a table. `title` is the section as people write it, `section` the one of the sample that is looked at.
  template <class Record>
  void AddTable(std::string_view title, const std::string& section, const RecordTable<Record>& table,
                std::string_view line, std::string_view about) {
    StartSection(title, section, about);
    StartTable();
    for (const auto& field : table.Fields) {
      if (field.IsRead) {
        AddRow(field, section, line);
      }
    }
  }

  template <class Record>
  void AddMoreRows(const std::string& section, const RecordTable<Record>& table) {
    for (const auto& field : table.Fields) {
      AddRow(field, section, "");
    }
  }

  std::string Text() && { return std::move(text_); }

 private:
  void StartSection(std::string_view title, const std::string& section, std::string_view about) {
    text_.append("\n## `[").append(title).append("]`\n\n").append(about).append("\n\n");
    text_.append("Read by: ").append(calls_.Makers("read ", section)).append(".  \n");
    text_.append("Written by: ").append(calls_.Makers("write ", section)).append(".\n\n");
    rows_.clear();
    last_.clear();
  }

  void StartTable() {
    text_ +=
        "| Key | Place | Value | Unit | What converts | Missing | Save To Zolvane | Load From Zolvane |\n"
        "|---|---|---|---|---|---|---|---|\n";
  }

  template <class Record>
  void AddRow(const Field<Record>& field, const std::string& section, std::string_view line) {
    const bool isPiece = field.IsLinePiece();
    const Place place{.Section = section,
                      .Key = isPiece ? std::string{line} : std::string{field.SectionKey},
                      .Piece = isPiece ? std::optional{field.Piece} : std::nullopt};
    const auto key = isPiece ? std::string{line} + "*n*" : "`" + place.Key + "`";
    if (!rows_.emplace(place.Key, place.Piece).second) {
      return;  // a second row of the same place
    }
    const auto fallback = field.Fallback.empty() ? std::string{} : "`" + std::string{field.Fallback} + "`";
    AddCells({key, isPiece ? WholeText(static_cast<int>(field.Piece) + 1) : "", Called(field.Title, place),
              std::string{NameOf(field.FileUnit)}, std::string{field.Values->ForPeople}, fallback,
              Uploaded(place, *field.Values), downloaded_.Contain(place) ? "stored" : ""});
  }

  static std::string Called(std::string_view title, const Place& place) {
    return !title.empty() || !place.Piece ? std::string{title} : std::string{"kept as it is"};
  }

  // A number is sent; a text or a flag decides what is.
  static std::string Uploaded(const Place& place, const ValueTexts& values) {
    const auto keys = UploadedAs(place, values);
    if (keys.empty()) {
      return {};
    }
    const bool isNumber = values.Kind == ValueKind::Whole || values.Kind == ValueKind::Real;
    const auto more =
        keys.size() == 1 ? "" : " and " + WholeText(static_cast<int>(keys.size()) - 1) + " more";
    return isNumber ? "`" + keys.front() + "`" + more : "decides " + WholeText(static_cast<int>(keys.size()));
  }

  // Neighbours that differ in their place alone are one row.
  void AddCells(std::vector<std::string> cells) {
    auto sameHere = last_;
    if (!last_.empty()) {
      sameHere[placeCell] = cells[placeCell];
    }
    if (sameHere == cells && !cells[placeCell].empty()) {
      text_.resize(lastStart_);
      cells[placeCell] =
          last_[placeCell].substr(0, last_[placeCell].find(dash)).append(dash) + cells[placeCell];
    }
    lastStart_ = text_.size();
    for (const auto& cell : cells) {
      text_.append("| ").append(cell).append(cell.empty() ? "" : " ");
    }
    text_ += "|\n";
    last_ = std::move(cells);
  }

  static constexpr std::size_t placeCell = 1;
  static constexpr std::string_view dash = "–";

  std::string text_;
  std::vector<std::string> last_;  // row, and where it starts
  std::size_t lastStart_ = 0;
  std::set<std::pair<std::string, std::optional<std::size_t>>> rows_;
  Calls calls_;
  DownloadedPlaces downloaded_;
};

constexpr std::string_view preface =
    "# Zolvane.ini, key by key\n"
    "\n"
    "The program makes this page from the tables by which it loads and saves the file, and from what its "
    "operations do\n"
    "with each value of [the sample](../samples/Zolvane.ini). A test holds it to them.\n"
    "\n"
    "- **Key**: `Item`*n* is a numbered line. Its values stand between commas; **Place** counts them from "
    "1.\n"
    "- **What converts**: \"number\" takes the number at the start of a text and else 0. \"number alone\" "
    "and \"whole alone\"\n"
    "  leave the value empty if anything else stands there. Whole numbers are rounded, halves to the even "
    "one. A number\n"
    "  beyond its range counts as not converted. The decimal sign is \".\" everywhere.\n"
    "- **Missing**: what a key that is not in the file reads as, where that is not empty.\n"
    "- **Save To Zolvane**: the instrument's key under which a number is sent; a text, a flag or a name "
    "*decides* that\n"
    "  many of the lines that are sent.\n"
    "- **Load From Zolvane**: \"stored\" where an answer of the instrument replaces the value.\n"
    "- **file units** are those of the serial-dilute X and Y: the device's step factor makes motor steps of "
    "them, and the\n"
    "  axis' scale millimetres (0.01 mm in the sample).\n"
    "- DEVICE and MODULE in a section stand for the names of a device and a module.\n"
    "- Values \"kept as they are\" are loaded and saved, and nothing here uses them. The host may.\n"
    "\n"
    "Each section with numbered lines can have two keys more. `Installed` holds the number of the item that "
    "is fitted:\n"
    "the page writes it when it opens and when you choose, Query Zolvane when it finds something. `Default` "
    "(text, `=`, a\n"
    "name in double quotes) names the entry that a list selects first; the installed one is selected right "
    "after, so it\n"
    "never lasts.\n";

void AddSwitches(Reference& reference) {
  reference.Add(
      "\nThe page's check boxes stand in the same section; any value but 0 or False ticks a box. Query "
      "Zolvane reads the\n"
      "first one, with 1 if it is missing.\n\n| Key | Box |\n|---|---|\n");
  for (const auto& row : checkRows) {
    reference.Add("| `" + std::string{row.Key} + "` | " + std::string{row.Label} + " |\n");
  }
}

constexpr std::string_view ending =
    "\n## `[PumpControl]`\n"
    "\n"
    "`ModuleInstalled` (1 or 0): the page shows it as \"Connected\" or \"Not Connected\". Query Zolvane "
    "writes 0 whenever\n"
    "the instrument answers the question about pumps.\n"
    "\n"
    "## `[VolumeCorrection_…]`\n"
    "\n"
    "One section for a head's layout and a tip volume (`VolumeCorrection_8_CH_300`), and those that tips "
    "name. The lines\n"
    "`1Item`, `2Item`, … up to the first one that is missing hold: the volume (for people), the factor, and "
    "the\n"
    "instrument's key in double quotes. Save To Zolvane sends the factor times 100000. Nothing writes these "
    "sections.\n";

}  // namespace

std::string ConfigurationReference() {
  Reference reference;
  reference.Add(preface);
  reference.AddTable<DeviceTypeRecord>("DeviceType", "DeviceType", deviceTable, "Item",
                                       "The models of the instrument, and the switches of the whole device.");
  AddSwitches(reference);
  reference.AddTable<CageTypeRecord>("CageType", "CageType", cageTable, "Item",
                                     "The pipetting modules. Query Zolvane finds one by its class.");
  reference.AddTable<AxisRecord>(
      "Device_TypeDEVICE_CageMODULE", "Device_TypeZolvane 400_Cage1/8/12 Module", axisTable, "Axis",
      "The motor axes of a device with a module: `Axis1`, `Axis2`, … by the names X, Y, Z, "
      "S, SDX, SDY, SDS.");
  reference.AddTable<HeadTypeRecord>(
      "HeadType", "HeadType", headTable, "Item",
      "The pipette heads. Where a head has the five offsets below, its head eject S is not saved as it was "
      "loaded: saved is\n"
      "the aspirate origin plus `SDHeadEjectOffsetMM` in steps, and 0 for all other heads.");
  reference.AddMoreRows("HeadType", headOffsetTable);
  reference.AddTable<TipTypeRecord>("TipType", "TipType", tipTable, "Item", "The kinds of tips.");
  reference.AddTable<NestTypeRecord>("NestType", "NestType", nestTable, "Item",
                                     "The holders in which heads are parked, each with three places.");
  reference.AddTable<NestCalibrationRecord>("NestCalibration", "NestCalibration", nestCalibrationTable,
                                            "Item", "The taught places of the nests.");
  reference.AddTable<ZCalibrationRecord>("Z_Calibration", "Z_Calibration", heightTable, "", "The heights.");
  reference.AddTable<CalibrationRecord>("Calibration_DEVICE", "Calibration_Zolvane 400", calibrationTable,
                                        "Item", "The stage calibration of a device.");
  reference.AddTable<PositionRecord>("Position_DEVICE", "Position_Zolvane 400", positionTable, "Item",
                                     "The places on the stage of a device.");
  reference.AddTable<PlateTypeRecord>("PlateType", "PlateType", plateTable, "Item", "The labware library.");
  reference.Add(ending);
  return std::move(reference).Text();
}

}  // namespace zolvane
