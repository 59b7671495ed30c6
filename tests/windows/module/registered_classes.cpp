#include "windows/module/registered_classes.h"

#include <sddl.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "win32/text.h"

namespace zolvane {
namespace {

constexpr const wchar_t* classesKey = L"Software\\Classes";
constexpr DWORD longestName = 0x4000;

std::wstring Full(const std::wstring& key) {
  return std::wstring{classesKey} + L"\\" + key;
}

std::wstring_view UpToItsEnd(std::wstring_view text) {
  return text.substr(0, text.find(L'\0'));
}

std::string Shown(DWORD type, const std::vector<BYTE>& data) {
  std::string shown = std::to_string(type) + ":";
  if (type == REG_SZ && data.size() % sizeof(wchar_t) == 0) {
    const auto* const text = reinterpret_cast<const wchar_t*>(data.data());
    return shown + Utf8(UpToItsEnd({text, data.size() / sizeof(wchar_t)}));
  }
  for (const auto byte : data) {
    shown += " " + std::to_string(byte);
  }
  return shown;
}

void AddValues(HKEY key, const std::string& path, RegistryLines& lines) {
  std::wstring name(longestName, L'\0');
  for (DWORD index = 0;; ++index) {
    DWORD length = longestName;
    DWORD type = 0;
    DWORD size = 0;
    if (RegEnumValueW(key, index, name.data(), &length, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) {
      return;
    }
    std::vector<BYTE> data(size);
    RegQueryValueExW(key, name.c_str(), nullptr, nullptr, data.data(), &size);
    lines.insert(path + " [" + Utf8(UpToItsEnd(name)) + "] " + Shown(type, data));
  }
}

// NOLINTNEXTLINE(misc-no-recursion): keys hold keys
void AddKeys(HKEY key, const std::string& path, RegistryLines& lines) {
  lines.insert(path);
  AddValues(key, path, lines);
  std::array<wchar_t, 256> name{};
  for (DWORD index = 0;; ++index) {
    auto length = static_cast<DWORD>(name.size());
    if (RegEnumKeyExW(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      return;
    }
    const std::string inner = (path.empty() ? "" : path + "\\") + Utf8(name.data());
    UniqueRegistryKey opened;
    // A link is shown as such and not followed: what it leads to is seen elsewhere.
    if (RegOpenKeyExW(key, name.data(), REG_OPTION_OPEN_LINK, KEY_READ, opened.Put()) == ERROR_SUCCESS) {
      AddKeys(opened.Get(), inner, lines);
    } else {
      lines.insert(inner + " (closed)");
    }
  }
}

RegistryLines Below(HKEY root, const std::wstring& key, const std::string& path) {
  RegistryLines lines;
  UniqueRegistryKey opened;
  const auto result = RegOpenKeyExW(root, key.c_str(), 0, KEY_READ, opened.Put());
  if (result == ERROR_SUCCESS) {
    AddKeys(opened.Get(), path, lines);
  } else if (result != ERROR_FILE_NOT_FOUND) {
    lines.insert(path + " (closed)");
  }
  return lines;
}

}  // namespace

RegistryLines ClassesBelow(const std::wstring& key) {
  return Below(HKEY_LOCAL_MACHINE, Full(key), Utf8(key));
}

RegistryLines AllClasses() {
  auto lines = Below(HKEY_LOCAL_MACHINE, classesKey, "");
  lines.merge(Below(HKEY_CURRENT_USER, classesKey, "(user)"));
  return lines;
}

RegistryLines Without(const RegistryLines& lines, const RegistryLines& others) {
  RegistryLines left;
  std::ranges::set_difference(lines, others, std::inserter(left, left.end()));
  return left;
}

ForeignKey::ForeignKey(std::wstring key, Lifetime lifetime, REGSAM view) : key_{std::move(key)}, view_{view} {
  const DWORD options = lifetime == Lifetime::Volatile ? REG_OPTION_VOLATILE : REG_OPTION_NON_VOLATILE;
  if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, Full(key_).c_str(), 0, nullptr, options, KEY_ALL_ACCESS | view,
                      nullptr, opened_.Put(), nullptr) != ERROR_SUCCESS) {
    throw std::runtime_error{"cannot make " + Utf8(key_)};
  }
}

ForeignKey::~ForeignKey() {
  Allow(everybodyMayAll);
  opened_.Reset();
  DeleteClasses(key_, view_);
}

void ForeignKey::SetText(const wchar_t* name, const std::wstring& text, DWORD type) {
  RegSetValueExW(opened_.Get(), name, 0, type, reinterpret_cast<const BYTE*>(text.c_str()),
                 static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

void ForeignKey::Allow(const wchar_t* descriptor) {
  UniqueHandle<PSECURITY_DESCRIPTOR, LocalFree> parsed;
  ConvertStringSecurityDescriptorToSecurityDescriptorW(descriptor, SDDL_REVISION_1, parsed.Put(), nullptr);
  RegSetKeySecurity(opened_.Get(), DACL_SECURITY_INFORMATION, parsed.Get());
}

void DeleteClasses(const std::wstring& key, REGSAM view) {
  UniqueRegistryKey opened;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, classesKey, 0, KEY_ALL_ACCESS | view, opened.Put()) ==
      ERROR_SUCCESS) {
    RegDeleteTreeW(opened.Get(), key.c_str());
  }
}

}  // namespace zolvane
