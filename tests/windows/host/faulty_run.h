// One run of an operation with a host one of whose calls fails, or does something else: what the runs over
// COM and on the portable parts share.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "bench/host/bench_host.h"
#include "bench/host/tracing.h"
#include "bench/windows/play/dialogue_hooks.h"
#include "files/file_settings_service.h"
#include "files/sectioned_text.h"
#include "host/forwarding.h"
#include "instrument/links/link_factory.h"
#include "windows/host/faulty_host.h"
#include "windows/support/dialogue_spectator.h"

namespace zolvane {

struct PlayedOperation {
  std::optional<int> Button;  // nothing: a session without any, which counts from its beginning to its end
  std::string Link = "sim";
  bool OffersDialog = false;
};

struct FailingCall {
  std::size_t Call = 0;  // counted from 1; 0: none fails
  FailureWay Way = FailureWay::Refusal;
};

// The file that the operation's dialogue gives; nullopt for operations without one.
std::optional<std::string> FileFor(const PlayedOperation& operation);

// Settings files in memory, as thousands of sessions on the disk would take too long. What the add-in does to
// a file without the service still happens on the disk.
class MemorySettings final : public IniFileService {
 public:
  MemorySettings();

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override {
    return files_[std::string{file}].Find(section, key).value_or(std::string{fallback});
  }

  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    auto& text = files_[std::string{file}];
    const auto edit = text.PlanValue(section, key, value);
    if (!edit) {
      return Status::Failure();
    }
    text.Apply(*edit);
    return Status::Success();
  }

  std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                    std::string_view text) override {
    return splitter_.SplitText(delimiter, text);
  }

  std::string Bytes(const std::string& file) { return files_[file].Bytes(); }

 private:
  FileSettingsService splitter_;
  std::map<std::string, SectionedText> files_;
};

// The process of a host, but for its settings files.
class MemoryProcess final : public ForwardingEnvironment {
 public:
  using ForwardingEnvironment::ForwardingEnvironment;

  std::shared_ptr<MemorySettings> Files = std::make_shared<MemorySettings>();

  std::shared_ptr<IniFileService> CreateIniFileService() override { return Files; }
};

// The host of one run: the part that both sides share.
class FaultyRun {
 public:
  explicit FaultyRun(const PlayedOperation& operation);

  const PlayedOperation& Asked;
  HostFaults Faults;
  std::stringstream Trace;
  TraceLog Log{Trace, false};
  std::ostringstream Unread;
  Console Out{Unread, Unread, {.IsQuiet = true, .ResultsGoToNotes = false, .NotesWidth = {}}};
  InterruptFlag Interrupt;
  BenchHost Host{SetupFor(Asked), CreateLink(Asked.Link, 5, Interrupt), nullptr, Out};
  MemoryProcess Plain{Host.Environment()};
  std::unique_ptr<Environment> Process = Traced(Plain, Log);

  void BeginSession(const FailingCall& failure) {
    if (!Asked.Button) {
      Faults.Begin(failure.Call, failure.Way);
    }
  }

  template <class Press>
  void Act(const FailingCall& failure, Press press) {
    if (Asked.Button) {
      Faults.Begin(failure.Call, failure.Way);
      press(*Asked.Button);
      Faults.End();
    }
  }

  // What reached the host, with its values. Each line is given once.
  std::vector<std::string> TakeTrace();

  // What the files hold, in memory and on the disk.
  std::string FileTexts();

 private:
  static BenchHost::Setup SetupFor(const PlayedOperation& operation);
};

// Answers boxes and dialogues at once, without showing them: other tests show that they appear.
class UnshownDialogues final : public DialogueSpectator {
 public:
  explicit UnshownDialogues(const PlayedOperation& operation) : file_{FileFor(operation)} {}

  bool ShowsDialogues() const override { return false; }
  std::optional<std::int32_t> AnswerUnshown(const MessageBoxRequest& request) override {
    return ButtonsOf(request.Style).front();
  }
  std::optional<std::string> ChooseUnshown(FileDialogueKind) override { return file_; }

 private:
  std::optional<std::string> file_;
};

// Where each kind of call comes, counted from 1.
std::map<std::string, std::vector<std::size_t>> PlacesOfEachKind(const std::vector<HostCall>& calls);

}  // namespace zolvane
