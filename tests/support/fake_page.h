// A page for operations that are tested without one: notes what they ask of it and looks names up in lists of
// its own.
//
// Events: `enable controls true`, `select LIST 2`, `pump true`, `message 0 "Title" "Text"`, `load defaults`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "config/text.h"
#include "operations/page_port.h"
#include "support/fake_host.h"
#include "support/journal.h"

namespace zolvane {

class FakePage final : public PagePort {
 public:
  explicit FakePage(Journal& journal) : journal_{journal} {}

  std::map<ListControl, std::vector<std::string>> Entries;
  std::map<ListControl, int> Selected;

  Status EnableControls(bool enabled) override {
    return journal_.Outcome("enable controls " + FlagWord(enabled));
  }

  int FindListIndex(std::string_view text, ListControl list) const override {
    const auto found = Entries.find(list);
    for (std::size_t index = 0; found != Entries.end() && index < found->second.size(); ++index) {
      if (EqualIgnoringCase(found->second[index], text)) {
        return static_cast<int>(index);
      }
    }
    return 0;
  }

  Status SelectEntry(ListControl list, int index) override {
    const Status outcome = journal_.Outcome("select " + NameOf(list) + " " + std::to_string(index));
    if (!outcome.Ok() || static_cast<std::size_t>(index) >= Entries[list].size()) {
      return Status::Failure(Journal::failureCode);
    }
    Selected[list] = index;
    return outcome;
  }

  Status ShowPumpModule(bool connected) override { return journal_.Outcome("pump " + FlagWord(connected)); }

  std::int16_t ShowMessage(const std::string& message, std::int16_t style,
                           const std::string& title) override {
    journal_.Note("message " + std::to_string(style) + " \"" + title + "\" \"" + message + "\"");
    return 1;
  }

  void LoadDefaults() override { journal_.Note("load defaults"); }

 private:
  static std::string NameOf(ListControl list) {
    static const std::map<ListControl, std::string> names{{ListControl::DeviceType, "devices"},
                                                          {ListControl::CageType, "modules"},
                                                          {ListControl::HeadType, "heads"},
                                                          {ListControl::NestType, "nests"},
                                                          {ListControl::TipType, "tips"}};
    return names.at(list);
  }

  Journal& journal_;
};

}  // namespace zolvane
