// Classes, codes and names by which the items of the lists are found.
#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "config/conversions.h"
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
#include "operations/instrument_keys.h"
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

struct HeadLayout {
  std::string_view Name;
  int Channels = 0;
};

constexpr auto headLayouts = std::to_array<HeadLayout>({
    {channel_layout::oneShort, 1},
    {channel_layout::oneLong, 1},
    {channel_layout::eight, 8},
    {channel_layout::twelve, 12},
});

std::string DigitsOf(std::string_view text) {
  std::string digits;
  std::ranges::copy_if(text, std::back_inserter(digits), [](char one) { return one >= '0' && one <= '9'; });
  return digits;
}

// A text that is none of them, but one of them to a reader: its digits tell one from another, letters may be mistyped.
std::string_view MeantBy(std::string_view text, std::span<const std::string_view> known) {
  std::vector<std::string_view> alike;
  std::ranges::copy_if(known, std::back_inserter(alike),
                       [&](const auto name) { return DigitsOf(name) == DigitsOf(text); });
  return NearestName(text, alike);
}

// Other modules and nests than those that the upload knows may be there; other heads and tips are never sent.
enum class Others : std::uint8_t { MayBe, AreLost };

void CheckClass(CheckedFile& file, std::string_view section, const std::string& item, std::string_view text,
                std::span<const std::string_view> known, Others others) {
  if (std::ranges::find(known, text) != known.end()) {
    return;
  }
  const auto add = [&](std::string_view code, const std::string& why) {
    const auto key = ItemKey(item);
    file.Add(
        code, file.LineOf(section, key),
        Joined(Printable(NameOfPlace(section, key)), ": ", why, ": the upload does not find the item by it"));
  };
  if (const auto meant = MeantBy(text, known); !meant.empty()) {
    add("misspelt-class", Joined(Shown(text), " is nearly ", meant, ", but not to the letter"));
  } else if (text.empty()) {
    add("unknown-class", "its class or layout is empty");
  } else if (others == Others::AreLost) {
    add("unknown-class", Joined(Shown(text), " is none of the classes and layouts of the instrument"));
  }
}

template <class Record>
void CheckClasses(CheckedFile& file, const Configuration& configuration, const RecordTable<Record>& table,
                  std::string_view section, std::span<const std::string_view> classes, Others others) {
  ForEach(table, configuration,
          [&](const Record& record) { CheckClass(file, section, record.ID, record.Code, classes, others); });
}

// Of the heads that the 1/8/12 module carries.
void CheckLayouts(CheckedFile& file, const Configuration& configuration) {
  std::array<std::string_view, headLayouts.size()> names{};
  std::ranges::transform(headLayouts, names.begin(), &HeadLayout::Name);
  ForEach(headTable, configuration, [&](const HeadTypeRecord& head) {
    if (head.Code == code::serialDilute) {
      CheckClass(file, headTypeSection, head.ID, head.ChannelCode, names, Others::AreLost);
    }
  });
}

// ---- Keys that are made of channels and volume

// Of the heads that the 1/8/12 module carries.
void CheckSizes(CheckedFile& file, const Configuration& configuration) {
  ForEach(headTable, configuration, [&file](const HeadTypeRecord& head) {
    if (head.Code != code::serialDilute) {
      return;
    }
    const auto item = ItemKey(head.ID);
    const auto add = [&](const std::string& why) {
      file.Add("unknown-size", file.LineOf(headTypeSection, item),
               Joined(Printable(NameOfPlace(headTypeSection, item)), ": ", why));
    };
    const auto keys = TipEjectKeysOf(head);
    const auto* const layout = std::ranges::find(headLayouts, head.ChannelCode, &HeadLayout::Name);
    if (!keys) {
      add(Joined("no key is for tips of ", GeneralText(head.TipVolume),
                 " ul: its tip ejection and origin of aspiration are not sent"));
    } else if (layout != headLayouts.end() && layout->Channels != head.Channels) {
      add(Joined("a head of layout ", layout->Name, " does not have ", std::to_string(head.Channels),
                 " channels: its tip ejection is sent under ", keys->TipEject));
    }
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
  std::map<std::string, std::string> named;
  ForEach(headTable, configuration, [&](const HeadTypeRecord& head) {
    const auto [first, isNew] = named.try_emplace(UpperCase(head.Name), ItemKey(head.ID));
    heads.Look(head.Tag, head.Tag, head.ID,
               isNew ? "" : Joined("the page takes ", first->second, ", which has its name"));
  });
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
  auto current = configuration.Current;
  ForEach(deviceTable, configuration, [&](const DeviceTypeRecord& device) {
    current.Device.Name = device.Name;
    CheckName(file, deviceTypeSection, device.ID, PositionSection(current));
  });
  current = configuration.Current;
  ForEach(cageTable, configuration, [&](const CageTypeRecord& cage) {
    current.Cage.Name = cage.Name;
    CheckName(file, cageTypeSection, cage.ID, AxisSection(current));
  });
  ForEach(tipTable, configuration,
          [&](const TipTypeRecord& tip) { CheckName(file, tipTypeSection, tip.ID, tip.CorrectionSection); });
}

}  // namespace

void CheckItems(CheckedFile& file, const Configuration& configuration) {
  CheckClasses(file, configuration, cageTable, cageTypeSection, moduleClasses, Others::MayBe);
  CheckClasses(file, configuration, headTable, headTypeSection, headClasses, Others::AreLost);
  CheckClasses(file, configuration, tipTable, tipTypeSection, tipClasses, Others::AreLost);
  CheckClasses(file, configuration, nestTable, nestTypeSection, nestClasses, Others::MayBe);
  CheckLayouts(file, configuration);
  CheckSizes(file, configuration);
  CheckDetection(file, configuration);
  CheckNames(file, configuration);
}

}  // namespace zolvane
