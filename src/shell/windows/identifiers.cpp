// Defines the identifiers of our type libraries: after initguid.h the generated headers define
// what they otherwise declare.
#include "win32/windows_headers.h"

#include <initguid.h>

#include <add_in.h>
