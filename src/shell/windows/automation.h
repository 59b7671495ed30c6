// What automation.idl stands for on the C++ side.
#pragma once

#include <oaidl.h>
