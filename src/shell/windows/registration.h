// Registers the class Connect and its type library with the machine, and takes that back.
#pragma once

#include "win32/windows_headers.h"

namespace zolvane {

// After a failure (usually missing rights) the registry is as it was. Nothing of the host's
// own registration is touched.
HRESULT RegisterComponent();

// Leaves nothing behind, except what the same component needs if it is also registered for
// programs of the other kind, 32 or 64 bits. Succeeds even if nothing was there. Removes nothing
// without the rights for all of it.
HRESULT UnregisterComponent();

}  // namespace zolvane
