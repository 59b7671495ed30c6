// What an operation works with. All of it belongs to the page or its host and outlives the operation.
#pragma once

#include "config/configuration.h"
#include "host/environment.h"
#include "host/host_attachment.h"
#include "operations/page_port.h"

namespace zolvane {

struct OperationContext {
  Environment& Process;
  HostAttachment& Host;
  Configuration& Config;
  PagePort& Page;
};

}  // namespace zolvane
