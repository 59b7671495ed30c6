// What a rehearsal predicts for an instrument that stores what it is sent is what the operation then leaves: in every
// value of the file and of the instrument.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "config/text.h"
#include "custody/support/custody_room.h"
#include "support/generated_sessions.h"
#include "support/golden.h"
#include "support/long_tests.h"

namespace zolvane {
namespace {

using TextsByName = std::map<std::string, std::string>;

struct BothSides {
  TextsByName File;
  TextsByName Instrument;
};

class RehearsedRoom {
 public:
  RehearsedRoom(const std::string& configuration, const Values& held, std::string where)
      : room_{configuration, held}, where_{std::move(where)} {
    NoteKeys(held);
    NoteKeys(WireFaceOfFile(configuration).Lines);
  }

  CustodyRoom& Room() { return room_; }

  // Plays it on copies, then in earnest.
  void ExpectForetold(const Words& words) {
    const auto place = where_ + ", " + words.front();
    const auto before = Now();
    const auto files = room_.Files.Files();
    auto rehearsing = words;
    rehearsing.insert(rehearsing.begin(), "--rehearse");
    const auto rehearsed = room_.Run(CustodyRoom::Determined(rehearsing)).Result;
    ASSERT_EQ(room_.Files.Files(), files) << place << ": a rehearsal writes nothing";
    ASSERT_EQ(Now().Instrument, before.Instrument) << place;
    ASSERT_EQ(room_.Wire->Settings() + room_.Wire->Saves(), 0U) << place;
    const auto real = room_.Run(CustodyRoom::Determined(words)).Result;
    for (const auto& [key, text] : room_.Wire->Sent()) {
      keys_.insert(key);
    }
    ASSERT_EQ(rehearsed.ExitStatus, real.ExitStatus) << place;
    if (real.ExitStatus == exit_status::unusable) {
      return;  // the page does not offer it
    }
    ++played_;
    ASSERT_EQ(rehearsed.More.at("rehearsal").at("would_be_proven"), real.Outcome == outcome::done) << place;
    const auto predicted = After(before, rehearsed);
    for (const auto& [key, text] : predicted.Instrument) {
      keys_.insert(key);
    }
    const auto now = Now();
    ASSERT_EQ(predicted.File, now.File) << place;
    ASSERT_EQ(predicted.Instrument, now.Instrument) << place;
  }

  int Played() const { return played_; }

 private:
  void NoteKeys(const Values& values) {
    for (const auto& value : values.InOrder()) {
      keys_.insert(value.Name);
    }
  }

  BothSides Now() {
    BothSides sides;
    const auto face = FileFace(room_.Configuration());
    for (const auto& value : face.InOrder()) {
      sides.File[UpperCase(value.Name)] = value.Text.value_or("");
    }
    for (const auto& key : keys_) {
      if (const auto held = room_.Held(key)) {
        sides.Instrument[key] = *held;
      }
    }
    return sides;
  }

  // What the report names is as it says; everything else stays.
  static BothSides After(BothSides sides, const Report& report) {
    for (const auto& value : report.Values) {
      const bool isOfFile = value.Key.starts_with('[');
      auto& side = isOfFile ? sides.File : sides.Instrument;
      const auto name = isOfFile ? UpperCase(value.Key) : value.Key;
      if (value.Left) {
        side[name] = *value.Left;
      } else {
        side.erase(name);
      }
    }
    return sides;
  }

  CustodyRoom room_;
  std::string where_;
  std::set<std::string> keys_;
  int played_ = 0;
};

class Rehearsal : public testing::TestWithParam<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Seed, Rehearsal, Seeds(3, 1000));

TEST_P(Rehearsal, ForetellsEveryValueThatUploadImportDownloadUndoAndRestoreLeave) {
  SessionGenerator random{GetParam()};
  const auto whole = random.Configuration(SampleConfiguration(), SmallConfiguration());
  const auto taught = [&] { return WireFaceOfFile(random.Taught(whole)).Lines; };
  Values held;
  const auto before = taught();
  for (const auto& value : before.InOrder()) {
    if (random.Below(10) != 0) {
      held.Add(value);
    }
  }
  RehearsedRoom rehearsed{random.Taught(whole), held, "seed " + std::to_string(GetParam())};
  auto& room = rehearsed.Room();
  const auto source = CustodyRoom::PathTo("old.bak");
  const auto record = CustodyRoom::PathTo("record.html");
  room.Files.Put(source, random.Damaged(random.Taught(whole)));
  const bool backsUp = room.Run({"backup", record}).Status() == 0;
  ASSERT_TRUE(backsUp);
  rehearsed.ExpectForetold({"upload"});
  rehearsed.ExpectForetold({"import", source});
  rehearsed.ExpectForetold({"upload"});
  room.Teach(taught());
  rehearsed.ExpectForetold({"download"});
  rehearsed.ExpectForetold({"undo"});
  rehearsed.ExpectForetold({"restore", "--instrument", record});
  rehearsed.ExpectForetold({"undo"});
  rehearsed.ExpectForetold({"undo"});
  EXPECT_GE(rehearsed.Played(), 5);
}

}  // namespace
}  // namespace zolvane
