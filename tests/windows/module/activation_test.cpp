// A host whose manifest names the module as an assembly creates the class without any registration.
#include <gtest/gtest.h>

#include <add_in.h>

#include <string>

#include "win32/text.h"
#include "windows/module/manifest_in_force.h"
#include "windows/module/registered_classes.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

constexpr const char* architecture = sizeof(void*) == 8 ? "amd64" : "x86";

std::string HostManifest(const std::string& version) {
  return R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <assemblyIdentity type="win32" name="AHost" version="1.0.0.0" processorArchitecture=")" +
         std::string{architecture} + R"("/>
  <dependency>
    <dependentAssembly>
      <assemblyIdentity type="win32" name="HZOCalibrateDevice" version=")" +
         version + R"(" processorArchitecture=")" + architecture + R"("/>
    </dependentAssembly>
  </dependency>
</assembly>
)";
}

// The host's manifest, in the program folder like the host itself.
std::filesystem::path HostOf(const std::string& version) {
  auto file = ProgramFolder::OfThisRun().Path() / "host.manifest";
  Store(file, HostManifest(version));
  return file;
}

TEST(Activation, AManifestReplacesTheRegistration) {
  ASSERT_EQ(ClassesBelow(addInProgId), RegistryLines{});
  ASSERT_FALSE(CreateRegisteredAddIn());
  {
    const ManifestInForce manifest{HostOf("1.0.0.135")};
    ASSERT_TRUE(manifest);
    const auto addIn = CreateRegisteredAddIn();
    ASSERT_TRUE(addIn);
    UniqueBstr caption;
    EXPECT_EQ(addIn->get_Caption(caption.Put()), S_OK);
    EXPECT_EQ(Utf8FromBstr(caption.Get()), "Zolvane Setup");
  }
  EXPECT_FALSE(CreateRegisteredAddIn());
  EXPECT_EQ(ClassesBelow(addInProgId), RegistryLines{});
}

TEST(Activation, AManifestGivesTheTypeLibrary) {
  const ManifestInForce manifest{HostOf("1.0.0.135")};
  ASSERT_TRUE(manifest);
  ComPtr<ITypeLib> library;
  ASSERT_EQ(LoadRegTypeLib(LIBID_HZOCalibrateDevice, 1, 0, 0, library.Put()), S_OK);
  UniqueBstr name;
  library->GetDocumentation(-1, name.Put(), nullptr, nullptr, nullptr);
  EXPECT_EQ(Utf8FromBstr(name.Get()), "HZOCalibrateDevice");
}

TEST(Activation, AManifestForALaterVersionIsRefused) {
  EXPECT_FALSE(ManifestInForce{HostOf("1.0.0.136")});
}

}  // namespace
}  // namespace zolvane
