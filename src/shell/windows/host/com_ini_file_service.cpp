#include "shell/windows/host/com_ini_file_service.h"

#include <hestrion_cmds.h>

#include <utility>

#include "shell/windows/host/late_bound_names.h"
#include "win32/com_ptr.h"
#include "win32/guarded.h"
#include "win32/text.h"

namespace zolvane {
namespace {

class ComIniFileService final : public IniFileService {
 public:
  explicit ComIniFileService(ComPtr<IIniFileService> service) : service_{std::move(service)} {}

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override;
  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override;
  std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                    std::string_view text) override;

 private:
  ComPtr<IIniFileService> service_;
};

std::optional<std::string> ComIniFileService::ReadValue(std::string_view section, std::string_view key,
                                                        std::string_view file, std::string_view fallback) {
  UniqueBstr value;
  const HRESULT read = service_->ReadValue(Bstr(section).Get(), Bstr(key).Get(), Bstr(file).Get(),
                                           Bstr(fallback).Get(), value.Put());
  return SUCCEEDED(read) ? std::optional{Utf8FromBstr(value.Get())} : std::nullopt;
}

Status ComIniFileService::WriteValue(std::string_view section, std::string_view key, std::string_view file,
                                     std::string_view value) {
  return ToStatus(
      service_->WriteValue(Bstr(section).Get(), Bstr(key).Get(), Bstr(file).Get(), Bstr(value).Get()));
}

// The texts of an array that the service made, whatever it made. No array means no texts.
std::optional<std::vector<std::string>> TextsOf(SAFEARRAY* array) {
  std::vector<std::string> texts;
  if (array == nullptr) {
    return texts;
  }
  VARTYPE type = VT_EMPTY;
  LONG first = 0;
  LONG last = 0;
  if (SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type)) || type != VT_BSTR ||
      FAILED(SafeArrayGetLBound(array, 1, &first)) || FAILED(SafeArrayGetUBound(array, 1, &last))) {
    return std::nullopt;
  }
  for (LONG index = first; index <= last; ++index) {
    UniqueBstr text;
    if (FAILED(SafeArrayGetElement(array, &index, static_cast<void*>(text.Put())))) {
      return std::nullopt;
    }
    texts.push_back(Utf8FromBstr(text.Get()));
  }
  return texts;
}

std::optional<std::vector<std::string>> ComIniFileService::SplitText(std::string_view delimiter,
                                                                     std::string_view text) {
  UniqueSafeArray pieces;
  LONG number = 0;
  const HRESULT split = service_->SplitText(pieces.InOut(), Bstr(delimiter).Get(), Bstr(text).Get(), &number);
  return SUCCEEDED(split) ? TextsOf(pieces.Get()) : std::nullopt;
}

// A host may have given its class an identifier of its own; its name is the same.
CLSID ServiceClass() {
  CLSID identifier{};
  const HRESULT found = CLSIDFromProgID(names::iniFileServiceProgId, &identifier);
  return SUCCEEDED(found) ? identifier : __uuidof(::IniFileService);
}

}  // namespace

std::shared_ptr<IniFileService> CreateComIniFileService() {
  ComPtr<IIniFileService> service;
  const HRESULT created =
      CoCreateInstance(ServiceClass(), nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                       __uuidof(IIniFileService), service.PutVoid());
  return SUCCEEDED(created) && service ? std::make_shared<ComIniFileService>(std::move(service)) : nullptr;
}

}  // namespace zolvane
