// JSON in the one form that RFC 8785 leaves: equal values are equal bytes.
#pragma once

#include <string>

#include "text/json_members.h"

namespace zolvane {

// Without blanks, members in the order of the UTF-16 units of their names. Bytes that are not UTF-8 become
// the replacement character. For values whose numbers are whole and at most 2^53; others do not stand in a
// history.
std::string CanonicalJson(const Json& value);

}  // namespace zolvane
