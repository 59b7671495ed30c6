#include "shell/windows/registry_changes.h"

#include <algorithm>
#include <utility>

namespace zolvane {
namespace {

std::wstring Full(const std::wstring& key) {
  return L"Software\\Classes\\" + key;
}

HRESULT Opened(const std::wstring& key, REGSAM access, UniqueRegistryKey& opened) {
  return HRESULT_FROM_WIN32(RegOpenKeyExW(HKEY_LOCAL_MACHINE, Full(key).c_str(), 0, access, opened.Put()));
}

constexpr HRESULT isMissing = __HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);

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
  return static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
}

}  // namespace

RegistryChanges::~RegistryChanges() {
  std::for_each(done_.rbegin(), done_.rend(), Undo);
}

std::optional<RegistryChanges::Value> RegistryChanges::Read(HKEY key, const std::wstring& name) {
  Value value{};
  DWORD size = 0;
  if (RegQueryValueExW(key, name.c_str(), nullptr, &value.Type, nullptr, &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  value.Data.resize(size);
  const auto read = RegQueryValueExW(key, name.c_str(), nullptr, &value.Type, value.Data.data(), &size);
  return read == ERROR_SUCCESS ? std::optional{std::move(value)} : std::nullopt;
}

HRESULT RegistryChanges::SetText(const std::wstring& key, const std::wstring& name,
                                 const std::wstring& text) {
  // Noted first: the system may make some of the keys on the way and then refuse.
  done_.push_back({.Key = key, .Name = name, .Before = std::nullopt, .KeysMade = MissingKeys(key)});
  UniqueRegistryKey opened;
  const auto created = RegCreateKeyExW(HKEY_LOCAL_MACHINE, Full(key).c_str(), 0, nullptr, 0,
                                       KEY_QUERY_VALUE | KEY_SET_VALUE, nullptr, opened.Put(), nullptr);
  if (created != ERROR_SUCCESS) {
    return HRESULT_FROM_WIN32(created);
  }
  done_.back().Before = Read(opened.Get(), name);
  return HRESULT_FROM_WIN32(
      RegSetValueExW(opened.Get(), name.c_str(), 0, REG_SZ, BytesOf(text), SizeInBytes(text)));
}

void RegistryChanges::Undo(const Change& change) {
  UniqueRegistryKey opened;
  if (SUCCEEDED(Opened(change.Key, KEY_SET_VALUE, opened))) {
    if (change.Before) {
      RegSetValueExW(opened.Get(), change.Name.c_str(), 0, change.Before->Type, change.Before->Data.data(),
                     static_cast<DWORD>(change.Before->Data.size()));
    } else {
      RegDeleteValueW(opened.Get(), change.Name.c_str());
    }
  }
  std::for_each(change.KeysMade.rbegin(), change.KeysMade.rend(),
                [](const std::wstring& made) { RegDeleteKeyW(HKEY_LOCAL_MACHINE, Full(made).c_str()); });
}

bool ClassesKeyExists(const std::wstring& key, REGSAM view) {
  UniqueRegistryKey opened;
  return SUCCEEDED(Opened(key, KEY_READ | view, opened));
}

HRESULT MayDeleteClassesKey(const std::wstring& key) {
  UniqueRegistryKey opened;
  const HRESULT result = Opened(key, DELETE | KEY_READ | KEY_WRITE, opened);
  return result == isMissing ? S_OK : result;
}

HRESULT DeleteClassesKey(const std::wstring& key) {
  const HRESULT result = HRESULT_FROM_WIN32(RegDeleteTreeW(HKEY_LOCAL_MACHINE, Full(key).c_str()));
  return result == isMissing ? S_OK : result;
}

}  // namespace zolvane
