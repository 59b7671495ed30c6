// Gives the identifiers of our type libraries their place in memory: the generated headers define them only
// after initguid.h.
#include "win32/windows_headers.h"

#include <initguid.h>

#include <add_in.h>
