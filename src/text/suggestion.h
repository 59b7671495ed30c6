// "Did you mean" for words of the user that name nothing.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zolvane {

// The known name that was probably meant: the one that takes the fewest slips of the hand (a letter left out, added,
// changed, or two exchanged), or that the word is the beginning of. Empty if none is near. Case does not count.
std::string_view NearestName(std::string_view typed, std::span<const std::string_view> known);

// "; did you mean \"upload\"?", or empty if no name is near.
std::string DidYouMean(std::string_view typed, std::span<const std::string_view> known);

}  // namespace zolvane
