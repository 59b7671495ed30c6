// The module as a file: what hosts and installers read in it without running it.
#include <gtest/gtest.h>

#include <hestrion_cmds.h>
#include <oleauto.h>

#include <array>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "win32/text.h"
#include "windows/module/manifest_in_force.h"
#include "windows/support/child_process.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

HMODULE LoadedModule() {
  return Module().Module();
}

template <class Entry>
const Entry* At(std::size_t offset) {
  return reinterpret_cast<const Entry*>(reinterpret_cast<const char*>(LoadedModule()) + offset);
}

const IMAGE_NT_HEADERS& Headers() {
  return *At<IMAGE_NT_HEADERS>(static_cast<std::size_t>(At<IMAGE_DOS_HEADER>(0)->e_lfanew));
}

const IMAGE_DATA_DIRECTORY& Directory(int number) {
  return Headers().OptionalHeader.DataDirectory[number];
}

std::string Lower(std::string text) {
  for (auto& character : text) {
    character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return text;
}

TEST(ModuleFile, ExportsTheFourEntryPointsAndNothingElse) {
  const auto* const exports =
      At<IMAGE_EXPORT_DIRECTORY>(Directory(IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress);
  std::set<std::string> names;
  for (DWORD index = 0; index < exports->NumberOfNames; ++index) {
    names.insert(At<char>(At<DWORD>(exports->AddressOfNames)[index]));
  }
  EXPECT_EQ(names, (std::set<std::string>{"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer",
                                          "DllUnregisterServer"}));
  EXPECT_EQ(exports->NumberOfFunctions, 4U);
}

TEST(ModuleFile, NeedsLibrariesOfTheSystemOnly) {
  const std::set<std::string> ofTheSystem{"advapi32.dll", "comctl32.dll", "comdlg32.dll",
                                          "gdi32.dll",    "kernel32.dll", "msvcrt.dll",
                                          "ole32.dll",    "oleaut32.dll", "user32.dll"};
  const auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(Directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress);
  int count = 0;
  for (; library->Name != 0; ++library, ++count) {
    EXPECT_TRUE(ofTheSystem.contains(Lower(At<char>(library->Name)))) << At<char>(library->Name);
  }
  EXPECT_GT(count, 4);
}

TEST(ModuleFile, IsSmall) {
  EXPECT_LT(std::filesystem::file_size(ProgramFolder::OfThisRun().Path() / addInModuleName), 1'000'000U);
}

TEST(ModuleFile, MayLieAnywhereInMemoryAndRunsNoData) {
  const WORD flags = Headers().OptionalHeader.DllCharacteristics;
  EXPECT_NE(flags & IMAGE_DLLCHARACTERISTICS_NX_COMPAT, 0);
  EXPECT_NE(flags & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE, 0);
  constexpr WORD highAddresses = 0x0020;
  EXPECT_EQ((flags & highAddresses) != 0, sizeof(void*) == 8);
  EXPECT_EQ(Headers().FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0);
  EXPECT_GT(Directory(IMAGE_DIRECTORY_ENTRY_BASERELOC).Size, 0U);
}

TEST(ModuleFile, HoldsTheIdentifierOfTheClassesDefaultInterface) {
  const HRSRC found = FindResourceW(LoadedModule(), L"_IID_CONNECT", RT_RCDATA);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(SizeofResource(LoadedModule(), found), 20U);
  const std::array<unsigned char, 20> expected{16,   0,    0,    0,    0xFD, 0x6B, 0xD9, 0xA9, 0xCC, 0x3C,
                                               0xDC, 0x4C, 0xBC, 0x17, 0xF0, 0x94, 0xF9, 0x0A, 0xE4, 0x02};
  const void* const bytes = LockResource(LoadResource(LoadedModule(), found));
  EXPECT_EQ(std::memcmp(bytes, expected.data(), expected.size()), 0);
}

BOOL CALLBACK NoteLanguage(HMODULE, const wchar_t*, const wchar_t*, WORD language, LONG_PTR seen) {
  *reinterpret_cast<WORD*>(seen) = language;
  return TRUE;
}

TEST(ModuleFile, HoldsTheCaptionAsString1102InAmericanEnglish) {
  std::array<wchar_t, 64> text{};
  LoadStringW(LoadedModule(), 1102, text.data(), static_cast<int>(text.size()));
  EXPECT_EQ(Utf8(text.data()), "Zolvane Setup");
  const int block = 1102 / 16 + 1;
  WORD language = 0;
  EnumResourceLanguagesW(LoadedModule(), reinterpret_cast<LPCWSTR>(RT_STRING), MAKEINTRESOURCEW(block),
                         reinterpret_cast<ENUMRESLANGPROCW>(reinterpret_cast<void*>(NoteLanguage)),
                         reinterpret_cast<LONG_PTR>(&language));
  EXPECT_EQ(language, 1033);
}

BOOL CALLBACK NoteBlock(HMODULE, const wchar_t*, wchar_t* name, LONG_PTR blocks) {
  reinterpret_cast<std::vector<std::size_t>*>(blocks)->push_back(reinterpret_cast<ULONG_PTR>(name));
  return TRUE;
}

TEST(ModuleFile, HoldsNoOtherString) {
  constexpr std::size_t stringsOfABlock = 16;
  std::vector<std::size_t> blocks;
  EnumResourceNamesW(LoadedModule(), reinterpret_cast<LPCWSTR>(RT_STRING), NoteBlock,
                     reinterpret_cast<LONG_PTR>(&blocks));
  std::vector<std::size_t> strings;
  for (const auto block : blocks) {
    const auto* text = static_cast<const WORD*>(
        LockResource(LoadResource(LoadedModule(), FindResourceW(LoadedModule(), MAKEINTRESOURCEW(block),
                                                                reinterpret_cast<LPCWSTR>(RT_STRING)))));
    for (std::size_t index = 0; index < stringsOfABlock; ++index, text += *text + 1) {
      if (*text != 0) {
        strings.push_back((block - 1) * stringsOfABlock + index);
      }
    }
  }
  EXPECT_EQ(strings, std::vector<std::size_t>{1102});
}

std::string VersionText(const std::vector<char>& block, const std::wstring& name) {
  void* value = nullptr;
  UINT length = 0;
  const auto place = L"\\StringFileInfo\\040904B0\\" + name;
  return VerQueryValueW(block.data(), place.c_str(), &value, &length)
             ? Utf8(static_cast<const wchar_t*>(value))
             : std::string{};
}

TEST(ModuleFile, HasItsVersionAsHaveThePrograms) {
  const auto module = ProgramFolder::OfThisRun().Path() / "HZOCalibrateDevice.dll";
  for (const auto& path : {module, HestrionBenchPath(), ZolvaneBenchPath(), ZolvaneSimPath()}) {
    SCOPED_TRACE(path.string());
    std::vector<char> block(GetFileVersionInfoSizeW(path.c_str(), nullptr));
    ASSERT_FALSE(block.empty());
    ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()));
    void* value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\", &value, &length));
    const auto& version = *static_cast<const VS_FIXEDFILEINFO*>(value);
    EXPECT_EQ(version.dwFileVersionMS, 0x00010000U);
    EXPECT_EQ(version.dwFileVersionLS, 135U);
    EXPECT_EQ(version.dwFileType, static_cast<DWORD>(path == module ? VFT_DLL : VFT_APP));
    EXPECT_EQ(VersionText(block, L"FileVersion"), "1.00.0135");
    EXPECT_EQ(VersionText(block, L"ProductVersion"), "1.00.0135");
    EXPECT_EQ(VersionText(block, L"OriginalFilename"), path.filename().string());
    EXPECT_FALSE(VersionText(block, L"FileDescription").empty());
  }
}

// ---- The type library

std::string NameOf(ITypeInfo& info) {
  UniqueBstr name;
  info.GetDocumentation(MEMBERID_NIL, name.Put(), nullptr, nullptr, nullptr);
  return Utf8FromBstr(name.Get());
}

ComPtr<ITypeLib> TypeLibrary() {
  ComPtr<ITypeLib> library;
  const auto path = ProgramFolder::OfThisRun().Path() / "HZOCalibrateDevice.dll";
  LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.Put());
  return library;
}

ComPtr<ITypeInfo> TypeNamed(const std::string& name) {
  const auto library = TypeLibrary();
  for (UINT index = 0; library && index < library->GetTypeInfoCount(); ++index) {
    ComPtr<ITypeInfo> info;
    library->GetTypeInfo(index, info.Put());
    if (NameOf(*info.Get()) == name) {
      return info;
    }
  }
  return {};
}

TEST(ModuleFile, HoldsTheTypeLibraryUnderItsName) {
  const auto library = TypeLibrary();
  ASSERT_TRUE(library);
  UniqueBstr name;
  library->GetDocumentation(-1, name.Put(), nullptr, nullptr, nullptr);
  EXPECT_EQ(Utf8FromBstr(name.Get()), "HZOCalibrateDevice");
}

TEST(ModuleFile, DescribesOneClassWithItsDefaultInterface) {
  const auto connect = TypeNamed("Connect");
  ASSERT_TRUE(connect);
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(connect->GetTypeAttr(&attributes), S_OK);
  EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
  EXPECT_EQ(attributes->cImplTypes, 1);
  EXPECT_NE(attributes->wTypeFlags & TYPEFLAG_FCANCREATE, 0);
  connect->ReleaseTypeAttr(attributes);
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> implemented;
  ASSERT_EQ(connect->GetRefTypeOfImplType(0, &reference), S_OK);
  ASSERT_EQ(connect->GetRefTypeInfo(reference, implemented.Put()), S_OK);
  EXPECT_EQ(NameOf(*implemented.Get()), "_Connect");
  ASSERT_EQ(implemented->GetTypeAttr(&attributes), S_OK);
  const GUID defaultInterface{0xA9D96BFD, 0x3CCC, 0x4CDC, {0xBC, 0x17, 0xF0, 0x94, 0xF9, 0x0A, 0xE4, 0x02}};
  EXPECT_TRUE(attributes->guid == defaultInterface);
  implemented->ReleaseTypeAttr(attributes);
}

TEST(ModuleFile, KeepsNoCopyOfTheHostsInterfaces) {
  EXPECT_FALSE(TypeNamed("IAddIn"));
  EXPECT_FALSE(TypeNamed("IAddInForm"));
}

// The host's library as its installation makes it known, but on this thread only and while this lives.
class HostLibraryKnown {
 public:
  HostLibraryKnown() {
    const auto folder = ProgramFolder::OfThisRun().Path();
    std::filesystem::copy_file(ZOLVANE_HOST_LIBRARY_PATH, folder / "hestrion_cmds.tlb",
                               std::filesystem::copy_options::overwrite_existing);
    Store(folder / "library.manifest", R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <assemblyIdentity type="win32" name="HostLibrary" version="1.0.0.0"/>
  <file name="hestrion_cmds.tlb">
    <typelib tlbid="{55DE048E-2542-42EE-903C-4BA98EAB7EFD}" version="1.0" helpdir=""/>
  </file>
</assembly>
)");
    manifest_.emplace(folder / "library.manifest");
  }

 private:
  std::optional<ManifestInForce> manifest_;
};

class TypeAttributes {
 public:
  explicit TypeAttributes(ITypeInfo& info) : info_{info} { info_.GetTypeAttr(&attributes_); }
  ~TypeAttributes() { info_.ReleaseTypeAttr(attributes_); }
  TypeAttributes(const TypeAttributes&) = delete;
  TypeAttributes& operator=(const TypeAttributes&) = delete;

  const TYPEATTR* operator->() const { return attributes_; }

 private:
  ITypeInfo& info_;
  TYPEATTR* attributes_ = nullptr;
};

// "Library!Type" of a reference to another type.
std::string Referred(ITypeInfo& from, HREFTYPE reference) {
  ComPtr<ITypeInfo> type;
  ComPtr<ITypeLib> library;
  UINT index = 0;
  if (FAILED(from.GetRefTypeInfo(reference, type.Put())) ||
      FAILED(type->GetContainingTypeLib(library.Put(), &index))) {
    return "not found";
  }
  UniqueBstr name;
  library->GetDocumentation(-1, name.Put(), nullptr, nullptr, nullptr);
  return Utf8FromBstr(name.Get()) + "!" + NameOf(*type.Get());
}

TEST(ModuleFile, RefersToTheHostsLibraryForTheHostsInterface) {
  const HostLibraryKnown known;
  const auto hostAddIn = TypeNamed("HostAddIn");
  ASSERT_TRUE(hostAddIn);
  const TypeAttributes attributes{*hostAddIn.Get()};
  ASSERT_EQ(attributes->typekind, TKIND_ALIAS);
  ASSERT_EQ(attributes->tdescAlias.vt, VT_PTR);
  ASSERT_EQ(attributes->tdescAlias.lptdesc->vt, VT_USERDEFINED);
  EXPECT_EQ(Referred(*hostAddIn.Get(), attributes->tdescAlias.lptdesc->hreftype), "HestrionCmds!IAddIn");
}

TEST(ModuleFile, RefersToTheStandardLibraryForItsBase) {
  const auto dispatch = TypeNamed("_Connect");
  ASSERT_TRUE(dispatch);
  HREFTYPE reference = 0;
  ASSERT_EQ(dispatch->GetRefTypeOfImplType(0, &reference), S_OK);
  EXPECT_EQ(Referred(*dispatch.Get(), reference), "stdole!IDispatch");
}

}  // namespace
}  // namespace zolvane
