// Stands for automation.idl on the C++ side.
#pragma once

#include <oaidl.h>
