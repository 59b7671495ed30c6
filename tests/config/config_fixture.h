// The configuration store over files in memory.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "config/configuration.h"
#include "config/record_printing.h"
#include "config/record_table.h"
#include "host/ini_file_service.h"
#include "support/fake_environment.h"
#include "support/journal.h"
#include "support/texts.h"

namespace zolvane {

// A table that goes on beyond every 16-bit number: all items have the same line, and every piece of it is the
// whole line.
class EndlessSettings final : public IniFileService {
 public:
  explicit EndlessSettings(std::string line) : line_{std::move(line)} {}

  std::string LastItem;

  std::optional<std::string> ReadValue(std::string_view, std::string_view key, std::string_view,
                                       std::string_view fallback) override {
    if (!key.starts_with("Item") && !key.starts_with("Axis")) {
      return std::string{fallback};
    }
    LastItem = key;
    return ++itemReads_ <= length ? line_ : std::string{fallback};
  }

  Status WriteValue(std::string_view, std::string_view, std::string_view, std::string_view) override {
    return Status::Failure();
  }

  std::optional<std::vector<std::string>> SplitText(std::string_view, std::string_view text) override {
    return std::vector<std::string>(2, std::string{text});
  }

 private:
  static constexpr int length = 100000;

  std::string line_;
  int itemReads_ = 0;
};

struct ConfigFixture {
  // The configuration file's content, with a device factor of 2 steps per unit and 0.02 mm per step of Z,
  // 0.05 of S in force.
  explicit ConfigFixture(std::string_view text = "") {
    Settings.Load(text);
    Config.Current.Device.SDXYEncoderMMStepFactorOff = 2.0;
    Config.Current.Axes.Z.UnitsPerStep = 0.02F;
    Config.Current.Axes.S.UnitsPerStep = 0.05F;
  }

  Journal Calls;
  FakeEnvironment Process{Calls};
  FakeSettings& Settings = *Process.Settings;
  Configuration Config{Process};

  std::string ConfigFile() const { return Settings.ConfigFile; }
  std::vector<std::string> Reads() const { return Calls.Of({"read "}); }
  std::vector<std::string> Writes() const { return Calls.Of({"write "}); }

  std::shared_ptr<EndlessSettings> WithoutEnd(const std::string& line) {
    auto settings = std::make_shared<EndlessSettings>(line);
    Process.OtherSettings = settings;
    return settings;
  }

  void SetFactor(double factor) {
    Config.Current.Device.SDXYEncoderStatus = false;
    Config.Current.Device.SDXYEncoderMMStepFactorOff = factor;
  }
};

// The file that a save of a test goes to.
inline constexpr std::string_view backup = "/backup.bak";

// Loads an item and saves a record, once for each of their calls with that call failing: all other reads and
// writes must happen as if nothing were wrong.
template <class Record>
void ExpectEveryFailureToBePassedOver(const RecordTable<Record>& table, std::string_view text,
                                      const std::string& item = "1") {
  const auto use = [&](ConfigFixture& fixture) {
    if constexpr (ItemRecord<Record>) {
      Load(table, fixture.Config, item);
    } else {
      Load(table, fixture.Config);
    }
    Save(table, fixture.Config, {}, backup);
  };
  ConfigFixture clean{text};
  use(clean);
  constexpr std::size_t creatingTheService = 1;
  ASSERT_GT(clean.Calls.CallCount, creatingTheService);
  for (std::size_t call = creatingTheService + 1; call <= clean.Calls.CallCount; ++call) {
    ConfigFixture fixture{text};
    fixture.Calls.FailingCall = call;
    use(fixture);
    EXPECT_EQ(fixture.Calls.Of({"read ", "write "}), clean.Calls.Of({"read ", "write "}))
        << "failing " << clean.Calls.Events[call - 1];
  }
}

}  // namespace zolvane
