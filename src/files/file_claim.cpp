#include "files/file_claim.h"

#include <system_error>

#include "files/paths.h"
#include "text/joined.h"
#include "text/printable.h"
#include "text/usage_error.h"

namespace zolvane {

std::filesystem::path MarkBeside(const std::string& file) {
  std::error_code failure;
  auto path = std::filesystem::weakly_canonical(PathOf(file), failure);
  if (failure) {
    path = PathOf(AbsolutePath(file));
  }
  return path.parent_path() / PathOf(Joined(".", TextOf(path.filename()), ".in-use"));
}

std::unique_ptr<FileClaim> ClaimFile(const std::string& file) {
  std::string holder;
  auto claim = TryClaim(MarkBeside(file), holder);
  if (!claim) {
    throw UsageError{Joined(Quoted(file), " is in use by another simulated instrument",
                            holder.empty() ? std::string{} : Joined(" (process ", holder, ")"))};
  }
  return claim;
}

bool IsProcessNumber(const std::string& text) {
  constexpr std::size_t longestNumber = 20;
  return text.size() <= longestNumber && text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace zolvane
