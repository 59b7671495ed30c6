#include "operations/file_copy.h"

#include <array>
#include <optional>

#include "config/tables/current_records.h"
#include "config/tables/devices.h"
#include "config/tables/heads.h"
#include "config/tables/heights.h"
#include "config/tables/modules.h"
#include "config/tables/nests.h"
#include "config/tables/plates.h"
#include "config/tables/stage.h"
#include "config/text.h"

namespace zolvane {
namespace {

// ---- Copying one table ----

struct Copy {
  const OperationContext& Context;
  const std::string& Source;
  const std::string& Destination;
  bool Separate;

  template <class Record>
  void Table(const RecordTable<Record>& table) const {
    const auto& configuration = Context.Config;
    const auto save = [&](const Record& record) { Save(table, configuration, record, Destination); };
    ForEach(table, configuration, save, Source);
    AppendBlankLine(Context, Destination, Separate);
  }
};

void CopyDevices(const Copy& copy) {
  RefreshCurrentRecords(copy.Context.Config);
  copy.Table(deviceTable);
}

void CopyCages(const Copy& copy) {
  copy.Table(cageTable);
}

void CopyHeights(const Copy& copy) {
  const auto& configuration = copy.Context.Config;
  Save(heightTable, configuration, Load(heightTable, configuration, copy.Source), copy.Destination);
  AppendBlankLine(copy.Context, copy.Destination, true);  // also where the other tables have none
}

void CopyNests(const Copy& copy) {
  copy.Table(nestCalibrationTable);
  copy.Table(nestTable);
}

void CopyHeads(const Copy& copy) {
  copy.Table(headTable);
}

void CopyPositions(const Copy& copy) {
  copy.Table(calibrationTable);
  copy.Table(positionTable);
}

void CopyPlates(const Copy& copy) {
  copy.Table(plateTable);
}

struct CopyStep {
  std::string_view Status;
  void (*Run)(const Copy& copy);
};

// Tip types, axes and volume corrections stay where they are.
constexpr auto copySteps = std::to_array<CopyStep>({
    {"...Device setup data", CopyDevices},
    {"...Pipetting module data", CopyCages},
    {"...Height data", CopyHeights},
    {"...Head nest data", CopyNests},
    {"...Pipette head data", CopyHeads},
    {"...Stage position data", CopyPositions},
    {"...Labware library data", CopyPlates},
});

// ---- Choosing the file ----

void SetUp(FileDialogue& dialogue, std::string_view title) {
  dialogue.DefaultExtension = "bak";
  dialogue.Title = title;
  dialogue.Filter = "Backup files (*.bak)|*.bak|Configuration Files (*.ini)|*.ini|All files (*.*)|*.*";
  dialogue.FilterIndex = 1;
  dialogue.CancelIsError = true;
}

// The chosen file, or nullopt if the user chose none.
std::optional<std::string> ChooseFile(const OperationContext& context, FileDialogueKind kind,
                                      FileDialogue& dialogue) {
  const auto chosen = context.Dialogues.ShowFileDialogue(kind, dialogue);
  if (!chosen) {
    return std::nullopt;
  }
  context.Process.RunMessageLoopOnce();
  dialogue.FileName = *chosen;
  return chosen->empty() ? std::nullopt : chosen;
}

// Only the texts are compared: another spelling of the same path is not noticed.
bool IsConfigFile(const OperationContext& context, std::string_view file) {
  return EqualIgnoringCase(file, context.Config.Settings.ConfigFilePath());
}

void ShowBox(const OperationContext& context, std::string_view title, std::int32_t style, std::string text) {
  PassOver(context.Dialogues.ShowMessageBox(
      {.Text = std::move(text), .Style = style, .Title = std::string{title}}));
}

constexpr std::string_view importTitle = "Import Calibration Data";
constexpr std::string_view exportTitle = "Export Calibration Data";

bool ImportIsConfirmed(const OperationContext& context) {
  return context.Dialogues.ShowMessageBox(
             {.Text = "This feature will enable you to import calibration data\r\n"
                      "from an external file. All data in the current file will\r\n"
                      "be overwritten and cannot be retrieved. \r\n\r\n"
                      "Import calibration data from an external file?",
              .Style = message_style::yesNoCancel + message_style::exclamationIcon,
              .Title = std::string{importTitle}}) == message_answer::yes;
}

void ImportFrom(const OperationContext& context, const std::string& file) {
  if (IsConfigFile(context, file)) {
    ShowBox(context, importTitle, message_style::stopIcon,
            "It is not possible to import the calibration data \r\n"
            "from the current library file Zolvane.ini.");
    return;
  }
  CopyAllTables(context, file, context.Config.Settings.ConfigFilePath(), false, "Importing");
  ShowBox(context, importTitle, message_style::informationIcon,
          "Your calibration data has been imported from:\r\n\r\n" + file + "\r\n\r\n");
  context.Page.LoadDefaults();
}

void ExportTo(const OperationContext& context, const std::string& file) {
  if (IsConfigFile(context, file)) {
    ShowBox(context, exportTitle, message_style::stopIcon,
            "It is not possible to export the calibration data \r\n"
            "to the current library file Zolvane.ini.");
    return;
  }
  CopyAllTables(context, context.Config.Settings.ConfigFilePath(), file, true, "Exporting");
  ShowBox(context, exportTitle, message_style::informationIcon,
          "Your calibration data has been exported to:\r\n\r\n" + file +
              "\r\n\r\nYou can import the data in this file to reset your \r\n"
              "calibration data at any time using this Add-In module.");
}

}  // namespace

FileDialogue DesignedFileDialogue() {
  FileDialogue dialogue;
  dialogue.Title = "Hestrion Settings File";
  dialogue.Filter = "*.ini|*.*";
  dialogue.DefaultExtension = "bak";
  dialogue.FileName = "ZolvaneINIExport";
  return dialogue;
}

void ImportCalibrationFile(const OperationContext& context, FileDialogue& cdgFile) {
  PassOver(context.Page.EnableControls(false));
  if (ImportIsConfirmed(context)) {
    SetUp(cdgFile, "Hestrion Settings File Import");
    if (const auto file = ChooseFile(context, FileDialogueKind::Open, cdgFile)) {
      ImportFrom(context, *file);
    }
  }
  PassOver(context.Page.EnableControls(true));
  PassOver(context.Host.SetStatusText(""));
}

void ExportCalibrationFile(const OperationContext& context, FileDialogue& cdgFile) {
  PassOver(context.Page.EnableControls(false));
  SetUp(cdgFile, "Hestrion Settings File Export");
  cdgFile.Flags = file_dialogue_flag::overwritePrompt + file_dialogue_flag::hideReadOnly +
                  file_dialogue_flag::pathMustExist;
  if (const auto file = ChooseFile(context, FileDialogueKind::Save, cdgFile)) {
    ExportTo(context, *file);
  }
  PassOver(context.Host.SetStatusText(""));
  PassOver(context.Page.EnableControls(true));
}

void CopyAllTables(const OperationContext& context, const std::string& source, const std::string& destination,
                   bool separate, std::string_view prefix) {
  const Copy copy{.Context = context, .Source = source, .Destination = destination, .Separate = separate};
  for (const auto& step : copySteps) {
    PassOver(context.Host.SetStatusText(std::string{prefix}.append(step.Status)));
    step.Run(copy);
  }
}

void AppendBlankLine(const OperationContext& context, const std::string& file, bool flag) {
  if (flag) {
    PassOver(context.Process.AppendBlankLine(file));
  }
}

}  // namespace zolvane
