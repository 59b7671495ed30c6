// What holds for all record tables alike: saving and loading come to rest, arbitrary lines do no harm, and no
// locale of the process plays a part.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "config/config_fixture.h"
#include "config/item_lists.h"
#include "config/other_locale.h"
#include "config/tables/axes.h"
#include "config/tables/current_records.h"
#include "config/tables/devices.h"
#include "config/tables/heads.h"
#include "config/tables/heights.h"
#include "config/tables/modules.h"
#include "config/tables/nests.h"
#include "config/tables/plates.h"
#include "config/tables/stage.h"
#include "config/tables/tips.h"

namespace zolvane {
namespace {

// Loads item 1 of a table from one file and saves it to another.
struct Table {
  std::string Section;
  std::function<void(Configuration&, std::string_view from, std::string_view to)> Copy;
};

template <class Record>
Table TableOf(std::string section, const RecordTable<Record>& table) {
  return {std::move(section),
          [&table](Configuration& configuration, std::string_view from, std::string_view to) {
            if constexpr (ItemRecord<Record>) {
              Save(table, configuration, Load(table, configuration, "1", from), to);
            } else {
              Save(table, configuration, Load(table, configuration, from), to);
            }
          }};
}

std::vector<Table> AllTables() {
  return {
      TableOf("DeviceType", deviceTable),
      TableOf("CageType", cageTable),
      TableOf("HeadType", headTable),
      TableOf("TipType", tipTable),
      TableOf("NestType", nestTable),
      TableOf("PlateType", plateTable),
      TableOf("Calibration_D", calibrationTable),
      TableOf("Position_D", positionTable),
      TableOf("NestCalibration", nestCalibrationTable),
      TableOf("Z_Calibration", heightTable),
  };
}

constexpr std::array keysOfSections{
    "UploadCalibrationData", "SDXYEncoderStatus", "SDXYEncoderMMStepFactorOn", "CollisionDetectEnableZ",
    "CageReleaseHeight",     "SBSA1Xmm",          "SDHeadEjectOffsetMM",       "TipChuteClearOffset",
    "MountHeight",           "DeltaZTolerance",
};

struct PropertyFixture : ConfigFixture {
  PropertyFixture() { Config.Current.Device.Name = "D"; }
};

// Saves what a text loads into, and that again: from the first save on nothing may change.
void ExpectToComeToRest(PropertyFixture& fixture, const Table& table, const std::string& line) {
  fixture.Settings.Load("/a", "");
  fixture.Settings.Load("/b", "");
  fixture.Settings.Load("/c", "");
  fixture.Settings.Set(table.Section, "Item1", line, "/a");
  for (const auto* key : keysOfSections) {
    fixture.Settings.Set(table.Section, key, line.substr(0, line.find(',')), "/a");
  }
  // The offsets are read and never saved, so they are the same for both loads.
  for (const auto* file : {"/a", "/b"}) {
    fixture.Settings.Set("HeadType", "SDHeadEjectOffsetMM", "1.5", file);
    fixture.Settings.Set("TipType", "TipChuteClearOffset", "7", file);
  }
  table.Copy(fixture.Config, "/a", "/b");
  table.Copy(fixture.Config, "/b", "/c");
  for (const auto* key : {"Item1", "UploadCalibrationData", "SDXYEncoderMMStepFactorOn",
                          "CollisionDetectEnableZ", "CageReleaseHeight", "SBSA1Xmm", "MountHeight"}) {
    ASSERT_EQ(fixture.Settings.Value(table.Section, key, "/c"),
              fixture.Settings.Value(table.Section, key, "/b"))
        << table.Section << " " << key << " from " << line;
  }
}

std::string RandomFieldText(std::mt19937& random) {
  static const std::vector<std::string> texts{
      "",      "\"A b\"", "SERIALDILUTE", "CALIBRATE", "1_CH_SHORT", "1",        "0",
      "True",  "false",   "12.5",         "-2.5",      "0.285",      "32768",    "2147483648",
      "1e-05", "1E+20",   "1e308",        "1e400",     " 7 ",        "+5",       "5.",
      "abc",   "3mm",     "1073741824",   "-0",        "-0.3",       "\"\"",     "0.005",
      "1e",    "&H1F",    "inf",          "nan",       "99999.995",  "\"x\"\"y", "2.675"};
  return texts[random() % texts.size()];
}

std::string RandomLine(std::mt19937& random) {
  std::string line = RandomFieldText(random);
  for (auto fields = random() % 24; fields > 0; --fields) {
    line += "," + RandomFieldText(random);
  }
  return line;
}

TEST(RecordTables, ComeToRestAfterOneSave) {
  std::mt19937 random{31};
  for (const double factor : {2.0, 7.0, 1.25, 0.3, 1.0 / 3.0, -2.0, 0.0, 1e6}) {
    PropertyFixture fixture;
    fixture.SetFactor(factor);
    for (const float scale : {0.01F, 0.02F, 0.0125F, 0.003F, 0.0F}) {
      fixture.Config.Current.Axes.Z.UnitsPerStep = scale;
      fixture.Config.Current.Axes.S.UnitsPerStep = scale;
      for (const auto& table : AllTables()) {
        for (int round = 0; round < 4; ++round) {
          ExpectToComeToRest(fixture, table, RandomLine(random));
        }
      }
      fixture.Calls.Clear();
    }
  }
}

TEST(RecordTables, ComeToRestWhateverBytesALineHolds) {
  std::mt19937 random{32};
  PropertyFixture fixture;
  for (int round = 0; round < 60; ++round) {
    std::string line(random() % 120, ' ');
    for (auto& character : line) {
      const auto byte = static_cast<char>(random() % 256);
      character = random() % 6 == 0 ? ',' : byte;
    }
    for (const auto& table : AllTables()) {
      ExpectToComeToRest(fixture, table, line);
    }
    fixture.Calls.Clear();
  }
}

TEST(RecordTables, IgnoreFieldsBeyondTheirOwn) {
  PropertyFixture fixture;
  std::string line = "1";
  for (int field = 0; field < 2000; ++field) {
    line += ",1";
  }
  for (const auto& table : AllTables()) {
    ExpectToComeToRest(fixture, table, line);
  }
  fixture.Settings.Load("/a", "[NestCalibration]\nItem1=" + line + "\n");
  Save(nestCalibrationTable, fixture.Config, Load(nestCalibrationTable, fixture.Config, "1", "/a"), "/b");
  EXPECT_EQ(fixture.Settings.Value("NestCalibration", "Item1", "/b"), "1,1,1,1,1,1,1");
}

template <class Record>
Texts NamesOf(ConfigFixture& fixture, const RecordTable<Record>& table) {
  Texts names;
  ForEach(table, fixture.Config, [&names](const Record& record) { names.push_back(record.Name); });
  return names;
}

TEST(RecordTables, AreWalkedByTheNamedItemsFromOneOn) {
  ConfigFixture fixture{
      "[CageType]\nInstalled=2\nItem0=\"zero\"\nItem1=\"c1\"\nItem2=\"c2\"\n"
      "[HeadType]\nItem1=\"h1\"\nItem2=\"h2\"\nItem4=\"h4\"\n"
      "[TipType]\nItem1=\"t1\"\nItem2=\"\",CODE\nItem3=\"t3\"\n"
      "[NestType]\nItem1=\"n1\"\n"};
  EXPECT_EQ(NamesOf(fixture, cageTable), (Texts{"c1", "c2"}));
  EXPECT_EQ(NamesOf(fixture, headTable), (Texts{"h1", "h2"}));
  EXPECT_EQ(NamesOf(fixture, tipTable), Texts{"t1"});
  EXPECT_EQ(NamesOf(fixture, nestTable), Texts{"n1"});
}

TEST(Axes, ReachTheLastLineWhateverBytesTheLinesHold) {
  std::mt19937 random{33};
  for (int round = 0; round < 300; ++round) {
    ConfigFixture fixture;
    for (int number = 1; number <= 4; ++number) {
      const auto* name = std::array{"SDX,", "SDY,", "x,", "\"S\","}[random() % 4];
      fixture.Settings.Set("Device_Type_Cage", "Axis" + std::to_string(number), name + RandomLine(random));
    }
    fixture.Settings.Set("Device_Type_Cage", "Axis5", "Z,0.5,7");
    LoadAxes(fixture.Config);
    EXPECT_EQ(fixture.Config.Current.Axes.Z.UnitsPerStep, 0.5F);
    EXPECT_EQ(fixture.Config.Current.Axes.Z.Field3, 7);
    EXPECT_FALSE(fixture.Config.Current.Axes.X.Defined);
  }
}

TEST(ItemLists, SurviveWhateverBytesTheirLinesHold) {
  std::mt19937 random{34};
  for (int round = 0; round < 300; ++round) {
    ConfigFixture fixture;
    fixture.Settings.Set("T", "Default", RandomLine(random) + "=" + RandomLine(random));
    for (int number = 0; number < 12; ++number) {
      fixture.Settings.Set("T", "Item" + std::to_string(number), RandomLine(random));
    }
    const auto content = ReadListContent(fixture.Config.Settings, "T");
    EXPECT_LE(content.Entries.size(), 12U);
    EXPECT_TRUE(std::ranges::none_of(content.Entries, [](const auto& entry) { return entry.Text.empty(); }));
    EXPECT_TRUE(!content.Preselected || *content.Preselected < content.Entries.size());
    const auto found = FindItemByField(fixture.Config.Settings, "T", RandomFieldText(random), random() % 5);
    EXPECT_GE(found, 0);
    EXPECT_LE(found, 11);
  }
}

// ---- Locale ----

constexpr std::string_view ordinaryFile =
    "[DeviceType]\nInstalled=1\nItem1=\"D\",1,\"ZV\"\nSDXYEncoderMMStepFactorOff=1.25\n"
    "[CageType]\nInstalled=1\nItem1=\"C\",SERIALDILUTE,1,0,1,12345,6,7,8\nCageReleaseHeight=1234567\n"
    "[Device_TypeD_CageC]\nAxis1=Z,0.0125\nAxis2=S,0.05\n"
    "[HeadType]\nInstalled=1\nItem1=\"H\",SERIALDILUTE,1250.5,300,0.5,8,0.0625,True,0,0,0,380,1450,27.8,"
    "10192,10624,"
    "8_CH,1,\"x\"\nSDHeadEjectOffsetMM=1.5\n"
    "[TipType]\nInstalled=1\nItem1=\"T\",C,0.00001\nTipChuteClearOffset=13.75\n"
    "[NestType]\nInstalled=1\nItem1=\"N\",NEST8,\"l\",c,1,1234,5,1.25\n"
    "[Z_Calibration]\nMountHeight=164.35\nDeltaZ=12345.5\n";

std::string RefreshedAndSaved() {
  ConfigFixture fixture{ordinaryFile};
  RefreshCurrentRecords(fixture.Config);
  const auto& current = fixture.Config.Current;
  Save(heightTable, fixture.Config, current.Heights, backup);
  Save(deviceTable, fixture.Config, current.Device, backup);
  Save(cageTable, fixture.Config, current.Cage, backup);
  Save(headTable, fixture.Config, current.Head, backup);
  Save(tipTable, fixture.Config, current.Tip, backup);
  Save(nestTable, fixture.Config, current.Nest, backup);
  return fixture.Settings.Text(std::string{backup});
}

TEST(RecordTables, DoNotDependOnTheLocale) {
  const auto plain = RefreshedAndSaved();
  const OtherLocale other;
  EXPECT_EQ(RefreshedAndSaved(), plain);
  EXPECT_NE(plain.find("MountHeight=164.35\n"), std::string::npos);
  EXPECT_NE(
      plain.find("Item1=\"H\",SERIALDILUTE,1250.5,300,0.5,8,0.0625,1,0,0,1480,380,1450,27.8,10192,10624,8_CH,"
                 "1,\"x\"\n"),
      std::string::npos);
  EXPECT_NE(plain.find("Item1=\"T\",C,1E-05,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\"\"\n"), std::string::npos);
  EXPECT_NE(plain.find("Item1=\"N\",NEST8,\"l\",c,1,1234,5,1.25,"), std::string::npos);
}

}  // namespace
}  // namespace zolvane
