#include "zolvane/zolvane_fixture.h"

namespace zolvane {
namespace {

using Looking = Zolvane;

TEST_F(Looking, CheckOfTheSampleFindsNoError) {
  const auto document = RunJson({"check"});
  EXPECT_EQ(document.at("exit_status"), 0);
  EXPECT_EQ(document.at("counts").at("error"), 0);
  EXPECT_EQ(document.at("counts").at("warning"), 0);
  EXPECT_FALSE(document.contains("outcome"));
}

TEST_F(Looking, CheckOfADamagedValueNamesFileAndLine) {
  Replace("0.01,800,32000", "0.O1,800,32000");
  const auto document = RunJson({"check"});
  bool isNamed = false;
  for (const auto& finding : document.at("findings")) {
    const auto file = finding.at("file").get<std::string>();
    isNamed = isNamed || (file.ends_with("Zolvane.ini") && finding.at("line") == 42);
  }
  EXPECT_TRUE(isNamed) << document.dump(2);
}

TEST_F(Looking, AFileWithoutASectionOfTheAddInIsNoSide) {
  for (const auto* const bytes : {"", "hello\n", "{}\n", "<!DOCTYPE"}) {
    const auto file = Folder.Put("other.txt", bytes);
    for (const Words& words : {Words{"show", file}, Words{"--wire", "show", file},
                               Words{"diff", file, "file"}, Words{"check", file}}) {
      const auto run = RunAlone(words);
      EXPECT_EQ(run.Status, 2) << bytes << " " << run.All();
      EXPECT_NE(run.Errors.find("is no configuration, no backup and no record"), std::string::npos)
          << run.Errors;
    }
  }
}

TEST_F(Looking, EachSectionOfTheSampleIsASideByItself) {
  const auto sample = Sample();
  for (auto begin = sample.find('['); begin != std::string::npos;) {
    const auto end = sample.find("\n[", begin);
    const auto file = Folder.Put("part.ini", sample.substr(begin, end - begin) + "\n");
    const auto run = RunAlone({"--quiet", "show", file});
    EXPECT_EQ(run.Status, 0) << sample.substr(begin, 40) << run.Errors;
    begin = end == std::string::npos ? end : end + 1;
  }
}

TEST_F(Looking, ARecordWithoutAnInstrumentIsSaidToHaveOneFaceOnly) {
  const auto record = Folder.Path("record.html");
  ASSERT_EQ(RunAlone({"backup", record}).Status, 0);
  const auto run = RunAlone({"--wire", "diff", record, "file"});
  EXPECT_EQ(run.Status, 0) << run.All();
  EXPECT_NE(run.Errors.find("holds no answers of an instrument"), std::string::npos) << run.Errors;
}

TEST_F(Looking, CheckOfABackupNamesTheErrorsThatAnImportWouldBring) {
  const auto backup = Folder.Path("own.bak");
  ASSERT_EQ(RunAlone({"export", backup}).Status, 0);
  auto altered = Folder.Read("own.bak");
  const std::string_view factor = "SDXYEncoderMMStepFactorOn=";
  const auto place = altered.find(factor) + factor.size();
  altered.replace(place, altered.find_first_of("\r\n", place) - place, "0");
  Folder.Put("own.bak", altered);
  const auto check = RunJson({"check", backup});
  ASSERT_EQ(check.at("counts").at("error"), 1) << check.dump(2);
  const auto import = RunJson({"--yes", "--despite", "changed", "import", backup});
  EXPECT_EQ(import.at("exit_status"), 3);
  const auto file = import.at("findings")[0].at("file").get<std::string>();
  EXPECT_TRUE(file.ends_with("Zolvane.ini as an import would leave it")) << file;
  EXPECT_EQ(check.at("findings").back(), import.at("findings")[0]);
}

TEST_F(Looking, CheckOfABackupNamesWhatAnImportObjectsTo) {
  const auto backup = Folder.Path("own.bak");
  ASSERT_EQ(RunAlone({"export", backup}).Status, 0);
  EXPECT_EQ(RunAlone({"check", backup}).Status, 0);
  const auto whole = Folder.Read("own.bak");
  Folder.Put("own.bak", whole.substr(0, whole.rfind('\n', whole.size() - 2) + 1));
  const auto cut = RunJson({"check", backup});
  EXPECT_EQ(cut.at("exit_status"), 1);
  EXPECT_EQ(cut.at("objections")[0].at("code"), "cut-off") << cut.dump(2);
  auto altered = whole;
  altered.replace(altered.find("STAGE,1612"), 10, "STAGE,1613");
  Folder.Put("own.bak", altered);
  EXPECT_EQ(RunJson({"check", backup}).at("objections")[0].at("code"), "changed");
  const auto audit = RunAlone({"history", "audit", "--against", backup});
  EXPECT_EQ(audit.Status, 2) << audit.All();
}

TEST_F(Looking, AFileIsTheSameAsItself) {
  const auto document = RunJson({"diff", "file", "file"});
  EXPECT_EQ(document.at("exit_status"), 0);
  EXPECT_EQ(document.at("counts").at("different"), 0);
  EXPECT_EQ(document.at("differences"), Json::array());
}

TEST_F(Looking, ADifferenceShowsBothTexts) {
  const auto other = Folder.Put("other.ini", Sample());
  Replace("MountHeight=164.35", "MountHeight=164.5");
  const auto document = RunJson({"diff", other, "file"});
  EXPECT_EQ(document.at("exit_status"), 1);
  ASSERT_EQ(document.at("differences").size(), 1U);
  EXPECT_EQ(document.at("differences")[0], (Json{{"key", "[Z_Calibration] MountHeight"},
                                                 {"a", "164.35"},
                                                 {"b", "164.5"},
                                                 {"a_measure", "164.35 mm"},
                                                 {"b_measure", "164.5 mm"}}));
}

TEST_F(Looking, ADifferenceOnTheWireIsMeasuredWhereItHasAUnit) {
  const auto other = Folder.Put("other.ini", Sample());
  Replace("MountHeight=164.35", "MountHeight=164.5");
  Replace("DeltaZ=", "DeltaZ=1");
  const auto document = RunJson({"--wire", "diff", other, "file"});
  ASSERT_EQ(document.at("differences").size(), 2U);
  EXPECT_EQ(document.at("differences")[0].at("a_measure"), "164.35 mm");
  EXPECT_EQ(document.at("differences")[0].at("b_measure"), "164.5 mm");
  EXPECT_FALSE(document.at("differences")[1].contains("a_measure")) << document.dump(2);
}

TEST_F(Looking, AnExplanationIsADocumentToo) {
  const auto document = RunJson({"check", "--explain", "gap"});
  EXPECT_EQ(document.at("exit_status"), 0);
  EXPECT_EQ(document.at("explanation").at("code"), "gap");
  EXPECT_EQ(document.at("explanation").at("grade"), "error");
  EXPECT_EQ(RunAlone({"check", "--explain", "gap"}).Output,
            "gap (error)\n\n  " + document.at("explanation").at("meaning").get<std::string>() +
                "\n  What to do: " + document.at("explanation").at("advice").get<std::string>() + "\n");
  EXPECT_EQ(RunJson({"check", "--explain", "no-such-code"}).at("problem"),
            "there is no finding \"no-such-code\"");
}

// Without what is installed it would pass for a backup.
TEST_F(Looking, TheConfigurationOfTheFolderIsOneHoweverDamaged) {
  auto text = Configuration();
  for (const std::string_view line : {"Installed=2\r\n", "Installed=3\r\n"}) {
    text.erase(text.find(line), line.size());
  }
  Folder.Put("Zolvane.ini", text);
  const auto byName = RunJson({"check", Folder.Path("Zolvane.ini")});
  EXPECT_EQ(byName.at("counts"), RunJson({"check"}).at("counts"));
  EXPECT_EQ(RunAlone({"--wire", "diff", Folder.Path("Zolvane.ini"), "file"}).Status, 0);
}

TEST_F(Looking, NumbersOfOneValueAreNoDifference) {
  const auto other = Folder.Put("other.ini", Sample());
  Replace("MountHeight=164.35", "MountHeight=+164.3500");
  EXPECT_EQ(RunAlone({"diff", other, "file"}).Status, 0);
}

TEST_F(Looking, ANewInstrumentKnowsNothingOfWhatAnUploadWouldSend) {
  const auto document = RunJson({"diff", "file", "instrument"});
  EXPECT_EQ(document.at("exit_status"), 1);
  const auto& counts = document.at("counts");
  EXPECT_GT(counts.at("only_in_a"), 100);
  EXPECT_EQ(counts.at("same"), 0);
}

TEST_F(Looking, ShowGroupsAndMeasures) {
  const auto run = RunAlone({"--wire", "show", "file", "STAGE1_X"});
  EXPECT_EQ(run.Status, 0);
  EXPECT_NE(run.Output.find("Stage XY\n  STAGE1_X"), std::string::npos) << run.Output;
}

TEST_F(Looking, AKeyOfTheFileIsFoundWithoutItsSection) {
  for (const auto* const key : {"MountHeight", "[Z_Calibration] mountheight"}) {
    const auto values = RunJson({"show", "file", key}).at("values");
    ASSERT_EQ(values.size(), 1U) << key;
    EXPECT_EQ(values[0].at("key"), "[Z_Calibration] MountHeight");
  }
  EXPECT_GT(RunJson({"show", "file", "Item1"}).at("values").size(), 20U);
}

TEST_F(Looking, AValueThatTheSideLacksIsSaid) {
  const auto run = RunAlone({"show", "file", "[NoSuch] Key"});
  EXPECT_EQ(run.Status, 2);
  EXPECT_EQ(run.Errors, "zolvane: the side has no value \"[NoSuch] Key\"\n");
}

TEST_F(Looking, AnInstrumentThatDoesNotAnswerIsUnusable) {
  const auto run = RunAlone({"--link", "none", "show", "instrument", "STAGE1_X"});
  EXPECT_EQ(run.Status, 2);
}

TEST_F(Looking, OfARecordSaysWhichOfItsFacesIsMeant) {
  const auto record = Folder.Path("record.html");
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  ASSERT_EQ(Run({"backup", record}).Status, 0);
  constexpr auto told = "this is the file's part";
  EXPECT_NE(RunAlone({"diff", record, record}).Errors.find(told), std::string::npos);
  EXPECT_NE(RunAlone({"show", record, "[Z_Calibration] MountHeight"}).Errors.find(told), std::string::npos);
  EXPECT_EQ(RunAlone({"--wire", "diff", record, record}).Errors.find(told), std::string::npos);
  EXPECT_EQ(RunAlone({"diff", "file", "file"}).Errors.find(told), std::string::npos);
}

TEST_F(Looking, CheckGivesAnAdviceOnce) {
  const auto output = RunAlone({"check"}).Output;
  const std::string_view advice = "  Enter the value as it would become, if that is right.\n";
  const auto first = output.find(advice);
  ASSERT_NE(first, std::string::npos) << output;
  EXPECT_EQ(output.find(advice, first + 1), std::string::npos) << output;
}

TEST_F(Looking, WritesNothingAnywhere) {
  RunAlone({"check"});
  RunAlone({"show", "file"});
  RunAlone({"diff", "file", "file"});
  RunAlone({"--wire", "show", "file"});
  RunAlone({"history"});
  RunAlone({"history", "audit"});
  EXPECT_EQ(Folder.Names(), std::vector<std::string>{"Zolvane.ini"});
  EXPECT_EQ(Configuration(), Sample());
}

TEST_F(Looking, ThereIsNoDriftBehindAnUpload) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto document = RunJson({"drift"});
  EXPECT_EQ(document.at("exit_status"), 0);
  EXPECT_FALSE(document.contains("drift"));
}

TEST_F(Looking, DriftShowsAllThree) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  Replace("MountHeight=164.35", "MountHeight=164.5");
  const auto document = RunJson({"drift"});
  EXPECT_EQ(document.at("exit_status"), 1);
  for (const auto& drifted : document.at("drift")) {
    EXPECT_EQ(drifted.at("left"), drifted.at("instrument"));
    EXPECT_EQ(drifted.at("left_measure"), "164.35 mm");
    EXPECT_EQ(drifted.at("file_measure"), "164.5 mm");
  }
}

TEST_F(Looking, DriftAgainstWhatTheHistoryHasLostIsRefused) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto entries = Folder.Read("Zolvane.history/journal.jsonl");
  const std::string_view member = "\"left\":\"";
  const auto name = entries.substr(entries.rfind(member) + member.size(), 64);
  ASSERT_TRUE(std::filesystem::remove(Folder.Path("Zolvane.history/objects/" + name)));
  const auto run = Run({"drift"});
  EXPECT_EQ(run.Status, 2) << run.All();
  EXPECT_NE(run.Errors.find("the history has lost what it kept as " + name), std::string::npos) << run.Errors;
}

}  // namespace
}  // namespace zolvane
