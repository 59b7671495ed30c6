// A laboratory of which nothing is real: whole commands of zolvane, run in the process, with configuration
// and history on a disk that the test made, and with an instrument whose memory the test sees.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "custody/disk/disk.h"
#include "custody/support/fake_witness.h"
#include "custody/support/run_command.h"
#include "custody/support/transfer_room.h"
#include "custody/values/sides.h"
#include "files/paths.h"
#include "instrument/links/simulated_link.h"
#include "support/file_bytes.h"
#include "support/long_tests.h"
#include "text/joined.h"

namespace zolvane {

// ---- The folder ----

inline const std::string labFolder = AbsolutePath("/lab");
inline const std::string labFile = ConfigFileIn(labFolder);

// The small configuration; its device can do all that the page offers.
inline std::string LabConfiguration() {
  auto bytes = BytesOf(ZOLVANE_SOURCE_PATH "/tests/golden/small.ini");
  const std::string_view off = "ExportCalibrationData=0";
  return bytes.replace(bytes.find(off), off.size(), "ExportCalibrationData=1");
}

inline std::string Exchanged(std::string text, std::string_view from, std::string_view to) {
  const auto at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

inline void CopyTo(MemoryDisk& copy, const MemoryDisk& original) {
  for (const auto& folder : original.Folders()) {
    PassOver(copy.MakeFolder(folder));
  }
  for (const auto& [path, bytes] : original.Files()) {
    copy.Put(path, bytes);
  }
}

// ---- The instrument ----

using Held = std::map<std::string, std::string>;

struct LabMemory {
  Held Holds;
  Held Keeps;  // after a restart

  bool operator==(const LabMemory&) const = default;

  static LabMemory Saved(const Held& held) { return {held, held}; }
  LabMemory Restarted() const { return Saved(Keeps); }
};

// What an upload of the configuration sends.
inline Held ScriptOf(const std::string& configuration) {
  Held held;
  const auto face = WireFaceOfFile(configuration);
  for (const auto& value : face.Lines.InOrder()) {
    held[value.Name] = value.Text.value_or("");
  }
  return held;
}

// The simulated instrument that fits the configuration. Its wire can be cut.
class LabInstrument final : public BenchLink {
 public:
  explicit LabInstrument(const LabMemory& memory, std::optional<std::string> fault = std::nullopt)
      : BenchLink{ProgramInterrupt()}, told_{memory} {
    SimulatedInstrument instrument{{.Stage = "ZV300", .Tag = "TAG3"}};
    const auto store = [&](const Held& held) {
      for (const auto& [key, text] : held) {
        instrument.Store(key, text);
        keys_.insert(key);
      }
    };
    store(memory.Keeps);
    instrument.Answer(saveLine);
    store(memory.Holds);
    FaultPlan faults{"power@RESTART", "drop@RESTART"};
    if (fault) {
      faults.Add(*fault);
    }
    inside_ = std::make_unique<SimulatedLink>(std::move(instrument), std::move(faults), noInterrupt);
  }

  // Lines that arrived, and what is to be done behind each.
  std::vector<std::string> Lines;
  std::function<void(const std::string& line)> Took = [](const auto&) {};

  // How many more lines arrive before the wire is cut, and whether the last one's reply comes through.
  std::optional<std::size_t> LinesLeft;
  bool IsLastReplyLost = false;
  std::function<void()> IsCut = [] {};

  // ---- Past the wire ----

  // What it answers now.
  Held Holds() {
    Held held;
    for (const auto& key : keys_) {
      if (auto text = HeldBy(*inside_, key); text != "unknown") {
        held[key] = std::move(text);
      }
    }
    return held;
  }

  // By the lines that it took. Of one that does what it says.
  const LabMemory& Memory() const { return told_; }

  void Store(const std::string& key, const std::string& text) {
    SendLine(*inside_, Joined(settingStart, key, " ", text));
  }

  void Restart() { SendLine(*inside_, "SET_CALIBRATION RESTART now"); }

 private:
  std::optional<std::string> Exchange(const std::string& command, Delivery& delivery) override {
    if (LinesLeft == std::size_t{0}) {
      delivery = {.HasLeft = false, .Problem = "the wire is cut", .SkippedLine = std::nullopt};
      return std::nullopt;
    }
    auto reply = HandOn(*inside_, command, delivery);
    Lines.push_back(command);
    if (const auto setting = SettingIn(command)) {
      keys_.insert(setting->Name);
      told_.Holds[setting->Name] = setting->Text.value_or("");
    } else if (command == saveLine) {
      told_.Keeps = told_.Holds;
    }
    Took(command);
    if (LinesLeft && --*LinesLeft == 0) {
      IsCut();
      return IsLastReplyLost ? std::nullopt : reply;
    }
    return reply;
  }

  std::set<std::string> keys_;
  LabMemory told_;
  std::unique_ptr<SimulatedLink> inside_;
};

// ---- The program ----

// One command, and what it prints.
class LabProgram {
 public:
  // `link` is null without an instrument.
  int Run(Disk& disk, std::shared_ptr<BenchLink> link, Words words) {
    // The small configuration lacks values, on purpose.
    words.insert(words.begin(), {"--despite", "findings"});
    FakeWitness witness;
    Result = RunCommandOn({.Folder = labFolder, .Files = disk, .Who = witness, .Link = std::move(link)},
                          std::move(words), Output, Errors);
    return Result.ExitStatus;
  }

  std::string All() const { return Output.str() + Errors.str(); }

  std::ostringstream Output;
  std::ostringstream Errors;
  Report Result;
};

}  // namespace zolvane
