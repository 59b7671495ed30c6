#include "shell/windows/registry_changes.h"

#include <optional>
#include <ranges>
#include <utility>

#include "win32/guarded.h"

namespace zolvane {
namespace {

std::wstring Full(const std::wstring& key) {
  return L"Software\\Classes\\" + key;
}

// A function, because the system's macro evaluates its argument twice.
constexpr HRESULT ResultOf(LSTATUS status) {
  return __HRESULT_FROM_WIN32(status);
}

HRESULT Opened(const std::wstring& key, REGSAM access, UniqueRegistryKey& opened) {
  return ResultOf(RegOpenKeyExW(HKEY_LOCAL_MACHINE, Full(key).c_str(), 0, access, opened.Put()));
}

constexpr HRESULT isMissing = ResultOf(ERROR_FILE_NOT_FOUND);

// The key and those around it that are not there yet, the outermost first.
std::vector<std::wstring> MissingKeys(const std::wstring& key) {
  std::vector<std::wstring> missing;
  for (auto end = key.find(L'\\');; end = key.find(L'\\', end + 1)) {
    if (auto part = key.substr(0, end); !ClassesKeyExists(part)) {
      missing.push_back(std::move(part));
    }
    if (end == std::wstring::npos) {
      return missing;
    }
  }
}

const BYTE* BytesOf(const std::wstring& text) {
  return reinterpret_cast<const BYTE*>(text.c_str());
}

DWORD SizeInBytes(const std::wstring& text) {
  const std::size_t size = (text.size() + 1) * sizeof(wchar_t);
  return static_cast<DWORD>(size);
}

struct Value {
  DWORD Type;
  std::vector<BYTE> Data;
};

// Returns nullopt if there is no such value.
std::optional<Value> Read(HKEY key, const std::wstring& name) {
  Value value{};
  DWORD size = 0;
  if (RegQueryValueExW(key, name.c_str(), nullptr, &value.Type, nullptr, &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  value.Data.resize(size);
  const auto read = RegQueryValueExW(key, name.c_str(), nullptr, &value.Type, value.Data.data(), &size);
  return read == ERROR_SUCCESS ? std::optional{std::move(value)} : std::nullopt;
}

void Restore(const std::wstring& key, const std::wstring& name, const std::optional<Value>& before) {
  UniqueRegistryKey opened;
  if (FAILED(Opened(key, KEY_SET_VALUE, opened))) {
    return;
  }
  if (before) {
    RegSetValueExW(opened.Get(), name.c_str(), 0, before->Type, before->Data.data(),
                   static_cast<DWORD>(before->Data.size()));
  } else {
    RegDeleteValueW(opened.Get(), name.c_str());
  }
}

// The innermost first.
void DeleteKeys(const std::vector<std::wstring>& keys) {
  for (const auto& key : keys | std::views::reverse) {
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, Full(key).c_str());
  }
}

}  // namespace

RegistryChanges::~RegistryChanges() {
  for (const auto& undo : undo_ | std::views::reverse) {
    GuardedOr(0, [&] { return undo(), 0; });
  }
}

HRESULT RegistryChanges::SetText(const std::wstring& key, const std::wstring& name,
                                 const std::wstring& text) {
  // Noted first: the system may create some of the keys on the way and then refuse.
  undo_.emplace_back([made = MissingKeys(key)] { DeleteKeys(made); });
  UniqueRegistryKey opened;
  const auto created = RegCreateKeyExW(HKEY_LOCAL_MACHINE, Full(key).c_str(), 0, nullptr, 0,
                                       KEY_QUERY_VALUE | KEY_SET_VALUE, nullptr, opened.Put(), nullptr);
  if (created != ERROR_SUCCESS) {
    return ResultOf(created);
  }
  undo_.emplace_back([key, name, before = Read(opened.Get(), name)] { Restore(key, name, before); });
  return ResultOf(RegSetValueExW(opened.Get(), name.c_str(), 0, REG_SZ, BytesOf(text), SizeInBytes(text)));
}

bool ClassesKeyExists(const std::wstring& key, REGSAM view) {
  UniqueRegistryKey opened;
  return Opened(key, KEY_READ | view, opened) != isMissing;
}

HRESULT MayDeleteClassesKey(const std::wstring& key) {
  UniqueRegistryKey opened;
  const HRESULT result = Opened(key, DELETE | KEY_READ | KEY_WRITE, opened);
  return result == isMissing ? S_OK : result;
}

HRESULT DeleteClassesKey(const std::wstring& key) {
  const HRESULT result = ResultOf(RegDeleteTreeW(HKEY_LOCAL_MACHINE, Full(key).c_str()));
  return result == isMissing ? S_OK : result;
}

HRESULT DeleteEmptyClassesKey(const std::wstring& key) {
  UniqueRegistryKey opened;
  const HRESULT result = Opened(key, KEY_READ, opened);
  if (FAILED(result)) {
    return result == isMissing ? S_OK : result;
  }
  DWORD keys = 0;
  DWORD values = 0;
  RegQueryInfoKeyW(opened.Get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr,
                   nullptr, nullptr, nullptr);
  return keys + values == 0 ? ResultOf(RegDeleteKeyW(HKEY_LOCAL_MACHINE, Full(key).c_str())) : S_OK;
}

}  // namespace zolvane
