// Makes Connect objects for the host.
#pragma once

#include "win32/com_ptr.h"

namespace zolvane {

// A factory of the class Connect, with one reference for the caller.
ComPtr<IClassFactory> MakeClassFactory();

}  // namespace zolvane
