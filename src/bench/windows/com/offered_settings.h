// The host's settings-file service as a COM class of this process.
#pragma once

#include <functional>
#include <memory>

#include "host/ini_file_service.h"
#include "win32/windows_headers.h"

namespace zolvane {

// While it lives, creating the class by its identifier gives the services that `create` makes; an
// empty one lets the creation fail. COM is in use on the calling thread as long as this lives.
// Throws std::runtime_error.
class OfferedSettings {
 public:
  using Create = std::function<std::shared_ptr<IniFileService>()>;

  explicit OfferedSettings(Create create);
  ~OfferedSettings();
  OfferedSettings(const OfferedSettings&) = delete;
  OfferedSettings& operator=(const OfferedSettings&) = delete;

 private:
  DWORD registration_ = 0;
};

// How many services that were created are still referred to, in the whole process.
long OfferedServicesAlive();

}  // namespace zolvane
