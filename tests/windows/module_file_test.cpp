// The module as a file: what hosts and installers read in it without running it.
#include <gtest/gtest.h>

#include <hestrion_cmds.h>
#include <oleauto.h>

#include <array>
#include <cctype>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "program_folder.h"
#include "shell/windows/text.h"

namespace zolvane {
namespace {

HMODULE Module() {
  return ProgramFolder::OfThisRun().Module().Module();
}

template <class Entry>
const Entry* At(std::size_t offset) {
  return reinterpret_cast<const Entry*>(reinterpret_cast<const char*>(Module()) + offset);
}

const IMAGE_DATA_DIRECTORY& Directory(int number) {
  const auto* const headers =
      At<IMAGE_NT_HEADERS>(static_cast<std::size_t>(At<IMAGE_DOS_HEADER>(0)->e_lfanew));
  return headers->OptionalHeader.DataDirectory[number];
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

TEST(ModuleFile, HoldsTheIdentifierOfTheClassesDefaultInterface) {
  const HRSRC found = FindResourceW(Module(), L"_IID_CONNECT", RT_RCDATA);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(SizeofResource(Module(), found), 20U);
  const std::array<unsigned char, 20> expected{16,   0,    0,    0,    0xFD, 0x6B, 0xD9, 0xA9, 0xCC, 0x3C,
                                               0xDC, 0x4C, 0xBC, 0x17, 0xF0, 0x94, 0xF9, 0x0A, 0xE4, 0x02};
  const void* const bytes = LockResource(LoadResource(Module(), found));
  EXPECT_EQ(std::memcmp(bytes, expected.data(), expected.size()), 0);
}

WORD languageSeen = 0;

BOOL CALLBACK NoteLanguage(HMODULE, const wchar_t*, const wchar_t*, WORD language, LONG_PTR) {
  languageSeen = language;
  return TRUE;
}

TEST(ModuleFile, HoldsTheCaptionAsString1102InAmericanEnglish) {
  std::array<wchar_t, 64> text{};
  LoadStringW(Module(), 1102, text.data(), static_cast<int>(text.size()));
  EXPECT_EQ(Utf8(text.data()), "Zolvane Setup");
  const int block = 1102 / 16 + 1;
  EnumResourceLanguagesW(Module(), reinterpret_cast<LPCWSTR>(RT_STRING), MAKEINTRESOURCEW(block),
                         reinterpret_cast<ENUMRESLANGPROCW>(reinterpret_cast<void*>(NoteLanguage)), 0);
  EXPECT_EQ(languageSeen, 1033);
}

TEST(ModuleFile, HasItsVersion) {
  const auto path = ProgramFolder::OfThisRun().Path() / "HZOCalibrateDevice.dll";
  std::vector<char> block(GetFileVersionInfoSizeW(path.c_str(), nullptr));
  ASSERT_FALSE(block.empty());
  ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()));
  void* value = nullptr;
  UINT length = 0;
  ASSERT_TRUE(VerQueryValueW(block.data(), L"\\", &value, &length));
  const auto& version = *static_cast<const VS_FIXEDFILEINFO*>(value);
  EXPECT_EQ(version.dwFileVersionMS, 0x00010000U);
  EXPECT_EQ(version.dwFileVersionLS, 135U);
  ASSERT_TRUE(VerQueryValueW(block.data(), L"\\StringFileInfo\\040904B0\\FileVersion", &value, &length));
  EXPECT_EQ(Utf8(static_cast<const wchar_t*>(value)), "1.00.0135");
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

}  // namespace
}  // namespace zolvane
