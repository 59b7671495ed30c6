// What registering writes into the registry, what is left of it afterwards, and what a host then finds.
#include <gtest/gtest.h>

#include <add_in.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "win32/text.h"
#include "windows/module/registered_classes.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

using Lifetime = ForeignKey::Lifetime;

constexpr const wchar_t* classKey = L"CLSID\\{B1163F1A-61A8-46FD-AEB2-5E59BA3C0456}";
constexpr const wchar_t* programKey = L"HZOCalibrateDevice.Connect";
constexpr const wchar_t* libraryKey = L"TypeLib\\{782D320F-B06C-4128-95D1-93B73EAA6BBB}";
constexpr const wchar_t* interfaceKey = L"Interface\\{A9D96BFD-3CCC-4CDC-BC17-F094F90AE402}";
constexpr std::array<const wchar_t*, 4> ownKeys{classKey, programKey, libraryKey, interfaceKey};

constexpr bool isFor64Bits = sizeof(void*) == 8;
constexpr HRESULT childMustBeVolatile = __HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE);

std::wstring ModulePath() {
  return (ProgramFolder::OfThisRun().Path() / addInModuleName).wstring();
}

RegistryLines RegisteredLines() {
  const std::string path = Utf8(ModulePath());
  const std::string classes = "CLSID\\{B1163F1A-61A8-46FD-AEB2-5E59BA3C0456}";
  const std::string library = "TypeLib\\{782D320F-B06C-4128-95D1-93B73EAA6BBB}";
  const std::string kind = isFor64Bits ? "win64" : "win32";
  const std::string described = "Interface\\{A9D96BFD-3CCC-4CDC-BC17-F094F90AE402}";
  return {
      classes,
      classes + " [] 1:HZOCalibrateDevice.Connect",
      classes + "\\InprocServer32",
      classes + "\\InprocServer32 [] 1:" + path,
      classes + "\\InprocServer32 [ThreadingModel] 1:Apartment",
      classes + "\\ProgID",
      classes + "\\ProgID [] 1:HZOCalibrateDevice.Connect",
      classes + "\\TypeLib",
      classes + "\\TypeLib [] 1:{782D320F-B06C-4128-95D1-93B73EAA6BBB}",
      classes + "\\Version",
      classes + "\\Version [] 1:1.0",
      "HZOCalibrateDevice.Connect",
      "HZOCalibrateDevice.Connect [] 1:HZOCalibrateDevice.Connect",
      "HZOCalibrateDevice.Connect\\CLSID",
      "HZOCalibrateDevice.Connect\\CLSID [] 1:{B1163F1A-61A8-46FD-AEB2-5E59BA3C0456}",
      library,
      library + "\\1.0",
      library + "\\1.0 [] 1:HZOCalibrateDevice",
      library + "\\1.0\\0",
      library + R"(\1.0\0\)" + kind,
      library + R"(\1.0\0\)" + kind + " [] 1:" + path,
      library + "\\1.0\\FLAGS",
      library + "\\1.0\\FLAGS [] 1:0",
      library + "\\1.0\\HELPDIR",
      library + "\\1.0\\HELPDIR [] 1:" + ProgramFolder::OfThisRun().Text(),
      described,
      described + " [] 1:_Connect",
      described + "\\ProxyStubClsid32",
      described + "\\ProxyStubClsid32 [] 1:{00020424-0000-0000-C000-000000000046}",
      described + "\\TypeLib",
      described + "\\TypeLib [] 1:{782D320F-B06C-4128-95D1-93B73EAA6BBB}",
      described + "\\TypeLib [Version] 1:1.0",
  };
}

RegistryLines OwnClasses() {
  RegistryLines lines;
  for (const auto* key : ownKeys) {
    lines.merge(ClassesBelow(key));
  }
  return lines;
}

HRESULT CallEntryPoint(const char* name) {
  auto* const entry = reinterpret_cast<void*>(GetProcAddress(Module().Module(), name));
  return reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(entry)();
}

HRESULT Register() {
  return CallEntryPoint("DllRegisterServer");
}

HRESULT Unregister() {
  return CallEntryPoint("DllUnregisterServer");
}

// The system's own program for it, and its exit status.
DWORD RunRegsvr32(const std::wstring& options) {
  std::wstring line = L"regsvr32.exe " + options + L" \"" + ModulePath() + L"\"";
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  PROCESS_INFORMATION started{};
  if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &started) ==
      FALSE) {
    return MAXDWORD;
  }
  const UniqueKernelHandle process{started.hProcess};
  const UniqueKernelHandle thread{started.hThread};
  WaitForSingleObject(process.Get(), INFINITE);
  DWORD status = MAXDWORD;
  GetExitCodeProcess(process.Get(), &status);
  return status;
}

// The registry is the machine's: however a test ends, it leaves nothing there.
class Registration : public testing::Test {
 protected:
  Registration() { Clean(); }
  ~Registration() override { Clean(); }

 private:
  static void Clean() {
    for (const auto* key : ownKeys) {
      DeleteClasses(key);
    }
  }
};

// Keys of others that stand right beside those of the component.
class Neighbours {
 public:
  Neighbours() {
    for (const auto* key : keys) {
      foreign_.push_back(std::make_unique<ForeignKey>(key));
      foreign_.back()->SetText(L"", L"{55DE048E-2542-42EE-903C-4BA98EAB7EFD}");
      foreign_.back()->SetText(L"Version", L"0.9");
    }
  }

  // All that is in them and around them.
  static RegistryLines Lines() {
    RegistryLines lines = OwnClasses();
    for (const auto* key : keys) {
      lines.merge(ClassesBelow(key));
    }
    return lines;
  }

 private:
  static constexpr std::array keys{
      L"CLSID\\{B1163F1A-61A8-46FD-AEB2-5E59BA3C0457}",
      L"HZOCalibrateDevice",
      L"HZOCalibrateDevice.Connect.2",
      L"TypeLib\\{782D320F-B06C-4128-95D1-93B73EAA6BBB}\\2.0",
      L"Interface\\{005F65F7-3BCB-4DCB-983E-D7A149EA5357}\\TypeLib",  // the host's
      L"Interface\\{7F119E1D-0AB3-4507-B91A-3987BF8AE0C0}\\TypeLib",
  };

  std::vector<std::unique_ptr<ForeignKey>> foreign_;
};

TEST_F(Registration, ItsOwnKeysAreWrittenAndTakenBackWithoutATrace) {
  const auto before = AllClasses();
  ASSERT_GT(before.size(), 100U);
  ASSERT_EQ(Register(), S_OK);
  EXPECT_EQ(OwnClasses(), RegisteredLines());
  const auto registered = AllClasses();
  EXPECT_EQ(Without(before, registered), RegistryLines{});
  const auto written = Without(registered, before);
  EXPECT_EQ(written.size(), RegisteredLines().size()) << testing::PrintToString(written);
  ASSERT_EQ(Unregister(), S_OK);
  EXPECT_EQ(AllClasses(), before);
}

TEST_F(Registration, RegisteringTwiceIsTheSameAsOnce) {
  ASSERT_EQ(Register(), S_OK);
  ASSERT_EQ(Register(), S_OK);
  EXPECT_EQ(OwnClasses(), RegisteredLines());
  ASSERT_EQ(Unregister(), S_OK);
  EXPECT_EQ(OwnClasses(), RegistryLines{});
  EXPECT_EQ(Unregister(), S_OK);
  EXPECT_EQ(OwnClasses(), RegistryLines{});
}

TEST_F(Registration, NeighbouringKeysStay) {
  const Neighbours neighbours;
  const auto before = Neighbours::Lines();
  ASSERT_EQ(Register(), S_OK);
  EXPECT_EQ(Without(before, Neighbours::Lines()), RegistryLines{});
  ASSERT_EQ(Unregister(), S_OK);
  EXPECT_EQ(Neighbours::Lines(), before);
}

TEST_F(Registration, WhatAnOlderCopyLeftIsReplaced) {
  ForeignKey older{std::wstring{classKey} + L"\\InprocServer32"};
  older.SetText(L"", L"C:\\old\\HZOCalibrateDevice.dll");
  older.SetText(L"ThreadingModel", L"Both");
  ASSERT_EQ(Register(), S_OK);
  EXPECT_EQ(OwnClasses(), RegisteredLines());
}

TEST_F(Registration, TheSystemsProgramRegistersAndUnregisters) {
  EXPECT_EQ(RunRegsvr32(L"/s"), 0U);
  EXPECT_EQ(OwnClasses(), RegisteredLines());
  EXPECT_EQ(RunRegsvr32(L"/s /u"), 0U);
  EXPECT_EQ(OwnClasses(), RegistryLines{});
}

TEST_F(Registration, WhatTheComponentOfTheOtherKindNeedsStays) {
  if (!isFor64Bits) {
    GTEST_SKIP() << "this system has programs of one kind only";
  }
  const ForeignKey otherClass{classKey, Lifetime::Lasts, KEY_WOW64_32KEY};
  ASSERT_EQ(Register(), S_OK);
  ForeignKey otherLibrary{std::wstring{libraryKey} + L"\\1.0\\0\\win32"};
  otherLibrary.SetText(L"", L"C:\\other\\HZOCalibrateDevice.dll");
  ASSERT_EQ(Unregister(), S_OK);
  EXPECT_EQ(ClassesBelow(classKey), RegistryLines{});
  EXPECT_EQ(ClassesBelow(interfaceKey), RegistryLines{});
  EXPECT_EQ(ClassesBelow(programKey).size(), 4U);
  EXPECT_EQ(ClassesBelow(std::wstring{libraryKey} + L"\\1.0\\0\\win64"), RegistryLines{});
  EXPECT_EQ(ClassesBelow(std::wstring{libraryKey} + L"\\1.0\\0\\win32").size(), 2U);
}

// ---- Refused

struct Refusal {
  const char* Where;
  std::vector<std::wstring>
      VolatileKeys;  // of somebody else; the next key to be made in one of them is refused
};

// In the order in which the keys are made.
std::vector<Refusal> Refusals() {
  const std::wstring classes = classKey;
  const std::wstring library = std::wstring{libraryKey} + L"\\1.0";
  const std::wstring described = interfaceKey;
  return {
      {"the second key", {classes}},
      {"in the class", {classes, classes + L"\\InprocServer32", classes + L"\\ProgID"}},
      {"the program's class", {programKey}},
      {"the library", {libraryKey}},
      {"in the library", {libraryKey, library, library + L"\\FLAGS"}},
      {"the library's file",
       {libraryKey, library, library + L"\\FLAGS", library + L"\\HELPDIR", library + L"\\0"}},
      {"in the interface", {described}},
      {"the last key", {described, described + L"\\ProxyStubClsid32"}},
  };
}

TEST_F(Registration, ARefusalAnywhereChangesNothing) {
  const auto untouched = AllClasses();
  for (const auto& [where, keys] : Refusals()) {
    SCOPED_TRACE(where);
    {
      std::vector<std::unique_ptr<ForeignKey>> planted;
      for (const auto& key : keys) {
        planted.push_back(std::make_unique<ForeignKey>(key, Lifetime::Volatile));
        planted.back()->SetText(L"", L"%of somebody else%", REG_EXPAND_SZ);
        planted.back()->SetText(L"Version", L"0.9");
      }
      const auto before = OwnClasses();
      EXPECT_EQ(Register(), childMustBeVolatile);
      EXPECT_EQ(OwnClasses(), before);
    }
    ASSERT_EQ(OwnClasses(), RegistryLines{});
  }
  EXPECT_EQ(AllClasses(), untouched);
}

TEST_F(Registration, ARefusalForMissingRightsSaysSo) {
  struct Rights {
    const char* Missing;
    const wchar_t* Descriptor;
  };
  for (const auto& [missing, descriptor] : {
           Rights{"all", L"D:(D;;KA;;;WD)"},
           Rights{"writing", L"D:(D;;KW;;;WD)(A;;KA;;;WD)"},
           Rights{"reading", L"D:(D;;KR;;;WD)(A;;KA;;;WD)"},
           Rights{"reading a value", L"D:(D;;CC;;;WD)(A;;KA;;;WD)"},
       }) {
    // The first, one of the middle and the last.
    for (const auto& key :
         {std::wstring{classKey}, std::wstring{programKey}, interfaceKey + std::wstring{L"\\TypeLib"}}) {
      SCOPED_TRACE("without the right of " + std::string{missing} + " at " + Utf8(key));
      ForeignKey guarded{key};
      guarded.SetText(L"", L"somebody else's");
      const auto before = OwnClasses();
      guarded.Allow(descriptor);
      EXPECT_EQ(Register(), E_ACCESSDENIED);
      guarded.Allow(everybodyMayAll);
      EXPECT_EQ(OwnClasses(), before);
    }
    DeleteClasses(interfaceKey);
  }
}

TEST_F(Registration, ARefusalFailsInTheSystemsProgramToo) {
  const ForeignKey refusing{interfaceKey, Lifetime::Volatile};
  const auto before = OwnClasses();
  EXPECT_NE(RunRegsvr32(L"/s"), 0U);
  EXPECT_EQ(OwnClasses(), before);
}

TEST_F(Registration, WhatMayNotBeTakenBackStaysWhole) {
  for (const auto& key : {std::wstring{classKey}, std::wstring{programKey},
                          libraryKey + std::wstring{L"\\1.0"}, std::wstring{interfaceKey}}) {
    SCOPED_TRACE(Utf8(key));
    ForeignKey guarded{key};
    ASSERT_EQ(Register(), S_OK);
    guarded.Allow(L"D:(D;;0x10000;;;WD)(A;;KA;;;WD)");  // the right to delete
    EXPECT_EQ(Unregister(), E_ACCESSDENIED);
    EXPECT_EQ(OwnClasses(), RegisteredLines());
  }
}

// ---- What a host finds

TEST_F(Registration, AHostCreatesTheClassByItsName) {
  EXPECT_FALSE(CreateRegisteredAddIn());
  ASSERT_EQ(Register(), S_OK);
  {
    const auto addIn = CreateRegisteredAddIn();
    ASSERT_TRUE(addIn);
    UniqueBstr caption;
    EXPECT_EQ(addIn->get_Caption(caption.Put()), S_OK);
    EXPECT_EQ(Utf8FromBstr(caption.Get()), "Zolvane Setup");
    EXPECT_EQ(Module().CanUnloadNow(), S_FALSE);
  }
  CoFreeUnusedLibraries();
  EXPECT_EQ(Module().CanUnloadNow(), S_OK);
}

TEST_F(Registration, AHostLoadsTheTypeLibrary) {
  ComPtr<ITypeLib> library;
  EXPECT_EQ(LoadRegTypeLib(LIBID_HZOCalibrateDevice, 1, 0, 0, library.Put()), TYPE_E_LIBNOTREGISTERED);
  ASSERT_EQ(Register(), S_OK);
  UniqueBstr path;
  ASSERT_EQ(QueryPathOfRegTypeLib(LIBID_HZOCalibrateDevice, 1, 0, 0, path.Put()), S_OK);
  EXPECT_EQ(Utf8(path.Get()), Utf8(ModulePath()));
  ASSERT_EQ(LoadRegTypeLib(LIBID_HZOCalibrateDevice, 1, 0, 0, library.Put()), S_OK);
  UniqueBstr name;
  library->GetDocumentation(-1, name.Put(), nullptr, nullptr, nullptr);
  EXPECT_EQ(Utf8FromBstr(name.Get()), "HZOCalibrateDevice");
}

}  // namespace
}  // namespace zolvane
