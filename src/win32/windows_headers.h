// The system's headers, in the one combination in use here. The build defines UNICODE and _WIN32_WINNT.
#pragma once

#include <windows.h>

#include <oleauto.h>
