#include "custody/findings/rules.h"

#include <algorithm>
#include <utility>

#include "config/text.h"
#include "custody/values/values.h"
#include "files/file_settings_service.h"
#include "files/paths.h"
#include "host/instrument_link.h"
#include "operations/download.h"
#include "operations/file_copy.h"
#include "operations/upload.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

const std::string folder = "/checked";
const std::string backupPath = "/checked/backup.bak";

// Stores every value, and knows no other.
class ObedientInstrument final : public InstrumentLink {
 public:
  std::optional<bool> Stop() override { return false; }
  Status SetStop(bool) override { return Status::Success(); }
  Status SetHold(bool) override { return Status::Success(); }

  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t) override {
    if (auto setting = SettingIn(command)) {
      held_[setting->Name] = std::move(setting->Text).value_or("");
    }
    const auto isQuestion = command.starts_with(questionStart);
    const auto value = isQuestion ? held_.find(command.substr(questionStart.size())) : held_.end();
    reply = !isQuestion            ? "OK"
            : value == held_.end() ? std::string{syntaxErrorReply}
                                   : Joined(value->first, "=", value->second);
    return true;
  }

 private:
  std::map<std::string, std::string> held_;
};

}  // namespace

std::string IndexedAs(std::string_view section, std::string_view key) {
  return UpperCase(Trimmed(section)).append(1, '\n').append(UpperCase(Trimmed(key)));
}

std::string Shown(std::string_view text) {
  constexpr std::size_t longest = 80;
  auto size = std::min(text.size(), longest);
  while (size > 0 && size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U) {
    --size;  // no character is cut
  }
  return Quoted(text.substr(0, size)).append(size < text.size() ? "..." : "");
}

CheckedFile::CheckedFile(Kind kind, std::string bytes, std::string name, const std::string& configuration)
    : Is{kind},
      Text{std::move(bytes)},
      path_{kind == Kind::Configuration ? ConfigFileIn(folder) : backupPath},
      name_{std::move(name)} {
  disk_.Put(ConfigFileIn(folder), configuration);
  disk_.Put(path_, Text.Bytes());
  Text.VisitLines([this](const SectionedText::SeenLine& line) {
    const bool hasName =
        line.Is == SectionedText::LineKind::Header || line.Is == SectionedText::LineKind::Key;
    if (line.Counts && hasName) {
      lines_[IndexedAs(line.Section, line.Key)] = line.Number;
    }
    Lines.push_back(line);
  });
  Watch();
}

std::size_t CheckedFile::LineOf(std::string_view section, std::string_view key) const {
  const auto found = lines_.find(IndexedAs(section, key));
  return found == lines_.end() ? 0 : found->second;
}

void CheckedFile::Add(std::string_view code, std::size_t line, std::string text) {
  const auto* const rule = RuleOf(code);
  findings_.emplace(line, Finding{.Code = std::string{code},
                                  .Grade = rule->Grade,
                                  .File = name_,
                                  .Line = line,
                                  .Text = std::move(text),
                                  .Advice = std::string{rule->Advice}});
}

std::vector<Finding> CheckedFile::TakeFindings() {
  std::vector<Finding> inOrder;
  for (auto& [line, finding] : findings_) {
    inOrder.push_back(std::move(finding));
  }
  return inOrder;
}

std::shared_ptr<DrySettings> CheckedFile::Run(const OperationOnFile& operation,
                                              DrySettings::ReadObserver observe) {
  const auto files = std::make_shared<FileSettingsService>(
      [this](const std::string& path) { return disk_.OpenSettings(path); });
  auto settings = std::make_shared<DrySettings>(files, std::move(observe));
  RunDry(folder, settings, std::make_shared<ObedientInstrument>(),
         [&](const OperationContext& context) { operation(context, path_); });
  return settings;
}

std::vector<SettingWrite> CheckedFile::LoadPage(const DrySettings::ReadObserver& observe) {
  auto ends = EndsOn(disk_, folder);
  ends.Host.Wrapped = [&](const auto& settings) { return std::make_shared<DrySettings>(settings, observe); };
  return Play(ends, {.Kind = ActionKind::ShowPage}).Writes;
}

bool CheckedFile::Changes(const SettingWrite& write) const {
  const auto before = Text.Find(write.Section, write.Key);
  return !before || !SameText(*before, write.Text);
}

bool CheckedFile::IsWrittenByPage(std::string_view section, std::string_view key) const {
  return std::ranges::any_of(PageWrites, [&](const SettingWrite& write) {
    return EqualIgnoringCase(write.Section, section) && EqualIgnoringCase(write.Key, key);
  });
}

// No operation begins before the page has been loaded.
void CheckedFile::Store(const std::vector<SettingWrite>& writes) {
  FileSettingsService settings{[this](const std::string& path) { return disk_.OpenSettings(path); }};
  for (const auto& write : writes) {
    PassOver(settings.WriteValue(write.Section, write.Key, path_, write.Text));
  }
}

void CheckedFile::Watch() {
  bool isByWalk = false;
  const auto observe = [&](std::string_view section, std::string_view key, std::string_view path,
                           std::string_view fallback) {
    if (path != path_) {
      return;
    }
    auto& place = Asked[IndexedAs(section, key)];
    if (place.Section.empty()) {
      place = {.Section = std::string{section}, .Key = std::string{key}, .Fallback = std::string{fallback}};
    }
    place.IsByWalk = place.IsByWalk || isByWalk;
  };
  if (Is == Kind::Configuration) {
    PageWrites = LoadPage(observe);
    if (std::ranges::any_of(PageWrites, [this](const SettingWrite& write) { return Changes(write); })) {
      Asked.clear();  // what it asks for on its way to other choices counts for nothing
      Store(PageWrites);
      LoadPage(observe);
    }
  }
  isByWalk = true;
  if (Is == Kind::Backup) {
    WrittenBy(
        [](const OperationContext& context, const std::string& path) {
          CopyAllTables(context, path, context.Config.Settings.ConfigFilePath(), false, "");
        },
        observe);
    return;
  }
  Downloaded = WrittenBy(
      [](const OperationContext& context, const std::string&) {
        UploadCalibration(context);
        DownloadCalibration(context);
      },
      observe);
  Imported = WrittenBy(
      [](const OperationContext& context, const std::string& path) {
        CopyAllTables(context, path, backupPath, true, "");
        CopyAllTables(context, backupPath, path, false, "");
      },
      observe);
}

CheckedFile::Places CheckedFile::WrittenBy(const OperationOnFile& operation,
                                           const DrySettings::ReadObserver& observe) {
  const auto settings = Run(operation, observe);
  Places places;
  for (const auto& [place, kept] : settings->Writes()) {
    if (kept.File == path_) {
      places[IndexedAs(kept.Section, kept.Key)] = kept;
    }
  }
  return places;
}

}  // namespace zolvane
