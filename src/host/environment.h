// What the add-in needs beside the host's objects: the process it runs in, and the system's dialogues.
#pragma once

#include "host/dialogues.h"
#include "host/host_process.h"

namespace zolvane {

class Environment : public HostProcess, public SystemDialogues {};

}  // namespace zolvane
