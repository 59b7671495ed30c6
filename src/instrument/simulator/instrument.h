// The simulated instrument: one command line in, one reply out.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "instrument/simulator/instrument_memory.h"

namespace zolvane {

class SimulatedInstrument {
 public:
  struct Setup {
    // What the instrument says about itself. The defaults are what the sample configuration has installed.
    std::string Stage = "ZV400";
    std::string Mechanics = "SD";
    std::string Tag = "5A4C0150AA7F2032";
    std::string Pumps = "PUMPS CLOSED";

    // The file that keeps what was saved of the calibration memory; empty for a memory
    // that ends with the process.
    std::string StateFile{};

    // The instrument falls silent after this many answers.
    std::optional<std::size_t> FailAfter{};
  };

  // Loads the state file, and creates nothing yet. Throws UsageError if the file cannot be used, or if
  // another instrument uses it.
  explicit SimulatedInstrument(Setup setup);

  // Creates a missing state file. Throws UsageError when that fails.
  void SwitchOn() const;

  // The reply to one command; empty if the instrument keeps silent. Keys are case-sensitive.
  std::optional<std::string> Answer(std::string_view command);

  // ---- For faults

  // What SET_CALIBRATION KEY VALUE sets; nullopt for any other command.
  struct Setting {
    std::string_view Key;
    std::string_view Value;
  };
  static std::optional<Setting> SettingIn(std::string_view command);

  // Answers with this text and does nothing.
  std::optional<std::string> Claim(std::string_view reply);

  void Store(std::string_view key, std::string_view value) { memory_->Set(key, value); }

  // What was not saved is gone.
  void Restart() { memory_->Restart(); }

 private:
  bool KeepsSilent();
  std::optional<std::string> Reply(std::string_view command);
  std::string Set(std::string_view command);
  std::string Get(std::string_view key) const;

  Setup setup_;
  std::unique_ptr<InstrumentMemory> memory_;
  std::size_t answers_ = 0;
};

}  // namespace zolvane
