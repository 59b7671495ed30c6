// What an operation works with. All of it belongs to the page or its host and outlives the operation.
#pragma once

#include "config/configuration.h"
#include "host/dialogues.h"
#include "host/host_attachment.h"
#include "host/host_process.h"
#include "operations/page_port.h"

namespace zolvane {

struct OperationContext {
  HostProcess& Process;
  SystemDialogues& Dialogues;
  HostAttachment& Host;
  Configuration& Config;
  PagePort& Page;
};

}  // namespace zolvane
