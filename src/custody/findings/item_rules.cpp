// Classes, codes and names by which the items of the lists are found.
#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <vector>

#include "config/tables/axes.h"
#include "config/tables/current_records.h"
#include "config/tables/devices.h"
#include "config/tables/heads.h"
#include "config/tables/modules.h"
#include "config/tables/nests.h"
#include "config/tables/stage.h"
#include "config/tables/tips.h"
#include "config/text.h"
#include "custody/findings/rules.h"
#include "custody/values/file_fields.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/suggestion.h"

namespace zolvane {
namespace {

// ---- Classes that the upload compares to the letter

constexpr std::array moduleClasses{code::microtiter, code::serialDilute};
constexpr std::array headClasses{code::microtiter, code::serialDilute, code::calibrate};
constexpr std::array tipClasses{code::microtiter, code::serialDilute};
constexpr std::array nestClasses{code::nest8, code::nest12};
constexpr std::array headLayouts{channel_layout::oneShort, channel_layout::oneLong, channel_layout::eight,
                                 channel_layout::twelve};

void CheckSpelling(CheckedFile& file, std::string_view section, const std::string& item,
                   std::string_view text, std::string_view meant) {
  if (!meant.empty()) {
    file.Add("misspelt-class", file.LineOf(section, ItemKey(item)),
             Joined(Printable(NameOfPlace(section, ItemKey(item))), ": ", Shown(text), " is nearly ", meant,
                    ", but not to the letter: the upload does not find the item by it"));
  }
}

std::string DigitsOf(std::string_view text) {
  std::string digits;
  std::ranges::copy_if(text, std::back_inserter(digits), [](char one) { return one >= '0' && one <= '9'; });
  return digits;
}

// A text that is none of them, but one of them to a reader: its digits tell one from another, letters may be mistyped.
std::string_view MeantBy(std::string_view text, std::span<const std::string_view> known) {
  if (std::ranges::find(known, text) != known.end()) {
    return {};
  }
  std::vector<std::string_view> alike;
  std::ranges::copy_if(known, std::back_inserter(alike),
                       [&](const auto name) { return DigitsOf(name) == DigitsOf(text); });
  return NearestName(text, alike);
}

template <class Record>
void CheckClasses(CheckedFile& file, const Configuration& configuration, const RecordTable<Record>& table,
                  std::string_view section, std::span<const std::string_view> classes) {
  ForEach(table, configuration, [&](const Record& record) {
    CheckSpelling(file, section, record.ID, record.Code, MeantBy(record.Code, classes));
  });
}

// Of the heads that the 1/8/12 module carries.
void CheckLayouts(CheckedFile& file, const Configuration& configuration) {
  ForEach(headTable, configuration, [&file](const HeadTypeRecord& head) {
    CheckSpelling(file, headTypeSection, head.ID, head.ChannelCode,
                  head.Code == code::serialDilute ? MeantBy(head.ChannelCode, headLayouts) : "");
  });
}

// ---- What the query looks for

// The first item of each text is the one that is found.
class FirstItems {
 public:
  FirstItems(CheckedFile& file, std::string_view section, std::string_view code)
      : file_{file}, section_{section}, code_{code} {}

  // `why` says why the query does not look for it; empty if it does.
  void Look(const std::string& text, const std::string& index, const std::string& item,
            std::string why = {}) {
    const auto key = ItemKey(item);
    const auto [first, isNew] = first_.try_emplace(index, key);
    if (text.empty()) {
      why = "it has none";
    } else if (why.empty() && !isNew) {
      why = Joined(Shown(text), " is that of ", first->second, " as well");
    }
    if (!why.empty()) {
      file_.Add(code_, file_.LineOf(section_, key),
                Joined(Printable(NameOfPlace(section_, key)), " is never found by its code: ", why));
    }
  }

 private:
  CheckedFile& file_;
  std::string_view section_;
  std::string_view code_;
  std::map<std::string, std::string> first_;
};

void CheckDetection(CheckedFile& file, const Configuration& configuration) {
  FirstItems devices{file, deviceTypeSection, "undetectable"};
  ForEach(deviceTable, configuration, [&](const DeviceTypeRecord& device) {
    devices.Look(device.Code, UpperCase(device.Code), device.ID);
  });
  FirstItems heads{file, headTypeSection, "undetectable"};
  ForEach(headTable, configuration,
          [&](const HeadTypeRecord& head) { heads.Look(head.Tag, head.Tag, head.ID); });
  FirstItems cages{file, cageTypeSection, "undetected-module"};
  ForEach(cageTable, configuration, [&](const CageTypeRecord& cage) {
    const bool isAsked = std::ranges::any_of(
        moduleClasses, [&cage](const auto name) { return EqualIgnoringCase(cage.Code, name); });
    if (isAsked || MeantBy(cage.Code, moduleClasses).empty()) {
      cages.Look(cage.Code, UpperCase(cage.Code), cage.ID,
                 isAsked ? "" : Joined("no query looks for ", Shown(cage.Code)));
    }
  });
}

// ---- Names that become sections

void CheckName(CheckedFile& file, std::string_view table, const std::string& item,
               const std::string& section) {
  if (!file.Text.PlanValue(section, "Item1", "")) {
    file.Add("unstorable-name", file.LineOf(table, ItemKey(item)),
             Joined(Printable(NameOfPlace(table, ItemKey(item))), " would need the section ", Shown(section),
                    ", which no file can have: nothing is read from it or stored in it"));
  }
}

void CheckNames(CheckedFile& file, const Configuration& configuration) {
  CurrentRecords current;
  ForEach(deviceTable, configuration, [&](const DeviceTypeRecord& device) {
    current.Device.Name = device.Name;
    CheckName(file, deviceTypeSection, device.ID, PositionSection(current));
  });
  current = {};
  ForEach(cageTable, configuration, [&](const CageTypeRecord& cage) {
    current.Cage.Name = cage.Name;
    CheckName(file, cageTypeSection, cage.ID, AxisSection(current));
  });
  ForEach(tipTable, configuration,
          [&](const TipTypeRecord& tip) { CheckName(file, tipTypeSection, tip.ID, tip.CorrectionSection); });
}

}  // namespace

void CheckItems(CheckedFile& file, const Configuration& configuration) {
  CheckClasses(file, configuration, cageTable, cageTypeSection, moduleClasses);
  CheckClasses(file, configuration, headTable, headTypeSection, headClasses);
  CheckClasses(file, configuration, tipTable, tipTypeSection, tipClasses);
  CheckClasses(file, configuration, nestTable, nestTypeSection, nestClasses);
  CheckLayouts(file, configuration);
  CheckDetection(file, configuration);
  CheckNames(file, configuration);
}

}  // namespace zolvane
