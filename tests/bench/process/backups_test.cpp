// Exports and imports.
#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "bench/bench_process.h"
#include "text/joined.h"

namespace zolvane {
namespace {

TEST_F(Bench, AnExportAndAnImportGoThroughTheFileDialogue) {
  Folder.Put("job.txt", "import\nexport backup.bak\nimport ./backup.bak\nexport\n");
  const auto backup = Folder.Path("backup.bak");
  const std::string filter =
      R"("filter":"Backup files (*.bak)|*.bak|Configuration Files (*.ini)|*.ini|All files (*.*)|*.*",)"
      R"("filter_index":1,"default_extension":"bak",)";
  std::vector<std::string> dialogues;
  for (const auto& event : TraceOf({"--yes", "--keep-going", "run", "job.txt"}, {"file_dialog"})) {
    dialogues.push_back(event.dump());
  }
  EXPECT_EQ(dialogues,
            (std::vector<std::string>{
                R"({"event":"file_dialog","kind":"open","title":"Hestrion Settings File Import",)" + filter +
                    R"("flags":null,"file_name":"ZolvaneINIExport","chosen":null})",
                R"({"event":"file_dialog","kind":"save","title":"Hestrion Settings File Export",)" + filter +
                    R"("flags":2054,"file_name":"ZolvaneINIExport","chosen":")" + backup + R"("})",
                R"({"event":"file_dialog","kind":"open","title":"Hestrion Settings File Import",)" + filter +
                    R"("flags":2054,"file_name":")" + backup + R"(","chosen":")" + backup + R"("})",
                R"({"event":"file_dialog","kind":"save","title":"Hestrion Settings File Export",)" + filter +
                    R"("flags":2054,"file_name":")" + backup + R"(","chosen":null})",
            }));
}

TEST_F(Bench, AnExportSeparatesItsTablesByBlankLines) {
  EXPECT_EQ(TraceOf({"export", "backup.bak"}, {"append_blank_line"}).size(), 9U);
}

TEST_F(Bench, AnImportAddsOneBlankLineOnly) {
  Folder.Put("backup.bak", otherModules);
  EXPECT_EQ(TraceOf({"--yes", "import", "backup.bak"}, {"append_blank_line"}).size(), 1U);
}

TEST_F(Bench, TheMessageLoopRunsAfterAFileWasChosen) {
  Folder.Put("job.txt", "import\nexport backup.bak\n");
  EXPECT_EQ(TraceOf({"--yes", "--keep-going", "run", "job.txt"}, {"yield"}).size(), 1U);
}

TEST_F(Bench, AnExportIntoAFileThatExistsMergesWhenThatIsWanted) {
  Folder.Put("backup.bak", "[Mine]\r\nKey=1\r\n");
  const auto result = Run({"--replace", "export", "backup.bak"});
  EXPECT_EQ(result.Status, 0);
  EXPECT_NE(result.Errors.find("\"" + Folder.Path("backup.bak") +
                               "\" exists: the add-in merges, so what it does not "
                               "export stays in it\n"),
            std::string::npos)
      << result.Errors;
  EXPECT_TRUE(Folder.Read("backup.bak").starts_with("[Mine]\r\nKey=1\r\n"));
  EXPECT_NE(Folder.Read("backup.bak").find("[DeviceType]"), std::string::npos);
}

TEST_F(Bench, AnExportIntoAFileThatTheSameRunMadeIsNoMerging) {
  Folder.Put("job.txt", "export backup.bak\nexport backup.bak\nimport backup.bak\n");
  EXPECT_EQ(Run({"--yes", "run", "job.txt"}).Status, 0);
}

TEST_F(Bench, AnExportToTheConfigurationFileIsRefusedHoweverItIsSpelled) {
  for (const std::string file : {"Zolvane.ini", "./x/../ZOLVANE.INI"}) {
    const auto result = Run({"--folder", ".", "export", file});
    EXPECT_EQ(result.Status, 1) << file;
    EXPECT_NE(result.Errors.find("zolvane-bench: Export Calibration Data: It is not possible to export the "
                                 "calibration data to the current library file Zolvane.ini.\n"),
              std::string::npos)
        << result.Errors;
  }
  EXPECT_EQ(Configuration(), configText);
}

TEST_F(Bench, AnImportOfTheConfigurationFileIsRefused) {
  const auto result = Run({"--yes", "--json", "import", "Zolvane.ini"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(ActionsOf(result)[0]["outcome"], "refused");
  EXPECT_EQ(Configuration(), configText);
}

// ---- Links to the configuration ----

struct LinkUse {
  const char* Command;
  const char* File;
};

void PrintTo(const LinkUse& use, std::ostream* to) {
  *to << use.Command << ' ' << use.File;
}

class LinkToTheConfiguration : public Bench, public testing::WithParamInterface<LinkUse> {
 protected:
  LinkToTheConfiguration() {
    std::filesystem::create_symlink("Zolvane.ini", Folder.Path("symbolic"));
    std::filesystem::create_hard_link(Folder.Path("Zolvane.ini"), Folder.Path("hard"));
  }
};

INSTANTIATE_TEST_SUITE_P(Bench, LinkToTheConfiguration,
                         testing::Values(LinkUse{"import", "symbolic"}, LinkUse{"import", "hard"},
                                         LinkUse{"export", "symbolic"}, LinkUse{"export", "hard"}),
                         [](const auto& use) {
                           return std::string{use.param.Command} + "_" + use.param.File;
                         });

TEST_P(LinkToTheConfiguration, IsRefusedAsTheConfigurationItself) {
  const auto result = Run({"--yes", "--json", GetParam().Command, GetParam().File});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(ActionsOf(result)[0]["outcome"], "refused");
  EXPECT_EQ(Configuration(), configText);
}

TEST_P(LinkToTheConfiguration, IsToldInARunFile) {
  Folder.Put("job", Joined(GetParam().Command, " ", GetParam().File, "\n"));
  const auto result = Run({"--yes", "--quiet", "run", "job"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_NE(result.Errors.find(Joined(GetParam().File, "\" leads to \"")), std::string::npos)
      << result.Errors;
  EXPECT_EQ(Configuration(), configText);
}

// ---- Choosing a file ----

TEST_F(Bench, AFileDialogueWithoutAFileIsCancelled) {
  const auto result = Run({"export"});
  EXPECT_EQ(result.Status, 1);
  EXPECT_EQ(result.Output, "export: cancelled\n");
  EXPECT_EQ(result.Errors, "zolvane-bench: Hestrion Settings File Export: cancelled, as no FILE was given\n");
}

TEST_F(Bench, AFileThatIsGoneWhenItsDialogueOpensIsNotLoaded) {
  Folder.Put("job.txt", "export backup.bak\nimport backup.bak\n");
  SetKey("ExportCalibrationData", "0");
  const auto before = Configuration();
  const auto result = Run({"--yes", "--json", "--keep-going", "run", "job.txt"});
  EXPECT_EQ(result.Status, 2);
  EXPECT_EQ(ActionsOf(result)[0]["outcome"], "disabled");
  EXPECT_EQ(ActionsOf(result)[1]["outcome"], "unusable");
  EXPECT_EQ(Configuration(), before);
}

// ---- Encodings ----

class UnwritableCharacters : public Bench {
 protected:
  UnwritableCharacters() {
    Folder.Put("Zolvane.ini", std::string{configText} + "; f\xFCr alle\r\n");
    Folder.Put("backup.bak", "[CageType]\r\nItem1=\"\xCE\xA9 \xE6\xB0\xB4?\",MICROTITER\r\n");
  }
};

TEST_F(UnwritableCharacters, BecomeQuestionMarks) {
  EXPECT_EQ(Run({"--yes", "import", "backup.bak"}).Status, 0);
  EXPECT_NE(Configuration().find("Item1=\"? ??\",MICROTITER"), std::string::npos);
}

TEST_F(UnwritableCharacters, AreCounted) {
  const auto result = Run({"--yes", "--json", "import", "backup.bak"});
  EXPECT_EQ(ActionsOf(result)[0]["characters_lost"], 2);
  EXPECT_NE(
      result.Errors.find("characters that the encoding of a settings file lacks were written as \"?\": 2"),
      std::string::npos);
}

TEST_F(UnwritableCharacters, AreToldInTheResult) {
  EXPECT_NE(Run({"--yes", "import", "backup.bak"}).Output.find("2 characters written as \"?\""),
            std::string::npos);
}

class Utf16 : public Bench {
 protected:
  Utf16() {
    for (const char unit : configText) {
      Text.append({unit, '\0'});
    }
  }

  std::string Text;
};

TEST_F(Utf16, IsRefusedAsABackupAndLeftAlone) {
  Folder.Put("backup.bak", Text);
  EXPECT_EQ(Run({"--yes", "import", "backup.bak"}).Status, 2);
  EXPECT_EQ(Run({"--yes", "export", "backup.bak"}).Status, 2);
  EXPECT_EQ(Folder.Read("backup.bak"), Text);
}

TEST_F(Utf16, IsRefusedAsTheConfigurationAndLeftAlone) {
  Folder.Put("Zolvane.ini", Text);
  EXPECT_EQ(Run({"select", "cboDeviceType", "Beta"}).Status, 2);
  EXPECT_EQ(Configuration(), Text);
}

}  // namespace
}  // namespace zolvane
