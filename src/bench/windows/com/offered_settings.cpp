#include "bench/windows/com/offered_settings.h"

#include <hestrion_cmds.h>

#include <atomic>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "win32/com_object.h"
#include "win32/com_ptr.h"
#include "win32/counted.h"
#include "win32/guarded.h"
#include "win32/text.h"

namespace zolvane {
namespace {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): counts over the whole process
std::atomic<long> alive{0};

HRESULT StorePieces(const std::vector<std::string>& pieces, SAFEARRAY** place) {
  UniqueSafeArray array{SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(pieces.size()))};
  if (!array) {
    return E_OUTOFMEMORY;
  }
  for (LONG index = 0; index < static_cast<LONG>(pieces.size()); ++index) {
    const auto piece = Bstr(pieces[static_cast<std::size_t>(index)]);
    const HRESULT put = SafeArrayPutElement(array.Get(), &index, piece.Get());
    if (FAILED(put)) {
      return put;
    }
  }
  const UniqueSafeArray old{std::exchange(*place, array.Detach())};
  return S_OK;
}

// Called by slots only: it has no members for callers by name.
class SettingsObject final : public ComObject<SettingsObject, IIniFileService> {
 public:
  explicit SettingsObject(std::shared_ptr<IniFileService> service) : service_{std::move(service)} { ++alive; }
  ~SettingsObject() { --alive; }

  HRESULT STDMETHODCALLTYPE ReadValue(BSTR section, BSTR key, BSTR file, BSTR fallback,
                                      BSTR* value) override {
    return Guarded([&] {
      const auto read = service_->ReadValue(Utf8FromBstr(section), Utf8FromBstr(key), Utf8FromBstr(file),
                                            Utf8FromBstr(fallback));
      *value = read ? Bstr(*read).Detach() : nullptr;
      return read ? S_OK : E_FAIL;
    });
  }

  HRESULT STDMETHODCALLTYPE WriteValue(BSTR section, BSTR key, BSTR file, BSTR value) override {
    return Guarded([&] {
      return ToHresult(service_->WriteValue(Utf8FromBstr(section), Utf8FromBstr(key), Utf8FromBstr(file),
                                            Utf8FromBstr(value)));
    });
  }

  HRESULT STDMETHODCALLTYPE Reserved() override { return E_NOTIMPL; }

  HRESULT STDMETHODCALLTYPE SplitText(SAFEARRAY** pieces, BSTR delimiter, BSTR text, LONG* number) override {
    return Guarded([&] {
      const auto split = service_->SplitText(Utf8FromBstr(delimiter), Utf8FromBstr(text));
      if (!split) {
        return E_FAIL;
      }
      *number = static_cast<LONG>(split->size());
      return StorePieces(*split, pieces);
    });
  }

 private:
  std::shared_ptr<IniFileService> service_;
};

class SettingsFactory final : public Counted<SettingsFactory, IClassFactory> {
 public:
  explicit SettingsFactory(OfferedSettings::Create create) : create_{std::move(create)} {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    *object = nullptr;
    return outer != nullptr ? CLASS_E_NOAGGREGATION : Guarded([&] {
      auto service = create_();
      return service ? SettingsObject::Make(std::move(service))->QueryInterface(iid, object) : E_FAIL;
    });
  }

  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  OfferedSettings::Create create_;
};

}  // namespace

OfferedSettings::OfferedSettings(Create create) {
  const auto factory = SettingsFactory::Make(std::move(create));
  const HRESULT registered = CoRegisterClassObject(__uuidof(::IniFileService), factory.Get(),
                                                   CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registration_);
  if (FAILED(registered)) {
    throw std::runtime_error{"the settings-file service could not be offered"};
  }
}

OfferedSettings::~OfferedSettings() {
  CoRevokeClassObject(registration_);
}

long OfferedServicesAlive() {
  return alive;
}

}  // namespace zolvane
