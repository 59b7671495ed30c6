// Gives the identifiers of our type libraries their place in memory: the generated headers define them only
// after initguid.h.
#include "shell/windows/windows_headers.h"

#include <initguid.h>

#include <add_in.h>
