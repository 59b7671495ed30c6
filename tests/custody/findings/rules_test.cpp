// Each rule of check on a sample that breaks it, with what the add-in really makes of that.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "custody/findings/findings.h"
#include "custody/support/transfer_room.h"
#include "custody/values/play.h"
#include "custody/values/sides.h"
#include "files/paths.h"
#include "files/sectioned_text.h"
#include "instrument/links/simulated_link.h"
#include "page/page_controls.h"
#include "support/golden.h"

namespace zolvane {
namespace {

// ---- The real operations, on a copy

const std::string brokenFolder = "/broken";

struct CopySession {
  explicit CopySession(const std::string& configuration, SimulatedInstrument::Setup instrument = {})
      : Link{std::make_shared<SimulatedLink>(SimulatedInstrument{std::move(instrument)}, FaultPlan{},
                                             Interrupt)} {
    Files.Put(ConfigFileIn(brokenFolder), configuration);
  }

  PlayedAction Do(const Action& action) {
    auto ends = EndsOn(Files, brokenFolder);
    ends.Link = Link;
    return Play(ends, action);
  }

  std::string Stored(std::string_view section, std::string_view key) {
    return SectionedText{Files.Read(ConfigFileIn(brokenFolder)).Bytes}
        .Find(section, key)
        .value_or("(missing)");
  }

  InterruptFlag Interrupt;
  MemoryDisk Files;
  std::shared_ptr<BenchLink> Link;
};

std::string Sent(const std::string& configuration, std::string_view key) {
  const auto lines = WireFaceOfFile(configuration).Lines;
  const auto* const value = lines.Find(key);
  return value == nullptr ? "(not sent)" : value->Text.value_or("(nothing)");
}

ShownPage PageOf(const std::string& configuration) {
  return *CopySession{configuration}.Do({.Kind = ActionKind::ShowPage}).Result.Page;
}

std::string QueriedAs(const std::string& configuration, const SimulatedInstrument::Setup& instrument,
                      std::string_view section) {
  CopySession session{configuration, instrument};
  session.Do(PressOf(queryButton));
  return session.Stored(section, "Installed");
}

// The file after an export and the import of what was exported.
std::string BroughtBack(const std::string& configuration, std::string_view section, std::string_view key) {
  CopySession session{configuration};
  session.Do(PressOf(exportButton, brokenFolder + "/own.bak"));
  session.Do(PressOf(importButton, brokenFolder + "/own.bak"));
  return session.Stored(section, key);
}

std::string DownloadedAgain(const std::string& configuration, std::string_view section,
                            std::string_view key) {
  CopySession session{configuration};
  session.Do(PressOf(uploadButton));
  session.Do(PressOf(downloadButton));
  return session.Stored(section, key);
}

// ---- The cases

constexpr std::string_view wholeFile;  // a finding without a line

struct Case {
  std::string_view Code;
  std::string Old;  // stands once in the sample
  std::string New;
  std::string_view Line;  // how the line of the finding starts
  std::function<void(const std::string& configuration)> Effect;
};

// The sample's own value of a key.
std::string SentOfTheSample(std::string_view key) {
  return Sent(SampleConfiguration(), key);
}

// clang-format off
const std::vector<Case>& Cases() {
  static const std::vector<Case> cases{
      {"missing-section", "[Position_Zolvane 400]", "[Position_Zolvane 40]", wholeFile,
       [](const auto& file) { EXPECT_EQ(Sent(file, "STAGE1_X"), "0"); }},
      {"missing-value", "MountHeight=164.35\n", "", "[Z_Calibration]",
       [](const auto& file) { EXPECT_EQ(Sent(file, "MountHeight"), "0"); }},
      {"missing-value", "DeltaZ=24\n", "", "[Z_Calibration]",
       [](const auto& file) { EXPECT_EQ(Sent(file, "Delta_Z"), "0"); }},
      {"missing-key", "ModuleInstalled=1\n", "", "[PumpControl]",
       [](const auto& file) { EXPECT_NE(PageOf(file).Page.PumpText, pumpConnectedText); }},
      {"default-value", "DeltaZTolerance=750\n", "", "[Z_Calibration]",
       [](const auto& file) { EXPECT_EQ(WireFaceOfFile(file).InForce.Heights.DeltaZTolerance, 1000.0); }},
      {"missing-correction", "[VolumeCorrection_8_CH_30]", "[VolumeCorrection_8_CH_3]", wholeFile,
       [](const auto& file) { EXPECT_EQ(Sent(file, "VOL_8CH_30_1"), "(not sent)"); }},
      {"missing-position", "Item4=STAGE4,\"Stage 4\",STAGE,1605", "Item4=STAGE44,\"Stage 4\",STAGE,1605",
       "[Position_Zolvane 400]",
       [](const auto& file) { EXPECT_EQ(Sent(file, "STAGE4_X"), "0"); }},
      {"missing-position", "Item1=STAGE1,\"Stage 1\",STAGE,1612,", "Item1=STAGE1,\"\",STAGE,1612,", "[Position_Zolvane 400]",
       [](const auto& file) {
         EXPECT_EQ(Sent(file, "STAGE6_X"), "1612") << "the place of the line without a name";
         const auto findings = CheckConfiguration(file, "Zolvane.ini");
         EXPECT_TRUE(std::ranges::any_of(findings, [](const Finding& one) {
           return one.Text.ends_with("has no position STAGE6: the upload sends 1612 for STAGE6_X and 2004 for STAGE6_Y");
         }));
       }},
      {"gap", "Item1=STAGE1,\"Stage 1\",STAGE,1612,", "Item1=STAGE1,\"\",STAGE,1612,", "Item1=STAGE1,\"\"",
       [](const auto& file) { EXPECT_EQ(Sent(file, "STAGE6_X"), "1612"); }},
      {"gap", "Item13=TIPRACKSTAGE2,\"Tip Rack Stage 2\",RACK,44835", "Item13=TIPRACKSTAGE2,\"\",RACK,44835", "Item13=TIPRACKSTAGE2,\"\"",
       [](const auto& file) {
         CopySession session{file};
         session.Do(PressOf(exportButton, brokenFolder + "/own.bak"));
         const SectionedText backup{session.Files.Read(brokenFolder + "/own.bak").Bytes};
         EXPECT_TRUE(backup.Find("Position_Zolvane 400", "Item12"));
         EXPECT_FALSE(backup.Find("Position_Zolvane 400", "Item13"));
       }},
      {"gap", "\"96-Channel 300 ul\"", "\"\"", "Item1=\"\"",
       [](const auto& file) { EXPECT_EQ(Sent(file, "PickUp_12Ch_Z"), "(not sent)"); }},
      {"gap", "\"96-Channel 300 ul\"", "\"\"", "Item12=\"8-Channel 300 ul\"",
       [](const auto& file) { EXPECT_EQ(Sent(file, "TipEject_8Ch_300_S"), "(not sent)"); }},
      {"gap", "Item1=STAGE1,\"Stage 1\",STAGE,1612,",
       "Item0=STAGE0,\"Stage 0\",STAGE,1,2,3,4,5,6,7,8,1,0,X,1,0\nItem1=STAGE1,\"Stage 1\",STAGE,1612,", "Item0=",
       [](const auto& file) { EXPECT_EQ(Sent(file, "STAGE1_X"), SentOfTheSample("STAGE1_X")); }},
      {"missing-class", "MICROTITER,1,1,0,2150", "MICROPLATE,1,1,0,2150", "[CageType]",
       [](const auto& file) { EXPECT_EQ(Sent(file, "TipChange_S"), "0"); }},
      {"repeated-name", "Axis7=\"SDS\",0.005,300,9000,18000,-50,9800,1000,550,250,16,0,0,7,120\n\n[HeadType]",
       "Axis7=\"Z\",0.02,300,9000,18000,-50,9800,1000,550,250,16,0,0,7,120\n\n[HeadType]", "Axis7=\"Z\"",
       [](const auto& file) { EXPECT_EQ(Sent(file, "MountHeight"), "8218"); }},
      {"repeated-name", "Item4=STAGE4,\"Stage 4\",STAGE,1605", "Item4=STAGE3,\"Stage 4\",STAGE,1605", "Item4=STAGE3",
       [](const auto& file) { EXPECT_EQ(Sent(file, "STAGE3_X"), SentOfTheSample("STAGE3_X")); }},
      {"missing-section", "[NestType]\n", "[NestType]\n[NestTypes]\n", "[NestType]\n",
       [](const auto& file) { EXPECT_EQ(Sent(file, "Nest_1A_Z"), "(not sent)"); }},
      {"missing-correction", "[VolumeCorrection_8_CH_30]\n", "[VolumeCorrection_8_CH_30]\n[VolumeCorrection_8_CH_3]\n",
       "[VolumeCorrection_8_CH_30]\n",
       [](const auto& file) { EXPECT_EQ(Sent(file, "VOL_8CH_30_1"), "(not sent)"); }},
      {"page-changes", "Installed=12\n", "", "[HeadType]",
       [](const auto& file) {
         CopySession session{file};
         session.Do({.Kind = ActionKind::ShowPage});
         EXPECT_EQ(session.Stored("HeadType", "Installed"), "1");
       }},
      {"broken-key", "1.0685,\"VOL_8CH_30_1\"", "1.0685,\"VOL_\x01" "8CH_30_1\"", "1Item=1 ul,1.0685,\"VOL_",
       [](const auto& file) { EXPECT_EQ(Sent(file, "VOL_8CH_30_1"), "(not sent)"); }},
      {"not-understood", "MountHeight=164.35", "MountHeight 164.35", "MountHeight 164.35",
       [](const auto& file) { EXPECT_EQ(Sent(file, "MountHeight"), "0"); }},
      {"unread-section", "[PumpControl]", "[PumpKontrol]", "[PumpKontrol]",
       [](const auto& file) { EXPECT_NE(PageOf(file).Page.PumpText, pumpConnectedText); }},
      {"unread-key", "ModuleInstalled=1", "ModuleInstaled=1", "ModuleInstaled=1",
       [](const auto& file) { EXPECT_NE(PageOf(file).Page.PumpText, pumpConnectedText); }},
      {"repeated-section", "[PumpControl]", "[Z_Calibration]\nMountHeight=1\n[PumpControl]", "[Z_Calibration]\nMountHeight=1",
       [](const auto& file) { EXPECT_EQ(Sent(file, "MountHeight"), SentOfTheSample("MountHeight")); }},
      {"repeated-key", "MountHeight=164.35", "MountHeight=164.35\nMountHeight=1", "MountHeight=1\n",
       [](const auto& file) { EXPECT_EQ(Sent(file, "MountHeight"), SentOfTheSample("MountHeight")); }},
      {"gap", "Item15=\"8-Channel 12.5 ul\"", "Item22=\"8-Channel 12.5 ul\"", "Item16=\"12-Channel 300",
       [](const auto& file) { EXPECT_EQ(Sent(file, "PickUp_12Ch_Z"), "(not sent)"); }},
      {"gap", "Item11=TIPWASH,\"Tip Wash\",WASH,11254", "Item111=TIPWASH,\"Tip Wash\",WASH,11254",
       "Item12=TIPRACKSTAGE1,\"Tip Rack Stage 1\",RACK,20486",
       [](const auto& file) {
         const auto chosen = Replaced(file, "Installed=2\n", "Installed=1\n");
         EXPECT_EQ(Sent(chosen, "STAGE6_X"), "29026");
         EXPECT_EQ(Sent(chosen, "RACK_STAGE1_X"), "0");
       }},
      {"gap", "[Device_TypeZolvane 200_Cage1/8/12 Module]\nAxis1", "[Device_TypeZolvane 200_Cage1/8/12 Module]\nAxis11",
       "Axis3=\"Z\",0.01,600,20000,40000,-80,19000",
       [](const auto& file) {
         EXPECT_EQ(Sent(Replaced(file, "Installed=2\n", "Installed=1\n"), "MountHeight"), "(not sent)");
       }},
      {"gap", "Item1=\"Zolvane 200\"", "Item11=\"Zolvane 200\"", "Item2=\"Zolvane 400\"",
       [](const auto& file) { EXPECT_EQ(QueriedAs(file, {.Stage = "ZV400"}, "DeviceType"), "0"); }},
      {"only-listed", "Item3=\"96-Channel 30 ul\"", "Item33=\"96-Channel 30 ul\"", "Item4=\"384-Channel 30 ul\"",
       [](const auto& file) { EXPECT_EQ(Sent(file, "AspirateOrigin_8Ch_300_S"), "(not sent)"); }},
      {"only-listed", "Item6=\"1250 ul Filter Tips\"", "Item66=\"1250 ul Filter Tips\"", "Item7=\"300 ul Wide",
       [](const auto& file) {
         const auto page = PageOf(file);
         const auto& entries = page.Page.Of(ListControl::TipType).Entries;
         EXPECT_TRUE(std::ranges::any_of(entries, [](const auto& entry) { return entry.Text == "300 ul Wide Bore Tips"; }));
         EXPECT_EQ(Sent(file, "VOL_WIDE_300_1"), "(not sent)");
       }},
      {"not-a-number", "MountHeight=164.35", "MountHeight=l64.35", "MountHeight=l64.35",
       [](const auto& file) { EXPECT_EQ(Sent(file, "MountHeight"), "0"); }},
      {"part-of-number", "MountHeight=164.35", "MountHeight=16o.35", "MountHeight=16o.35",
       [](const auto& file) { EXPECT_EQ(Sent(file, "MountHeight"), "1280"); }},
      {"decimal-comma", "MountHeight=164.35", "MountHeight=164,35", "MountHeight=164,35",
       [](const auto& file) { EXPECT_EQ(Sent(file, "MountHeight"), "13120"); }},
      {"out-of-range", "\"Stage 1\",STAGE,1612,", "\"Stage 1\",STAGE,16120000000,", "Item1=STAGE1,\"Stage 1\",STAGE,16120",
       [](const auto& file) { EXPECT_EQ(Sent(file, "STAGE1_X"), "0"); }},
      {"out-of-range", "DeltaZ=24\n", "DeltaZ=1e400\n", "DeltaZ=1e400",
       [](const auto& file) { EXPECT_EQ(Sent(file, "Delta_Z"), "0"); }},
      {"rounded", "\"Stage 1\",STAGE,1612,", "\"Stage 1\",STAGE,1612.5,", "Item1=STAGE1,\"Stage 1\",STAGE,1612.5",
       [](const auto& file) { EXPECT_EQ(Sent(file, "STAGE1_X"), "1612"); }},
      {"sent-rounded", "MountHeight=164.35", "MountHeight=164.353", "MountHeight=164.353",
       [](const auto& file) { EXPECT_EQ(Sent(file, "MountHeight"), SentOfTheSample("MountHeight")); }},
      {"sent-rounded", "1.0241,\"VOL_8CH_30_2\"", "1.0241567,\"VOL_8CH_30_2\"", "2Item=5 ul,1.0241567",
       [](const auto& file) { EXPECT_EQ(Sent(file, "VOL_8CH_30_2"), "102416"); }},
      {"sent-rounded", "SDPreCollectHeightMM=12\n", "SDPreCollectHeightMM=12.007\n", "SDPreCollectHeightMM=12.007",
       [](const auto& file) { EXPECT_EQ(Sent(file, "SDPreCollectHeightMM"), "1201"); }},
      {"too-many-digits", "DeltaZ=24\n", "DeltaZ=24.1234567890123456\n", "DeltaZ=24.1234567890123456",
       [](const auto& file) { EXPECT_EQ(Sent(file, "Delta_Z"), "24.1234567890123"); }},
      {"not-a-flag", "SDXYEncoderStatus=1", "SDXYEncoderStatus=yes", "SDXYEncoderStatus=yes",
       [](const auto& file) { EXPECT_FALSE(WireFaceOfFile(file).InForce.Device.SDXYEncoderStatus); }},
      {"extra-field", "\"Stage 1\",STAGE,1612,2004", "\"Stage 1\",STAGE,16,12,2004", "Item1=STAGE1,\"Stage 1\",STAGE,16,",
       [](const auto& file) { EXPECT_EQ(Sent(file, "STAGE1_Y"), "12"); }},
      {"short-line", "131.35,\"12D\",12_CH,5,7815,9180,127.60,\"1F\",1_CH_LONG,6,12270,9165,123.40", "131.35",
       "Item2=\"12-Channel Head Nest\"",
       [](const auto& file) { EXPECT_EQ(Sent(file, "Nest_12D_Z"), "0"); }},
      {"no-key", "4Item=1000 ul,0.9994,\"VOL_1CHSHORT_1250_4\"", "4Item=1000 ul,0.9994,\"\"", "4Item=1000 ul,0.9994,\"\"",
       [](const auto& file) { EXPECT_EQ(Sent(file, "VOL_1CHSHORT_1250_4"), "(not sent)"); }},
      {"out-of-range", "1 ul,1.0685,\"VOL_8CH_30_1\"", "1 ul,1e307,\"VOL_8CH_30_1\"", "1Item=1 ul,1e307",
       [](const auto& file) { EXPECT_EQ(Sent(file, "VOL_8CH_30_1"), "(not sent)"); }},
      {"zero-factor", "1 ul,1.0685,\"VOL_8CH_30_1\"", "1 ul,0,\"VOL_8CH_30_1\"", "1Item=1 ul,0",
       [](const auto& file) { EXPECT_EQ(Sent(file, "VOL_8CH_30_1"), "0"); }},
      {"zero-factor", "Axis3=\"Z\",0.0125,600,20000,40000,-80,15200", "Axis3=\"Z\",0,600,20000,40000,-80,15200",
       "Axis3=\"Z\",0,",
       [](const auto& file) {
         EXPECT_EQ(Sent(file, "MountHeight"), "(not sent)");
         EXPECT_EQ(Sent(file, "SDPreCollectHeightMM"), "0");
       }},
      {"inherited-factor", "15200,2500,1700,700,16,1,0,3,160\nAxis4=\"S\",0.01,", "15200,2500,1700,700,16,1,0,3,160\nAxis4=\"S\",,",
       "Axis4=\"S\",,",
       [](const auto& file) { EXPECT_EQ(Sent(file, "TipEject_8Ch_300_S"), "-2224"); }},
      {"inherited-factor", "15200,2500,1700,700,16,1,0,3,160\nAxis4=\"S\",0.01,",
       "15200,2500,1700,700,16,1,0,3,160\nAxis4=\"S\",0.01mm,", "Axis4=\"S\",0.01mm",
       [](const auto& file) { EXPECT_EQ(Sent(file, "TipEject_8Ch_300_S"), "-2224"); }},
      {"page-changes", "Installed=12\n", "Installed=99\n", "Installed=99",
       [](const auto& file) {
         CopySession session{file};
         session.Do({.Kind = ActionKind::ShowPage});
         EXPECT_EQ(session.Stored("HeadType", "Installed"), "1");
       }},
      {"unstorable-name", "Item2=\"Zolvane 400\"", "Item2=\"Zolvane ]400\"", "Item2=\"Zolvane ]400\"",
       [](const auto& file) {
         EXPECT_EQ(Sent(file, "STAGE1_X"), "0");
         CopySession session{file};
         EXPECT_GT(session.Do(PressOf(downloadButton)).Result.Tally.WritesFailed, 0U);
       }},
      {"broken-key", "1.0685,\"VOL_8CH_30_1\"", "1.0685,\"VOL 8CH_30_1\"", "1Item=1 ul,1.0685,\"VOL 8CH",
       [](const auto& file) {
         CopySession session{file};
         session.Do(PressOf(uploadButton));
         EXPECT_EQ(HeldBy(*session.Link, "VOL_8CH_30_1"), "unknown");
         EXPECT_EQ(HeldBy(*session.Link, "VOL"), "8CH_30_1 106850");
       }},
      {"misspelt-class", "MICROTITER,1,1,0,2150", "MICROTITR,1,1,0,2150", "Item1=\"96/384 Module\"",
       [](const auto& file) { EXPECT_EQ(Sent(file, "TipChange_S"), "0"); }},
      {"misspelt-class", "\"8-Channel 300 ul\",SERIALDILUTE", "\"8-Channel 300 ul\",SERIALDULITE", "Item12=",
       [](const auto& file) { EXPECT_EQ(Sent(file, "TipEject_8Ch_300_S"), "(not sent)"); }},
      {"misspelt-class", "10204,10632,12_CH", "10204,10632,12-CH", "Item16=",
       [](const auto& file) { EXPECT_NE(Sent(file, "PickUp_12Ch_Z"), SentOfTheSample("PickUp_12Ch_Z")); }},
      {"misspelt-class", "\"300 ul Tips\",SERIALDILUTE", "\"300 ul Tips\",Serialdilute", "Item2=\"300 ul Tips\"",
       [](const auto& file) { EXPECT_NE(Sent(file, "RackPickup_12_300_Z"), SentOfTheSample("RackPickup_12_300_Z")); }},
      {"misspelt-class", "NEST8,\"1A\"", "nest8,\"1A\"", "Item1=\"8-Channel Head Nest\"",
       [](const auto& file) { EXPECT_EQ(Sent(file, "NEST_1A_SD_X"), "(not sent)"); }},
      {"misspelt-class", "Nest\",NEST12", "Nest\",NEST_12", "Item2=\"12-Channel Head Nest\"",
       [](const auto& file) { EXPECT_EQ(Sent(file, "NEST_1E_SD_X"), "(not sent)"); }},
      {"unknown-class", "MICROTITER,1,1,0,2150", ",1,1,0,2150", "Item1=\"96/384 Module\"",
       [](const auto& file) { EXPECT_EQ(Sent(file, "TipChange_S"), "0"); }},
      {"unknown-class", "\"8-Channel 300 ul\",SERIALDILUTE", "\"8-Channel 300 ul\",ABC", "Item12=",
       [](const auto& file) { EXPECT_EQ(Sent(file, "TipEject_8Ch_300_S"), "(not sent)"); }},
      {"unknown-class", "10204,10632,12_CH", "10204,10632,", "Item16=",
       [](const auto& file) { EXPECT_NE(Sent(file, "PickUp_12Ch_Z"), SentOfTheSample("PickUp_12Ch_Z")); }},
      {"unknown-class", "\"300 ul Tips\",SERIALDILUTE", "\"300 ul Tips\",", "Item2=\"300 ul Tips\"",
       [](const auto& file) { EXPECT_NE(Sent(file, "RackPickup_12_300_Z"), SentOfTheSample("RackPickup_12_300_Z")); }},
      {"unknown-class", "NEST8,\"1A\"", ",\"1A\"", "Item1=\"8-Channel Head Nest\"",
       [](const auto& file) { EXPECT_EQ(Sent(file, "NEST_1A_SD_X"), "(not sent)"); }},
      {"unknown-size", "SERIALDILUTE,300,300,5,8,", "SERIALDILUTE,300,300,5,7,", "Item12=",
       [](const auto& file) {
         EXPECT_EQ(Sent(file, "TipEject_8Ch_300_S"), "(not sent)");
         EXPECT_NE(Sent(file, "TipEject_7Ch_300_S"), "(not sent)");
       }},
      {"unknown-size", "SERIALDILUTE,300,300,5,8,", "SERIALDILUTE,301,301,5,8,", "Item12=",
       [](const auto& file) {
         EXPECT_EQ(Sent(file, "TipEject_8Ch_300_S"), "(not sent)");
         EXPECT_EQ(Sent(file, "AspirateOrigin_8Ch_300_S"), "(not sent)");
       }},
      {"sent-as-zero", "1.0685,\"VOL_8CH_30_1\"", "0.000001,\"VOL_8CH_30_1\"", "1Item=1 ul,0.000001",
       [](const auto& file) { EXPECT_EQ(Sent(file, "VOL_8CH_30_1"), "0"); }},
      {"sent-as-zero", "MountHeight=164.35", "MountHeight=0.00000000016435", "MountHeight=0.0",
       [](const auto& file) { EXPECT_EQ(Sent(file, "MountHeight"), "0"); }},
      {"sent-as-zero", "Axis3=\"Z\",0.0125,600,20000,40000,-80,15200", "Axis3=\"Z\",1e20,600,20000,40000,-80,15200",
       "MountHeight=164.35",
       [](const auto& file) { EXPECT_EQ(Sent(file, "MountHeight"), "0"); }},
      {"reserved-key", "1.0685,\"VOL_8CH_30_1\"", "1.0685,\"SAVE\"", "1Item=1 ul,1.0685,\"SAVE",
       [](const auto& file) { EXPECT_EQ(Sent(file, "SAVE"), "106850"); }},
      {"undetectable", "\"96-Channel 125 ul\"", "\"96-channel 300 UL\"", "Item2=\"96-channel",
       [](const auto& file) {
         EXPECT_EQ(QueriedAs(file, {.Tag = "5A4C0150AA7F1012"}, "HeadType"), "1");
       }},
      {"undetectable", "\"ZV400\"", "\"ZV200\"", "Item2=\"Zolvane 400\"",
       [](const auto& file) { EXPECT_EQ(QueriedAs(file, {.Stage = "ZV200"}, "DeviceType"), "1"); }},
      {"undetected-module", "MICROTITER,1,1,0,2150", "MICROPLATE,1,1,0,2150", "Item1=\"96/384 Module\"",
       [](const auto& file) {
         // The page takes the 0 that the query stores for its first entry when it is opened again.
         CopySession session{file, {.Mechanics = "MICROPLATE"}};
         const auto played = session.Do(PressOf(queryButton));
         EXPECT_TRUE(std::ranges::any_of(played.Writes, [](const SettingWrite& write) {
           return write.Section == "CageType" && write.Key == "Installed" && write.Text == "0";
         }));
       }},
      {"overridden", "1.0241,\"VOL_8CH_30_2\"", "1.0241,\"VOL_8CH_30_1\"", "2Item=5 ul,1.0241,\"VOL_8CH_30_1\"",
       [](const auto& file) {
         EXPECT_EQ(Sent(file, "VOL_8CH_30_1"), "102410");
         EXPECT_EQ(WireFaceOfFile(file).Lines.Overridden().size(), 1U);
       }},
      {"sent-twice", "126,143,9480,50.4,3,1,0,0,0,1,0,\"\"", "126,143,9480,50.4,3,1,0,0,0,1,0,\"VolumeCorrection_8_CH_30\"",
       "1Item=1 ul,1.0685,\"VOL_8CH_30_1\"",
       [](const auto& file) { EXPECT_EQ(WireFaceOfFile(file).Lines.Overridden().size(), 4U); }},
      {"backup-changes", "3260,2485,131.20", "3260,2485,131.207", "Item1=\"8-Channel Head Nest\"",
       [](const auto& file) {
         EXPECT_NE(BroughtBack(file, "NestType", "Item1").find("3260,2485,131.21,"), std::string::npos);
       }},
      {"respelled", "3260,2485,131.20", "3260,2485,131.2", "Item1=\"8-Channel Head Nest\"",
       [](const auto& file) {
         EXPECT_NE(BroughtBack(file, "NestType", "Item1").find("3260,2485,131.20,"), std::string::npos);
       }},
      {"download-changes", "Item2=\"300 ul Tips\"", "Item2=\"300 ul Tips\"", "Item7=\"300 ul Wide",
       [](const auto& file) {
         EXPECT_NE(DownloadedAgain(file, "TipType", "Item7").find(",124,141,9320,"), std::string::npos)
             << "the rack of the first small tip";
       }},
  };
  return cases;
}
// clang-format on

std::size_t LineThatStarts(const std::string& file, std::string_view start) {
  if (start.empty()) {
    return 0;
  }
  const auto place = ("\n" + file).find("\n" + std::string{start});
  EXPECT_NE(place, std::string::npos) << start;
  return 1 + static_cast<std::size_t>(
                 std::count(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(place), '\n'));
}

bool Has(const std::vector<Finding>& findings, std::string_view code, std::size_t line) {
  return std::ranges::any_of(findings, [&](const Finding& f) { return f.Code == code && f.Line == line; });
}

std::string AsList(const std::vector<Finding>& findings) {
  std::string list;
  for (const auto& finding : findings) {
    if (finding.Grade == Grade::Note) {
      continue;
    }
    list += "  " + finding.Code + " in line " + std::to_string(finding.Line) + ": " + finding.Text + "\n";
  }
  return list;
}

std::string Broken(const Case& broken) {
  const auto sample = SampleConfiguration();
  const auto place = sample.find(broken.Old);
  EXPECT_NE(place, std::string::npos) << broken.Old;
  EXPECT_EQ(sample.find(broken.Old, place + 1), std::string::npos) << broken.Old << " stands twice";
  return Replaced(sample, broken.Old, broken.New);
}

TEST(CheckRules, FindWhatIsBrokenOnItsLine) {
  for (const auto& broken : Cases()) {
    const auto file = Broken(broken);
    const auto findings = CheckConfiguration(file, "Zolvane.ini");
    EXPECT_TRUE(Has(findings, broken.Code, LineThatStarts(file, broken.Line))) << broken.Code << ":\n"
                                                                               << AsList(findings);
  }
}

TEST(CheckRules, SayWhatTheAddInReallyMakesOfIt) {
  for (const auto& broken : Cases()) {
    SCOPED_TRACE(broken.Code);
    broken.Effect(Broken(broken));
  }
}

// The page chooses another device or module than the file says, and the upload sends what belongs to that.
TEST(CheckRules, JudgeTheConfigurationAsThePageLeavesIt) {
  for (const std::string_view section : {"DeviceType", "CageType"}) {
    auto file = SampleConfiguration();
    const auto at = file.find("Installed=", file.find("[" + std::string{section} + "]"));
    file.replace(at, file.find_first_of("\r\n", at) - at, "Installed=0");
    for (const auto& finding : CheckConfiguration(file, "Zolvane.ini")) {
      EXPECT_TRUE(finding.Grade != Grade::Error || finding.Code == "page-changes") << finding.Text;
    }
    EXPECT_NE(Sent(file, "MountHeight"), "(not sent)");
  }
}

TEST(CheckRules, TakeNoOtherLayoutForAMisspeltOne) {
  for (const std::string_view other : {"4_CH", "16_CH", "384_CH", "8_CH_LONG", "96_384"}) {
    const auto file =
        Replaced(SampleConfiguration(), "10204,10632,12_CH", "10204,10632," + std::string{other});
    for (const auto& finding : CheckConfiguration(file, "Zolvane.ini")) {
      EXPECT_NE(finding.Code, "misspelt-class") << finding.Text;
    }
  }
}

// The instrument could take the number as it stands: only the file cannot.
TEST(CheckRules, WhatTheFileRoundsIsNotSaidToBeRoundedByTheUpload) {
  const auto file = Replaced(SampleConfiguration(), ",96,118,7840,98.5,1,", ",96,118.4,7840,98.5,1,");
  const auto findings = CheckConfiguration(file, "Zolvane.ini");
  const auto line = LineThatStarts(file, "Item1=\"1250 ul Tips\"");
  EXPECT_TRUE(Has(findings, "rounded", line)) << AsList(findings);
  EXPECT_FALSE(Has(findings, "sent-rounded", line));
}

TEST(CheckRules, AreAllShown) {
  std::set<std::string_view> shown{"unreadable"};
  for (const auto& broken : Cases()) {
    shown.insert(broken.Code);
  }
  for (const auto code : FindingCodes()) {
    EXPECT_TRUE(shown.contains(code)) << code;
    EXPECT_NE(ExplanationOf(*RuleOf(code)), "") << code;
  }
  EXPECT_EQ(RuleOf("no-such-code"), nullptr);
}

TEST(CheckRules, AUtf16TextCannotBeUsed) {
  const std::string utf16{"\xFF\xFE[\0A\0]\0\n\0", 10};
  const auto findings = CheckConfiguration(utf16, "Zolvane.ini");
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings.front().Code, "unreadable");
  EXPECT_TRUE(HasError(findings));
  CopySession session{utf16};
  EXPECT_NE(session.Do({.Kind = ActionKind::ShowPage}).ExitStatus, 0) << "the page cannot be loaded";
}

// What stands in the text of a finding is what the upload really leaves out.
TEST(CheckRules, NameTheLinesThatFallOut) {
  const auto file =
      Replaced(SampleConfiguration(), "Axis4=\"S\",0.01,400,12000,24000,-50,6200,1500,900,400,16,0,0,4,100",
               "Axis4=\"S\",0,400,12000,24000,-50,6200,1500,900,400,16,0,0,4,100");
  std::string text;
  for (const auto& finding : CheckConfiguration(file, "Zolvane.ini")) {
    text += finding.Code == "zero-factor" ? finding.Text : "";
  }
  const auto lost = Compare(WireFaceOfFile(SampleConfiguration()).Lines, WireFaceOfFile(file).Lines);
  EXPECT_GT(lost.OnlyInA, 0U);
  EXPECT_NE(text.find("the upload leaves out " + std::to_string(lost.OnlyInA) + " lines"), std::string::npos)
      << text;
  const auto behindFallenOut = text.find(" and sends ", text.find("leaves out "));
  ASSERT_NE(behindFallenOut, std::string::npos) << text;
  for (const auto& difference : lost.Differences) {
    const bool fallsOut = !difference.B;
    const auto place = text.find(difference.Name);
    ASSERT_NE(place, std::string::npos) << difference.Name;
    EXPECT_EQ(place < behindFallenOut, fallsOut) << difference.Name;
  }
}

TEST(CheckRules, ABackupIsCheckedForWhatItsImportReads) {
  const auto backup =
      Replaced(BytesOf(std::filesystem::path{ZOLVANE_SAMPLES_PATH} / "Zolvane.bak"), "\r\n", "\n");
  EXPECT_FALSE(HasError(CheckBackup(backup, "a.bak", SampleConfiguration())))
      << AsList(CheckBackup(backup, "a.bak", SampleConfiguration()));
  const auto broken = Replaced(backup, "MountHeight=164.35\n", "");
  const auto findings = CheckBackup(broken, "a.bak", SampleConfiguration());
  EXPECT_TRUE(Has(findings, "missing-value", LineThatStarts(broken, "[Z_Calibration]"))) << AsList(findings);
  EXPECT_TRUE(Has(CheckBackup(backup + "[TipType]\n", "a.bak", SampleConfiguration()), "unread-section",
                  LineThatStarts(backup + "[TipType]\n", "[TipType]")));
}

}  // namespace
}  // namespace zolvane
