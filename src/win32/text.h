// The add-in's texts are UTF-8, the system's UTF-16. What is no valid text on one side
// becomes U+FFFD on the other.
#pragma once

#include <string>
#include <string_view>

#include "win32/unique_handle.h"

namespace zolvane {

std::wstring Wide(std::string_view text);
std::string Utf8(std::wstring_view text);

// A null BSTR is the empty text. Embedded zeros are kept.
std::string Utf8FromBstr(BSTR text);

// Throws std::bad_alloc, as a string does.
UniqueBstr Bstr(std::string_view text);
UniqueBstr Bstr(std::wstring_view text);

}  // namespace zolvane
