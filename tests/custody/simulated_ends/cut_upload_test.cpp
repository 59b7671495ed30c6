// An upload that is cut off behind any of its lines, be it that the wire breaks or that the program is
// killed, while the instrument is out of order in any way: undo leads back to what was there, undo of that to
// what was there in between, and resume to what was meant.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "custody/support/laboratory.h"
#include "instrument/simulator/faults.h"
#include "text/joined.h"

namespace zolvane {
namespace {

const std::string& UploadedFile() {
  static const std::string bytes = LabConfiguration();
  return bytes;
}

const Held& UploadedValues() {
  static const Held held = ScriptOf(UploadedFile());
  return held;
}

// Of every key another one, and nothing of it unsaved.
const Held& ValuesBefore() {
  static const Held held = [] {
    auto values = UploadedValues();
    std::size_t number = 500'000;
    for (auto& [key, text] : values) {
      text = std::to_string(++number);
    }
    return values;
  }();
  return held;
}

// The lines of an upload on the wire, by their numbers: it looks, sends, asks again, saves, and asks once
// more.
struct UploadLines {
  std::size_t FirstSent = UploadedValues().size() + 2;
  std::size_t LastSent = FirstSent + UploadedValues().size() - 1;
  std::size_t Save = LastSent + UploadedValues().size() + 1;
  std::size_t Last = Save + 1;
};

enum class End { WireBreaks, ReplyIsLost, ProgramIsKilled };

struct UploadCut {
  std::size_t Line = 0;  // the last one that arrives
  End How = End::WireBreaks;
  std::string Fault{};

  std::string Text() const {
    const auto* const how = How == End::WireBreaks    ? "wire breaks"
                            : How == End::ReplyIsLost ? "reply is lost"
                                                      : "program is killed";
    return Joined(how, " behind line ", std::to_string(Line), " ", Fault);
  }
};

// What such an upload leaves.
class AfterCut {
 public:
  explicit AfterCut(const UploadCut& cut) {
    Instrument = std::make_shared<LabInstrument>(LabMemory::Saved(ValuesBefore()),
                                                 cut.Fault.empty() ? std::nullopt : std::optional{cut.Fault});
    Instrument->LinesLeft = cut.Line;
    Instrument->IsLastReplyLost = cut.How == End::ReplyIsLost;
    MemoryDisk before;
    before.Put(labFile, UploadedFile());
    Instrument->IsCut = [&] {
      if (cut.How == End::ProgramIsKilled) {
        CopyTo(Disk, before);
      }
    };
    LabProgram upload;
    upload.Run(before, Instrument, {"--yes", "upload"});
    if (Disk.Files().empty()) {
      CopyTo(Disk, before);
    }
    Instrument->LinesLeft.reset();
    Instrument->IsCut = [] {};
  }

  int Run(LabProgram& program, const std::vector<std::string>& words) {
    return program.Run(Disk, Instrument, words);
  }

  std::string File() { return Disk.Read(labFile).Bytes; }

  // How often each key was set so far.
  std::map<std::string, int> TimesSent() const {
    std::map<std::string, int> times;
    for (const auto& line : Instrument->Lines) {
      if (const auto setting = SettingIn(line)) {
        ++times[setting->Name];
      }
    }
    return times;
  }

  MemoryDisk Disk;
  std::shared_ptr<LabInstrument> Instrument;
};

// ---- Undo ----

class FaultyUpload : public testing::TestWithParam<FaultRow> {
 protected:
  static void CheckUndo(const UploadCut& cut) {
    AfterCut lab{cut};
    const auto between = lab.Instrument->Holds();
    const auto fileBetween = lab.File();
    LabProgram undo;
    ASSERT_EQ(lab.Run(undo, {"undo"}), 0) << undo.All();
    ASSERT_EQ(lab.File(), UploadedFile());
    ASSERT_EQ(lab.Instrument->Holds(), ValuesBefore());
    lab.Instrument->Restart();
    ASSERT_EQ(lab.Instrument->Holds(), ValuesBefore()) << "after a restart";
    // Nothing was changed, so nothing was taken back; or there was a value without characters, and no line sets
    // such a one.
    if (between == ValuesBefore() ||
        std::ranges::any_of(between, [](const auto& value) { return value.second.empty(); })) {
      return;
    }
    LabProgram redo;
    ASSERT_EQ(lab.Run(redo, {"undo"}), 0) << redo.All();
    ASSERT_EQ(lab.File(), fileBetween);
    ASSERT_EQ(lab.Instrument->Holds(), between);
  }
};

INSTANTIATE_TEST_SUITE_P(Kinds, FaultyUpload, testing::ValuesIn(FaultRows().begin(), FaultRows().end()),
                         [](const auto& fault) {
                           std::string name{fault.param.Name};
                           std::erase(name, '-');
                           return name;
                         });

TEST_P(FaultyUpload, IsTakenBackFromBehindEveryLine) {
  const UploadLines lines;
  const std::size_t stride = TriesAll() ? 1 : 151;
  std::size_t count = 0;
  for (std::size_t line = lines.FirstSent; line <= lines.Last; line += stride) {
    // At the last line that arrives, at one before it, and far before it.
    for (const std::size_t back : {std::size_t{0}, std::size_t{1}, (line - lines.FirstSent) / 2}) {
      for (const auto how : {End::WireBreaks, End::ProgramIsKilled}) {
        if (!TriesAll() && (back != line % 2 || (how == End::WireBreaks) != (line % 3 == 0))) {
          continue;
        }
        const UploadCut cut{
            .Line = line,
            .How = how,
            .Fault = Joined(GetParam().Name, "@", std::to_string(std::max(line - back, lines.FirstSent)))};
        SCOPED_TRACE(cut.Text());
        CheckUndo(cut);
        ASSERT_FALSE(HasFatalFailure());
        ++count;
      }
    }
  }
  std::cout << "  " << count << " cuts\n";
}

// ---- Resume ----

std::vector<UploadCut> UploadCuts() {
  const UploadLines lines;
  std::vector<UploadCut> cuts;
  for (std::size_t line = lines.FirstSent; line <= lines.Last; line += TriesAll() ? 1 : 97) {
    for (const auto how : {End::WireBreaks, End::ReplyIsLost, End::ProgramIsKilled}) {
      cuts.push_back({.Line = line, .How = how});
    }
  }
  return cuts;
}

// Behind what was sent, and before it is saved.
void ExpectAllAskedBeforeSave(const std::vector<std::string>& lines) {
  const auto save = std::ranges::find(lines, saveLine);
  ASSERT_GE(save - lines.begin(), std::ssize(UploadedValues()));
  const auto proof = save - std::ssize(UploadedValues());
  for (const auto& [key, ignored] : UploadedValues()) {
    ASSERT_EQ(std::count(proof, save, Joined(questionStart, key)), 1) << key;
  }
}

TEST(CutUpload, IsResumedWithAtMostOneLineSentTwice) {
  for (const auto& cut : UploadCuts()) {
    SCOPED_TRACE(cut.Text());
    AfterCut lab{cut};
    const auto arrived = lab.Instrument->Lines.size();
    LabProgram resume;
    const int status = lab.Run(resume, {"resume"});
    ASSERT_EQ(status, cut.How == End::WireBreaks && cut.Line == UploadLines{}.Last ? 2 : 0) << resume.All();
    const auto times = lab.TimesSent();
    ASSERT_EQ(times.size(), UploadedValues().size());
    ASSERT_LE(std::ranges::count_if(times, [](const auto& key) { return key.second > 1; }), 1);
    if (status == 0) {
      ExpectAllAskedBeforeSave({lab.Instrument->Lines.begin() + static_cast<std::ptrdiff_t>(arrived),
                                lab.Instrument->Lines.end()});
    }
    lab.Instrument->Restart();
    ASSERT_EQ(lab.Instrument->Holds(), UploadedValues());
    ASSERT_FALSE(testing::Test::HasFailure());
  }
}

TEST(CutUpload, IsNotResumedOverWhatSomebodyElseChanged) {
  const UploadLines lines;
  for (const auto& cut : UploadCuts()) {
    if (cut.Line >= lines.Save) {
      continue;
    }
    SCOPED_TRACE(cut.Text());
    AfterCut lab{cut};
    const auto place = cut.Line * 7 % UploadedValues().size();
    const auto key = std::next(UploadedValues().begin(), static_cast<std::ptrdiff_t>(place))->first;
    lab.Instrument->Store(key, "777");
    const auto found = lab.Instrument->Holds();

    LabProgram refused;
    ASSERT_EQ(lab.Run(refused, {"resume"}), 3) << refused.All();
    ASSERT_EQ(refused.Result.Objections.size(), 1U);
    ASSERT_EQ(refused.Result.Objections.front().Code, "changed");
    ASSERT_NE(refused.Result.Objections.front().Expected.find(key), std::string::npos);
    ASSERT_EQ(lab.Instrument->Holds(), found);

    LabProgram despite;
    ASSERT_EQ(lab.Run(despite, {"--despite", "changed", "resume"}), 1) << despite.All();
    ASSERT_NE(despite.Errors.str().find(Joined("left as found: ", key)), std::string::npos) << despite.All();
    auto expected = UploadedValues();
    expected[key] = "777";
    ASSERT_EQ(lab.Instrument->Holds(), expected);
  }
}

}  // namespace
}  // namespace zolvane
