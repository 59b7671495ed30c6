#include "bench/windows/findings.h"

#include <array>

#include "config/tables/devices.h"
#include "config/tables/heads.h"
#include "config/tables/modules.h"
#include "operations/instrument_command.h"
#include "page/page_controls.h"
#include "text/joined.h"
#include "text/printable.h"

namespace zolvane {
namespace {

template <const auto& table>
std::string InstalledName(const Configuration& configuration, const std::string& file) {
  return LoadInstalled(table, configuration, file).Name;
}

struct QuestionRow {
  std::string_view Command;
  std::string_view Label;
  std::string (*StoredAs)(const Configuration& configuration, const std::string& file);
};

// Not what the page's lists show: a query leaves the list of devices on the entry that it was on.
constexpr std::array<QuestionRow, 3> questionRows{{
    {"STATUS_STAGE", RowOf(ListControl::DeviceType).Label, InstalledName<deviceTable>},
    {"STATUS_MECH", RowOf(ListControl::CageType).Label, InstalledName<cageTable>},
    {"RFID READ_PERSISTENT", RowOf(ListControl::HeadType).Label, InstalledName<headTable>},
}};
constexpr std::string_view pumpCommand = "STATUS PUMPS";

// An answer that the configuration does not know may be stored as something else all the same.
std::string StoredText(const std::string& name) {
  return name.empty() ? ", not in Zolvane.ini" : Joined(", stored as ", Quoted(name));
}

}  // namespace

void Findings::Hear(std::string_view command, std::string_view reply) {
  replies_[std::string{command}] = StrippedReply(reply);
}

std::string Findings::Text(const Configuration& configuration, const std::string& file,
                           std::string_view pumpText) const {
  std::string text;
  const auto add = [&](std::string_view label, const std::string& reply, const std::string& outcome) {
    text += Joined(text.empty() ? "Found: " : "; ", label, " ", Quoted(reply), outcome);
  };
  for (const auto& row : questionRows) {
    if (const auto found = replies_.find(row.Command); found != replies_.end()) {
      add(row.Label, found->second, StoredText(row.StoredAs(configuration, file)));
    }
  }
  if (const auto found = replies_.find(pumpCommand); found != replies_.end()) {
    add(pumpLabel.Caption, found->second, Joined(", shown as ", Quoted(pumpText)));
  }
  return text;
}

}  // namespace zolvane
