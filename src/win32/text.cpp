#include "win32/text.h"

#include <new>

namespace zolvane {

std::wstring Wide(std::string_view text) {
  const auto length = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), needed);
  return wide;
}

std::string Utf8(std::wstring_view text) {
  const auto length = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, narrow.data(), needed, nullptr, nullptr);
  return narrow;
}

std::string Utf8FromBstr(BSTR text) {
  return text == nullptr ? std::string{} : Utf8({text, SysStringLen(text)});
}

UniqueBstr Bstr(std::wstring_view text) {
  UniqueBstr result{SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))};
  if (!result) {
    throw std::bad_alloc{};
  }
  return result;
}

UniqueBstr Bstr(std::string_view text) {
  return Bstr(Wide(text));
}

}  // namespace zolvane
