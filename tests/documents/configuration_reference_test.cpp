#include "documents/configuration_reference.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/golden.h"

namespace zolvane {
namespace {

TEST(ConfigurationReference, SaysWhatTheTablesAndOperationsDo) {
  ExpectKept(std::filesystem::path{ZOLVANE_SOURCE_PATH} / "docs" / "zolvane-ini.md",
             ConfigurationReference());
}

}  // namespace
}  // namespace zolvane
