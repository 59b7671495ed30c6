// "Did you mean" for a word that names nothing.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zolvane {

// The known name that the user probably meant: the one with the fewest typing slips (a letter left out, added
// or changed, or two swapped), or one that starts with the word. Empty if none is near. Ignores case.
std::string_view NearestName(std::string_view typed, std::span<const std::string_view> known);

// "; did you mean \"upload\"?", or empty if no name is near.
std::string DidYouMean(std::string_view typed, std::span<const std::string_view> known);

}  // namespace zolvane
