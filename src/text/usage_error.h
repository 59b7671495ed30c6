// Says, in a sentence for the user, what is wrong with the command line or with a file named on it, where,
// and what to do. Nothing has been changed when it is thrown.
#pragma once

#include <stdexcept>

namespace zolvane {

class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The program's exit statuses. The highest of several counts.
namespace exit_status {
inline constexpr int done = 0;
inline constexpr int notDone = 1;   // it ran, but a command failed, or the user cancelled or was refused
inline constexpr int unusable = 2;  // the command line, the folder or a file named on it
}  // namespace exit_status

}  // namespace zolvane
