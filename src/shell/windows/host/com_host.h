// The host's objects as the add-in uses them: the interfaces of host/ over the host's COM objects, reached by
// name. Each keeps a reference to its object. A failed call keeps the host's own status.
#pragma once

#include <memory>

#include "host/host_object.h"
#include "host/host_window.h"
#include "win32/com_ptr.h"

namespace zolvane {

// Empty for a null object.
std::shared_ptr<HostObject> WrapHostObject(IDispatch* object);
std::shared_ptr<HostWindow> WrapHostWindow(IDispatch* window);

}  // namespace zolvane
