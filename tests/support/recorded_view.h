// A page view that notes every call and keeps what it shows.
//
// Events: `view create`, `view close`, `view LIST entries A=1|B=2`, `view LIST added A=1`, `view LIST
// selected 2`, `view LIST colour 2147483653`, `view LIST enabled true`, `view BOX checked 1`, `view BOX
// enabled true`, `view BUTTON enabled true`, `view pump TEXT`.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "page/page_model.h"
#include "page/page_view.h"
#include "support/fake_host.h"
#include "support/journal.h"

namespace zolvane {

class RecordedView final : public PageView {
 public:
  explicit RecordedView(Journal& journal) : journal_{journal} {}

  // What the view shows after the calls that did not fail.
  PageModel Shown;
  bool IsClosed = false;
  std::int32_t Window = 0;
  std::int32_t Frame = 0;

  Status ShowEntries(ListControl list, std::span<const ListEntry> entries) override {
    std::string event = NameOf(list) + " entries ";
    for (const auto& entry : entries) {
      event.append(event.back() == ' ' ? "" : "|").append(TextOf(entry));
    }
    const Status outcome = Outcome(event);
    if (outcome.Ok()) {
      Shown.Of(list).Entries.assign(entries.begin(), entries.end());
      Shown.Of(list).Selected = noSelection;
    }
    return outcome;
  }

  Status ShowAddedEntry(ListControl list, const ListEntry& entry) override {
    const Status outcome = Outcome(NameOf(list) + " added " + TextOf(entry));
    if (outcome.Ok()) {
      Shown.Of(list).Entries.push_back(entry);
    }
    return outcome;
  }

  Status ShowSelection(ListControl list, int index) override {
    return Store(Shown.Of(list).Selected, index, NameOf(list) + " selected " + std::to_string(index));
  }

  Status ShowListColour(ListControl list, std::uint32_t systemColour) override {
    return Store(Shown.Of(list).BackColour, systemColour,
                 NameOf(list) + " colour " + std::to_string(systemColour));
  }

  Status ShowListEnabled(ListControl list, bool enabled) override {
    return Store(Shown.Of(list).Enabled, enabled, NameOf(list) + " enabled " + FlagWord(enabled));
  }

  Status ShowCheck(CheckControl box, int value) override {
    return Store(Shown.Of(box).Value, value, NameOf(box) + " checked " + std::to_string(value));
  }

  Status ShowCheckEnabled(CheckControl box, bool enabled) override {
    return Store(Shown.Of(box).Enabled, enabled, NameOf(box) + " enabled " + FlagWord(enabled));
  }

  Status ShowButtonEnabled(int button, bool enabled) override {
    const auto index = static_cast<std::size_t>(button);
    return Store(Shown.ButtonsEnabled.at(index), enabled,
                 std::string{buttonRows.at(index).Name} + " enabled " + FlagWord(enabled));
  }

  Status ShowPumpText(std::string_view text) override {
    return Store(Shown.PumpText, std::string{text}, "pump " + std::string{text});
  }

  std::int32_t WindowHandle() const override { return Window; }
  std::int32_t FrameHandle() const override { return Frame; }

  void Close() override {
    journal_.Note("view close");
    IsClosed = true;
  }

 private:
  static std::string NameOf(ListControl list) { return std::string{RowOf(list).Name}; }
  static std::string NameOf(CheckControl box) { return std::string{RowOf(box).Name}; }
  static std::string TextOf(const ListEntry& entry) { return entry.Text + "=" + std::to_string(entry.Data); }

  Status Outcome(const std::string& event) {
    const Status outcome = journal_.Outcome("view " + event);
    return IsClosed ? Status::Failure(Journal::failureCode) : outcome;
  }

  template <class T>
  Status Store(T& target, T value, const std::string& event) {
    const Status outcome = Outcome(event);
    if (outcome.Ok()) {
      target = std::move(value);
    }
    return outcome;
  }

  Journal& journal_;
};

// Hands out one recorded view at a time. The page owns it; View stays valid until the page lets it go.
class RecordedViewFactory final : public PageViewFactory {
 public:
  explicit RecordedViewFactory(Journal& journal) : journal_{journal} {}

  RecordedView* View = nullptr;
  PageEvents* Events = nullptr;

  std::unique_ptr<PageView> CreatePageView(PageEvents& events) override {
    if (journal_.Fails("view create")) {
      return nullptr;
    }
    auto view = std::make_unique<RecordedView>(journal_);
    View = view.get();
    Events = &events;
    return view;
  }

 private:
  Journal& journal_;
};

}  // namespace zolvane
