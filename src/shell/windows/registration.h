// Makes the class Connect and its type library known to the machine, and unknown again.
#pragma once

#include "win32/windows_headers.h"

namespace zolvane {

// After a failure, for want of rights as a rule, the registry is as it was. Nothing of the host's own
// registration is touched.
HRESULT RegisterComponent();

// Leaves nothing but what the same component needs that is registered for programs of the other kind, 32 or
// 64 bits. Succeeds also when nothing was there. Without the rights for all of it, nothing is taken away.
HRESULT UnregisterComponent();

}  // namespace zolvane
