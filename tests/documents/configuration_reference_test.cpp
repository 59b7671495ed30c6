#include "documents/configuration_reference.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/golden.h"

namespace zolvane {
namespace {

// With ZOLVANE_REWRITE_GOLDEN set the document is written anew, to be reviewed like any other change.
TEST(ConfigurationReference, SaysWhatTheTablesAndOperationsDo) {
  const auto file = std::filesystem::path{ZOLVANE_SOURCE_PATH} / "docs" / "zolvane-ini.md";
  const auto reference = ConfigurationReference();
  if (std::getenv("ZOLVANE_REWRITE_GOLDEN") != nullptr) {
    std::ofstream{file, std::ios::binary} << reference;
  }
  EXPECT_EQ(FileContent(file), reference);
}

}  // namespace
}  // namespace zolvane
