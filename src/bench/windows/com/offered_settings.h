// The host's settings-file service as a COM class of this process.
#pragma once

#include <functional>
#include <memory>

#include "host/ini_file_service.h"
#include "win32/windows_headers.h"

namespace zolvane {

// As long as this lives, creating the class by its identifier gives a service made by `create`; if
// that is null, the creation fails. COM has to be initialized on the calling thread meanwhile.
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

// How many of these services are still in use, in the whole process.
long OfferedServicesAlive();

}  // namespace zolvane
