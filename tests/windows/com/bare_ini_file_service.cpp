#include "windows/com/bare_ini_file_service.h"

#include <gtest/gtest.h>

#include <array>

namespace zolvane {
namespace {

const GUID serviceInterface{0x9D0A3888, 0xB1EB, 0x11D3, {0xB9, 0x8E, 0x00, 0xE0, 0x7D, 0x74, 0x80, 0x2B}};
const GUID serviceClass{0x882DCAE5, 0x07A9, 0x4010, {0xBB, 0x07, 0xF3, 0x83, 0x06, 0xDE, 0x4F, 0xFB}};

using Slot = void (*)();

// As a program sees it, it begins with its table.
struct Service {
  const Slot* Slots;
  BareIniFileService::Heard Log;
};

std::wstring Text(BSTR text) {
  return {text, SysStringLen(text)};
}

HRESULT WINAPI QueryInterface(Service* self, const GUID* iid, void** object) {
  const bool isKnown = *iid == IID_IUnknown || *iid == serviceInterface;
  *object = isKnown ? self : nullptr;
  self->Log.References += isKnown ? 1 : 0;
  return isKnown ? S_OK : E_NOINTERFACE;
}

ULONG WINAPI AddRef(Service* self) {
  return static_cast<ULONG>(++self->Log.References);
}

ULONG WINAPI Release(Service* self) {
  return static_cast<ULONG>(--self->Log.References);
}

// What else stands in the table: nobody may call it. The arguments are unknown, so a caller in 32 bits
// does not survive.
template <int Number>
HRESULT WINAPI NotForTheAddIn(Service*) {
  ADD_FAILURE() << "slot " << Number << " was called";
  return E_NOTIMPL;
}

HRESULT WINAPI ReadValue(Service* self, BSTR section, BSTR key, BSTR file, BSTR fallback, BSTR* value) {
  ++self->Log.Calls[7];
  const auto asked = Text(section) + L"/" + Text(key);
  self->Log.Keys.insert(asked);
  self->Log.Files.insert(Text(file));
  const auto text = asked == L"DeviceType/Item1" ? L"\"Z\u00fcrich, 200\",0,\"X\"" : Text(fallback);
  *value = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  return S_OK;
}

HRESULT WINAPI WriteValue(Service* self, BSTR section, BSTR key, BSTR file, BSTR value) {
  ++self->Log.Calls[8];
  self->Log.Files.insert(Text(file));
  self->Log.Written.insert(Text(section) + L"/" + Text(key) + L"=" + Text(value));
  return S_OK;
}

// One piece, whatever the text is.
HRESULT WINAPI SplitText(Service* self, SAFEARRAY** pieces, BSTR delimiter, BSTR text, LONG* number) {
  ++self->Log.Calls[10];
  EXPECT_EQ(Text(delimiter), L",");
  self->Log.Split.insert(Text(text));
  SafeArrayDestroy(*pieces);
  *pieces = SafeArrayCreateVector(VT_BSTR, 0, 1);
  LONG index = 0;
  SafeArrayPutElement(*pieces, &index, text);
  *number = -7;  // means nothing
  return S_OK;
}

template <class Function>
Slot In(Function* function) {
  return reinterpret_cast<Slot>(function);
}

const std::array<Slot, 16> slots{
    In(QueryInterface),
    In(AddRef),
    In(Release),
    In(NotForTheAddIn<3>),
    In(NotForTheAddIn<4>),
    In(NotForTheAddIn<5>),
    In(NotForTheAddIn<6>),
    In(ReadValue),
    In(WriteValue),
    In(NotForTheAddIn<9>),
    In(SplitText),
    In(NotForTheAddIn<11>),
    In(NotForTheAddIn<12>),
    In(NotForTheAddIn<13>),
    In(NotForTheAddIn<14>),
    In(NotForTheAddIn<15>),
};

}  // namespace

// Gives the one service to everybody.
class BareIniFileService::Factory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    const bool isKnown = iid == IID_IUnknown || iid == IID_IClassFactory;
    *object = isKnown ? this : nullptr;
    return isKnown ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
    ++Created;
    return zolvane::QueryInterface(&Offered, &iid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  int Created = 0;
  Service Offered{.Slots = slots.data(), .Log = {}};
};

BareIniFileService::BareIniFileService() : factory_{std::make_unique<Factory>()} {
  EXPECT_EQ(CoRegisterClassObject(serviceClass, factory_.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                  &registration_),
            S_OK);
}

BareIniFileService::~BareIniFileService() {
  CoRevokeClassObject(registration_);
}

int BareIniFileService::Created() const {
  return factory_->Created;
}

const BareIniFileService::Heard& BareIniFileService::Log() const {
  return factory_->Offered.Log;
}

}  // namespace zolvane
