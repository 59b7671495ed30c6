// Any bytes as a text, for JSON, which holds texts alone.
#pragma once

#include <string>
#include <string_view>

namespace zolvane {

// UTF-8 stays as it is. A byte that is none stands there as "\x9b", and a backslash that could be mistaken for the
// beginning of such a number as "\x5c".
std::string TextOfBytes(std::string_view bytes);

// The bytes that the text stands for.
std::string BytesOfText(std::string_view text);

}  // namespace zolvane
