// Who may do what with a file, and what else is known of it, carried over to the file that replaces it.
#pragma once

#include "files/file_handle_posix.h"

namespace zolvane {

// Gives owner, group, permissions, access lists and extended attributes. Fails when one of them cannot be
// kept, with two exceptions. Only a privileged process can give a file to another owner: for others it
// becomes their own. And the group may become theirs, too, where it has no more rights than everybody has.
bool GiveAttributes(const FileHandle& from, const FileHandle& to);

}  // namespace zolvane
