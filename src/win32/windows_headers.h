// The system's headers, in the one combination that the component uses. UNICODE and the oldest Windows meant
// are set by the build.
#pragma once

#include <windows.h>

#include <oleauto.h>
