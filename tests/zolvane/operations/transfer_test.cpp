#include <map>

#include "support/long_tests.h"
#include "zolvane/zolvane_fixture.h"

namespace zolvane {
namespace {

class TransferInCustody : public Zolvane {
 protected:
  std::string Journal() const { return Folder.Read("Zolvane.history/journal.jsonl"); }

  // The last entry of the history.
  Json LastEntry() const {
    const auto text = Journal();
    const auto begin = text.rfind('\n', text.size() - 2) + 1;
    return Json::parse(text.substr(begin));
  }

  // The word is a promise: it stands in an output only beside exit status 0.
  static void ExpectHonest(const ProgramRun& run) {
    const bool claims = run.All().find("done") != std::string::npos;
    EXPECT_EQ(claims, run.Status == 0) << run.All();
  }
};

TEST_F(TransferInCustody, AnUploadIsVerifiedSavedAndRecorded) {
  const auto document = RunJson({"--yes", "--by", "Ada", "--reason", "new chute", "upload"});
  EXPECT_EQ(document.at("exit_status"), 0);
  EXPECT_EQ(document.at("outcome"), "done");
  const auto& counts = document.at("counts");
  EXPECT_GT(counts.at("values"), 100);
  EXPECT_EQ(counts.at("verified"), counts.at("values"));
  EXPECT_EQ(counts.at("saved"), 1);
  for (const auto& value : document.at("values")) {
    EXPECT_EQ(value.at("verdict"), "verified");
  }
  EXPECT_FALSE(Kept("STAGE1_X").is_null());
  const auto entry = LastEntry();
  EXPECT_EQ(entry.at("action"), "upload");
  EXPECT_EQ(entry.at("outcome"), "done");
  EXPECT_EQ(entry.at("person"), "Ada");
  EXPECT_EQ(entry.at("reason"), "new chute");
  EXPECT_EQ(entry.at("instrument"), "ZV400");
}

TEST_F(TransferInCustody, AfterwardsFileAndInstrumentAgree) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  EXPECT_EQ(Run({"diff", "file", "instrument"}).Status, 0);
}

TEST_F(TransferInCustody, AValueThatWasNotStoredKeepsSaveBack) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto memory = Memory();
  Replace("STAGE,1612,", "STAGE,11612,");
  const auto run = Run({"--yes", "--fault", "drop@STAGE1_X", "upload"});
  EXPECT_EQ(run.Status, 1);
  ExpectHonest(run);
  EXPECT_NE(run.Errors.find("SAVE was not sent"), std::string::npos) << run.All();
  EXPECT_EQ(Memory(), memory);
  EXPECT_EQ(LastEntry().at("outcome"), "not_proven");
}

TEST_F(TransferInCustody, AnUnprovenUploadSaysNothingTwice) {
  const auto run = Run({"--yes", "--fault", "drop@STAGE1_X", "upload"});
  EXPECT_EQ(run.Status, 1);
  const std::string_view sentence = "values did not arrive";
  const auto first = run.Errors.find(sentence);
  ASSERT_NE(first, std::string::npos) << run.Errors;
  EXPECT_EQ(run.Errors.find(sentence, first + 1), std::string::npos) << run.Errors;
}

TEST_F(TransferInCustody, TheCauseIsNamed) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  Replace("STAGE,1612,", "STAGE,11612,");
  const auto causeOf = [&](const std::string& fault) {
    const auto document = RunJson({"--yes", "--fault", fault + "@STAGE1_X", "upload"});
    EXPECT_EQ(document.at("exit_status"), 1) << fault;
    for (const auto& value : document.at("values")) {
      if (value.at("key") == "STAGE1_X") {
        return value.value("cause", "");
      }
    }
    return std::string{};
  };
  EXPECT_EQ(causeOf("refuse"), "refused");
  EXPECT_EQ(causeOf("times100"), "factor");
}

TEST_F(TransferInCustody, AnotherSpellingOfANumberIsNoAlarm) {
  const auto run = Run({"--yes", "--fault", "respell@STAGE1_X", "upload"});
  EXPECT_EQ(run.Status, 0) << run.All();
  ExpectHonest(run);
}

TEST_F(TransferInCustody, AnInstrumentThatFallsSilentWhileLookingChangesNothing) {
  const auto run = Run({"--yes", "--fault", "silent@3", "upload"});
  EXPECT_EQ(run.Status, 2);
  ExpectHonest(run);
  EXPECT_FALSE(Folder.Has("Zolvane.history/journal.jsonl"));
}

TEST_F(TransferInCustody, CancelledInTheBoxIsCancelled) {
  const auto document = RunJson({"--answer", "cancel", "upload"});
  EXPECT_EQ(document.at("exit_status"), 1);
  EXPECT_EQ(document.at("outcome"), "cancelled");
}

TEST_F(TransferInCustody, AnotherInstrumentIsAnObjection) {
  Replace("Installed=2", "Installed=1");
  const auto document = RunJson({"--yes", "upload"});
  EXPECT_EQ(document.at("exit_status"), 3);
  EXPECT_EQ(document.at("outcome"), "refused");
  EXPECT_EQ(document.at("objections")[0],
            (Json{{"code", "other-instrument"}, {"expected", "ZV200"}, {"actual", "ZV400"}}));
  EXPECT_FALSE(Folder.Has("Zolvane.history/journal.jsonl"));
}

TEST_F(TransferInCustody, WhoSitsAtTheTerminalLetsAnObjectionPass) {
  const auto backup = Folder.Put("old.bak", "something\r\n");
  PreparedUser user{{"exists"}};
  const auto run = RunAlone({"--yes", "export", backup}, &user);
  EXPECT_EQ(run.Status, 0) << run.All();
  EXPECT_NE(user.Asked.find("expected a new file, found "), std::string::npos) << user.Asked;
  EXPECT_NE(user.Asked.find("old.bak [exists]"), std::string::npos) << user.Asked;
  EXPECT_EQ(LastEntry().at("objections")[0].at("code"), "exists");
}

TEST_F(TransferInCustody, YesAloneLetsNoObjectionPass) {
  const auto backup = Folder.Put("old.bak", "something\r\n");
  const auto run = RunAlone({"--yes", "export", backup});
  EXPECT_EQ(run.Status, 3);
  EXPECT_EQ(Folder.Read("old.bak"), "something\r\n");
}

TEST_F(TransferInCustody, AnExportIsFreshAndCarriesTheCheckpointOfItsBeginning) {
  const auto document = RunJson({"export", Folder.Path("new.bak")});
  EXPECT_EQ(document.at("exit_status"), 0);
  const auto backup = Folder.Read("new.bak");
  EXPECT_TRUE(backup.starts_with("[DeviceType]\r\n"));
  const auto identity = document.at("checkpoint")[0].get<std::string>();
  EXPECT_NE(backup.find("; " + identity + "\r\n; 1\r\n; "), std::string::npos)
      << backup.substr(backup.size() - 200);
}

TEST_F(TransferInCustody, AnExportSaysWhatALaterImportWouldNotBringBack) {
  // An import makes another text of the first; the second is in no backup.
  Replace("STAGE,1612,", "STAGE,1612.4,");
  const auto run = RunAlone({"export", Folder.Path("new.bak")});
  ASSERT_EQ(run.Status, 0) << run.All();
  const auto lost = run.Output.substr(run.Output.find("A later import will not bring back "));
  EXPECT_NE(lost.find("1612.4"), std::string::npos) << lost;
  EXPECT_NE(lost.find("[DeviceType] Installed"), std::string::npos) << lost;
  EXPECT_EQ(lost.find("[Z_Calibration] MountHeight"), std::string::npos) << lost;
  EXPECT_EQ(lost.find("(none)"), std::string::npos) << lost;
}

TEST_F(TransferInCustody, WhatAnExportDoesNotHoldAnImportLeavesAsItIs) {
  const auto lost = RunJson({"export", Folder.Path("new.bak")}).at("not_brought_back");
  ASSERT_EQ(RunAlone({"--yes", "import", Folder.Path("new.bak")}).Status, 0);
  const auto now = RunJson({"show", "file"}).at("values");
  std::map<std::string, std::string> texts;
  for (const auto& value : now) {
    texts[value.at("key")] = value.at("found");
  }
  std::size_t kept = 0;
  for (const auto& value : lost) {
    const bool isKept = !value.contains("b");
    kept += isKept ? 1 : 0;
    EXPECT_EQ(texts.at(value.at("key")), value.at(isKept ? "a" : "b").get<std::string>()) << value;
  }
  EXPECT_GT(kept, 1000U);
  EXPECT_LT(kept, lost.size());
}

TEST_F(TransferInCustody, AFileNeedsAFolderToStandIn) {
  for (const auto* command : {"export", "backup"}) {
    const auto run = RunAlone({command, Folder.Path("missing/new")});
    EXPECT_EQ(run.Status, 2);
    EXPECT_NE(run.Errors.find("there is no folder"), std::string::npos) << run.Errors;
  }
}

TEST_F(TransferInCustody, OurOwnBackupRaisesNoObjection) {
  ASSERT_EQ(RunAlone({"export", Folder.Path("new.bak")}).Status, 0);
  const auto run = RunAlone({"--yes", "import", Folder.Path("new.bak")});
  EXPECT_EQ(run.Status, 0) << run.All();
  ExpectHonest(run);
  EXPECT_EQ(RunAlone({"--yes", "import", std::string{ZOLVANE_SAMPLES_PATH} + "/Zolvane.bak"}).Status, 0);
}

TEST_F(TransferInCustody, AFileThatIsNoBackupIsAnObjection) {
  const auto document = RunJson({"--yes", "import", Folder.Put("some.txt", "[Nothing]\r\nKey=1\r\n")});
  EXPECT_EQ(document.at("exit_status"), 3);
  EXPECT_EQ(document.at("objections")[0].at("code"), "not-a-backup");
  EXPECT_EQ(Configuration(), Sample());
}

TEST_F(TransferInCustody, ABackupThatIsCutOffIsAnObjection) {
  const auto whole = BytesOf(std::string{ZOLVANE_SAMPLES_PATH} + "/Zolvane.bak");
  for (const auto& part :
       {whole.substr(0, whole.size() / 2 - 3), whole.substr(0, whole.find("[HeadType]"))}) {
    const auto document = RunJson({"--yes", "import", Folder.Put("part.bak", part)});
    EXPECT_EQ(document.at("exit_status"), 3);
    EXPECT_EQ(document.at("objections")[0].at("code"), "cut-off") << document.dump(2);
  }
}

TEST_F(TransferInCustody, ABackupOfAnotherDeviceIsAnObjection) {
  auto backup = BytesOf(std::string{ZOLVANE_SAMPLES_PATH} + "/Zolvane.bak");
  backup.replace(backup.find("[Position_Zolvane 400]"), 22, "[Position_Zolvane 200]");
  const auto document = RunJson({"--yes", "import", Folder.Put("other.bak", backup)});
  EXPECT_EQ(document.at("exit_status"), 3);
  EXPECT_EQ(document.at("objections")[0].at("code"), "other-device") << document.dump(2);
}

TEST_F(TransferInCustody, ABackupThatLacksASectionInItsMiddleIsAnObjection) {
  auto backup = BytesOf(std::string{ZOLVANE_SAMPLES_PATH} + "/Zolvane.bak");
  const auto begin = backup.find("[Z_Calibration]");
  backup.erase(begin, backup.find("\n[", begin) + 1 - begin);
  const auto document = RunJson({"--yes", "import", Folder.Put("part.bak", backup)});
  EXPECT_EQ(document.at("exit_status"), 3);
  ASSERT_EQ(document.at("objections").size(), 1U);
  EXPECT_EQ(document.at("objections")[0].at("code"), "findings");
  const auto text = document.at("objections")[0].at("actual").get<std::string>();
  EXPECT_NE(text.find("part.bak"), std::string::npos) << text;
  EXPECT_NE(text.find("[Z_Calibration] is missing"), std::string::npos) << text;
  EXPECT_EQ(Configuration(), Sample());
}

TEST_F(TransferInCustody, AnInstrumentThatDoesNotSayWhatItIsIsUnusable) {
  const auto run = Run({"--yes", "--fault", "empty@1", "upload"});
  EXPECT_EQ(run.Status, 2) << run.All();
  EXPECT_NE(run.Errors.find("STATUS_STAGE"), std::string::npos) << run.Errors;
  EXPECT_FALSE(std::filesystem::exists(Folder.Path("Zolvane.history")));
}

TEST_F(TransferInCustody, AnAnswerThatDoesNotFitChangesNothing) {
  Replace("STAGE,1612,", "STAGE,11612,");
  const auto run = RunAlone({"--answer", "ok", "import", std::string{ZOLVANE_SAMPLES_PATH} + "/Zolvane.bak"});
  EXPECT_EQ(run.Status, 2) << run.All();
  EXPECT_NE(run.Errors.find("the file is as it was"), std::string::npos) << run.Errors;
  EXPECT_EQ(run.Errors.find("undo"), std::string::npos) << run.Errors;
  EXPECT_NE(Configuration().find("STAGE,11612,"), std::string::npos);
}

TEST_F(TransferInCustody, AQueryWithAReplyThatIsNoneIsNotProven) {
  ASSERT_EQ(Run({"--yes", "query"}).Status, 0);
  const auto whole = Configuration();
  int first = 2;
  for (const auto* const kind : {"garbage@", "empty@", "shift@"}) {
    for (int line = TriesAll() ? 2 : first++; line <= 12; line += TriesAll() ? 1 : 3) {
      Folder.Put("Zolvane.ini", Sample());
      const auto fault = kind + std::to_string(line);
      const auto run = Run({"--yes", "--despite", "unfinished", "--fault", fault, "query"});
      EXPECT_TRUE(run.Status != 0 || Configuration() == whole) << fault << "\n" << run.All();
    }
  }
}

TEST_F(TransferInCustody, AConfigurationInUtf16IsUnusableForAQuery) {
  Folder.Put("Zolvane.ini", std::string_view{"\xff\xfe[\0H\0]\0", 8});
  const auto run = Run({"--yes", "query"});
  EXPECT_EQ(run.Status, 2) << run.All();
  EXPECT_NE(run.Errors.find("UTF-16"), std::string::npos) << run.Errors;
  EXPECT_FALSE(std::filesystem::exists(Folder.Path("Zolvane.history/journal.jsonl")));
}

TEST_F(TransferInCustody, AFileThatCannotBeWrittenIsUnusable) {
  std::filesystem::create_directory(Folder.Path("new.zolvane-new"));
  for (const auto* const command : {"export", "backup"}) {
    const auto run = RunAlone({command, Folder.Path("new")});
    EXPECT_EQ(run.Status, 2) << run.All();
    EXPECT_NE(run.Errors.find("cannot be written"), std::string::npos) << run.Errors;
  }
  EXPECT_FALSE(std::filesystem::exists(Folder.Path("Zolvane.history/journal.jsonl")));
}

TEST_F(TransferInCustody, ADamagedObjectIsNotRepairedByTheNextOperation) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto object = "Zolvane.history/objects/" + LastEntry().at("file_after").get<std::string>();
  Folder.Put(object, Folder.Read(object) + "x");
  const auto document = RunJson({"--yes", "upload"});
  EXPECT_EQ(document.at("exit_status"), 3);
  EXPECT_EQ(document.at("objections")[0].at("code"), "history-damaged") << document.dump(2);
  EXPECT_EQ(RunAlone({"history", "audit"}).Status, 1);
  const auto passed = Run({"--yes", "--despite", "history-damaged", "upload"});
  EXPECT_EQ(passed.Status, 0) << passed.All();
  EXPECT_TRUE(std::filesystem::exists(Folder.Path("Zolvane.history.damaged-1")));
  EXPECT_EQ(RunAlone({"history", "audit"}).Status, 0);
}

TEST_F(TransferInCustody, AWholeBackupThatWeClosedIsNotCutOff) {
  const auto whole = Configuration();
  const auto begin = whole.find("[PlateType]");
  auto lacking = whole;
  lacking.erase(begin, whole.find("\r\n[", begin) + 2 - begin);
  Folder.Put("Zolvane.ini", lacking);
  ASSERT_EQ(RunAlone({"export", Folder.Path("own.bak")}).Status, 0);
  Folder.Put("Zolvane.ini", whole);
  const auto document = RunJson({"--yes", "import", Folder.Path("own.bak")});
  for (const auto& objection : document.at("objections")) {
    EXPECT_EQ(objection.at("code"), "findings") << objection;
  }
}

TEST_F(TransferInCustody, ADownloadIsReadBack) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  Replace("STAGE,1612,", "STAGE,11612,");
  const auto document = RunJson({"--yes", "download"});
  EXPECT_EQ(document.at("exit_status"), 0) << document.dump(2);
  EXPECT_EQ(document.at("outcome"), "done");
  bool isFetched = false;
  for (const auto& value : document.at("values")) {
    isFetched = isFetched || value.at("key").get<std::string>().starts_with("[Position_Zolvane 400] Item1");
    EXPECT_EQ(value.at("verdict"), "verified");
  }
  EXPECT_TRUE(isFetched);
}

TEST_F(TransferInCustody, WhatAnEditorDidIsSeenAsOutside) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  Replace("MountHeight=164.35", "MountHeight=164.5");
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto document = RunJson({"history"});
  ASSERT_EQ(document.at("operations").size(), 3U);
  EXPECT_EQ(document.at("operations")[1].at("action"), "outside");
}

TEST_F(TransferInCustody, ARehearsalChangesNothingAndForetells) {
  const auto document = RunJson({"--yes", "--rehearse", "upload"});
  EXPECT_EQ(document.at("exit_status"), 0);
  EXPECT_EQ(document.at("rehearsal").at("would_be_proven"), true);
  EXPECT_FALSE(document.contains("outcome"));
  EXPECT_FALSE(Folder.Has("Zolvane.history/journal.jsonl"));
  EXPECT_EQ(Configuration(), Sample());
  EXPECT_EQ(Run({"show", "instrument", "STAGE1_X"}).Output.find("(none)") != std::string::npos, true);
  const auto run = Run({"--yes", "--rehearse", "upload"});
  for (const auto* word : {"done", "recorded", "saved", " sent,", " answered"}) {
    EXPECT_EQ(run.All().find(word), std::string::npos) << word << "\n" << run.All();
  }
}

// All kinds at all lines are played in one process elsewhere. Three of them here, and the others too where everything is
// tried.
TEST_F(TransferInCustody, AFaultAmongTheQuestionsOrTheLinesIsHonest) {
  ASSERT_EQ(Run({"--yes", "upload"}).Status, 0);
  const auto fresh = Memory();
  const auto expectHonest = [&](const std::string& fault) {
    std::filesystem::remove_all(Folder.Path("Zolvane.history"));
    Folder.Put("memory.json", fresh);
    ExpectHonest(Run({"--yes", "--fault", fault, "upload"}));
  };
  for (const auto* fault : {"silent@2", "refuse@200", "shift@200"}) {
    expectHonest(fault);
  }
  if (TriesAll()) {
    for (const std::string kind :
         {"silent", "garbage", "empty", "refuse", "drop", "negate", "double", "echo", "shift"}) {
      expectHonest(kind + "@2");
      expectHonest(kind + "@200");
    }
  }
}

}  // namespace
}  // namespace zolvane
