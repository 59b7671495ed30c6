// What an operation may ask of the page it runs on. The page implements it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/status.h"

namespace zolvane {

enum class ListControl : std::uint8_t { DeviceType, CageType, HeadType, NestType, TipType };

class PagePort {
 public:
  virtual ~PagePort() = default;

  // Enables or disables every control, as far as the current device allows. Its first failure ends it.
  virtual Status EnableControls(bool enabled) = 0;

  // The position (from 0) of the first entry with that text in any case; 0 when there is none.
  virtual int FindListIndex(std::string_view text, ListControl list) const = 0;

  // Selects an entry as the user would: the list's handler runs. Fails beyond the end of the list.
  virtual Status SelectEntry(ListControl list, int index) = 0;

  // Shows the pump module as connected or not.
  virtual Status ShowPumpModule(bool connected) = 0;

  // Shows a message through the logged message dialogue; the chosen button's number.
  virtual std::int16_t ShowMessage(const std::string& message, std::int16_t style,
                                   const std::string& title) = 0;

  // Fills all controls from the configuration file.
  virtual void LoadDefaults() = 0;
};

}  // namespace zolvane
