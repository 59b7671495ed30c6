// Whole commands of zolvane on simulated ends: a disk in memory, a witness, and the simulated instrument.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "custody/support/fake_witness.h"
#include "custody/support/run_command.h"
#include "custody/values/sides.h"
#include "files/paths.h"
#include "instrument/links/simulated_link.h"
#include "text/json_text.h"

namespace zolvane {

struct RanCommand {
  static RanCommand On(const CommandEnds& ends, const Words& words) {
    std::ostringstream printed;
    auto report = RunCommandOn(ends, words, printed, printed);
    printed << JsonText(ReportJson(report), true);
    return {.Result = std::move(report), .Printed = printed.str()};
  }

  Report Result;
  std::string Printed;  // everything, the document of --json among it

  int Status() const { return Result.ExitStatus; }

  // The word is a promise wherever it stands.
  bool ClaimsSuccess() const { return Status() == 0 || Printed.find("done") != std::string::npos; }
};

// Hands every line on, and looks behind the wire when SAVE comes.
class WatchedLink final : public BenchLink {
 public:
  WatchedLink(std::shared_ptr<SimulatedInstrument> instrument, FaultPlan faults)
      : BenchLink{ProgramInterrupt()},
        instrument_{std::move(instrument)},
        wire_{instrument_, std::move(faults), ProgramInterrupt()} {}

  std::size_t Lines() const { return lines_; }
  std::size_t Settings() const { return settings_; }
  std::size_t Saves() const { return saves_; }

  // The last text for each key.
  const std::map<std::string, std::string>& Sent() const { return sent_; }

  // What the instrument did not hold when SAVE left.
  const std::vector<std::string>& SavedUnproven() const { return savedUnproven_; }

 private:
  std::optional<std::string> Exchange(const std::string& command, Delivery& delivery) override {
    ++lines_;
    if (const auto setting = SettingIn(command)) {
      ++settings_;
      sent_[setting->Name] = setting->Text.value_or("");
    } else if (command == saveLine) {
      ++saves_;
      NoteUnproven();
    }
    return HandOn(wire_, command, delivery);
  }

  void NoteUnproven() {
    for (const auto& [key, text] : sent_) {
      const auto reply = instrument_->Answer("GET_CALIBRATION " + key).value_or("");
      if (!reply.starts_with(key + "=") || !SameText(reply.substr(key.size() + 1), text)) {
        savedUnproven_.push_back(key);
      }
    }
  }

  std::shared_ptr<SimulatedInstrument> instrument_;
  SimulatedLink wire_;
  std::size_t lines_ = 0;
  std::size_t settings_ = 0;
  std::size_t saves_ = 0;
  std::map<std::string, std::string> sent_;
  std::vector<std::string> savedUnproven_;
};

// A folder with a configuration, and the instrument that it is for.
class CustodyRoom {
 public:
  // The instrument has kept the values that it holds.
  explicit CustodyRoom(const std::string& configuration, const Values& held = Values{})
      : Instrument{std::make_shared<SimulatedInstrument>(
            SimulatedInstrument::Setup{.Stage = StageFor(configuration)})} {
    Files.Put(ConfigFileIn(Folder()), configuration);
    Teach(held);
  }

  // No instrument is without a name.
  static std::string StageFor(const std::string& configuration) {
    const auto code = WireFaceOfFile(configuration).InForce.Device.Code;
    return code.empty() ? "ZV" : code;
  }

  static std::string Folder() { return AbsolutePath("/lab"); }
  static std::string PathTo(const std::string& name) { return AbsolutePath("/lab/" + name); }

  // Whatever speaks against going on is let pass.
  static Words LettingPass(Words words) {
    for (const auto* code : {"findings", "other-instrument", "unfinished", "not-a-backup", "cut-off",
                             "other-device", "changed", "exists", "history-damaged"}) {
      words.insert(words.begin(), {"--despite", code});
    }
    return words;
  }

  // Every box is affirmed, too.
  static Words Determined(Words words) {
    words.insert(words.begin(), "--yes");
    return LettingPass(std::move(words));
  }

  RanCommand Run(const Words& words, FaultPlan faults = {}) {
    Wire = std::make_shared<WatchedLink>(Instrument, std::move(faults));
    return RanCommand::On({.Folder = Folder(), .Files = Files, .Who = Witness, .Link = Wire}, words);
  }

  // Stores the values and keeps them.
  void Teach(const Values& values) {
    for (const auto& value : values.InOrder()) {
      Instrument->Store(value.Name, value.Text.value_or(""));
    }
    Instrument->Answer(saveLine);
  }

  // What the instrument really holds, whatever its wire says. Nothing if it does not know the key.
  std::optional<std::string> Held(const std::string& key) const {
    const auto reply = Instrument->Answer("GET_CALIBRATION " + key).value_or("");
    return reply.starts_with(key + "=") ? std::optional{reply.substr(key.size() + 1)} : std::nullopt;
  }

  std::string Configuration() { return Files.Read(ConfigFileIn(Folder())).Bytes; }

  MemoryDisk Files;
  FakeWitness Witness;
  std::shared_ptr<SimulatedInstrument> Instrument;
  std::shared_ptr<WatchedLink> Wire;  // of the last command
};

}  // namespace zolvane
