// The host's settings-file service as a bare table of functions, written from the numbers of its slots and
// without the interface that the module was built with. Only the three documented operations may be called.
#include <gtest/gtest.h>

#include <add_in.h>

#include <array>
#include <map>
#include <set>
#include <string>

#include "win32/text.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

const GUID serviceInterface{0x9D0A3888, 0xB1EB, 0x11D3, {0xB9, 0x8E, 0x00, 0xE0, 0x7D, 0x74, 0x80, 0x2B}};
const GUID serviceClass{0x882DCAE5, 0x07A9, 0x4010, {0xBB, 0x07, 0xF3, 0x83, 0x06, 0xDE, 0x4F, 0xFB}};

using Slot = void (*)();

struct Heard {
  long References = 0;
  std::map<int, int> Calls;  // by slot
  std::set<std::string> Keys;
  std::set<std::string> Files;
  std::set<std::string> Written;
  std::set<std::string> Split;
};

// As a program sees it, it begins with its table.
struct Service {
  const Slot* Slots;
  Heard Log;
};

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
  const std::string asked = Utf8FromBstr(section) + "/" + Utf8FromBstr(key);
  self->Log.Keys.insert(asked);
  self->Log.Files.insert(Utf8FromBstr(file));
  const auto text =
      asked == "DeviceType/Item1" ? Bstr(R"("Zürich, 200",0,"X")") : Bstr(Utf8FromBstr(fallback));
  *value = SysAllocStringLen(text.Get(), SysStringLen(text.Get()));
  return S_OK;
}

HRESULT WINAPI WriteValue(Service* self, BSTR section, BSTR key, BSTR file, BSTR value) {
  ++self->Log.Calls[8];
  self->Log.Files.insert(Utf8FromBstr(file));
  self->Log.Written.insert(Utf8FromBstr(section) + "/" + Utf8FromBstr(key) + "=" + Utf8FromBstr(value));
  return S_OK;
}

// One piece, whatever the text is.
HRESULT WINAPI SplitText(Service* self, SAFEARRAY** pieces, BSTR delimiter, BSTR text, LONG* number) {
  ++self->Log.Calls[10];
  EXPECT_EQ(Utf8FromBstr(delimiter), ",");
  self->Log.Split.insert(Utf8FromBstr(text));
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

// Gives the one service to everybody.
class Factory final : public IClassFactory {
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

// The service is offered while this lives.
class OfferedTable {
 public:
  OfferedTable() = default;
  ~OfferedTable() { CoRevokeClassObject(registration_); }
  OfferedTable(const OfferedTable&) = delete;
  OfferedTable& operator=(const OfferedTable&) = delete;

  explicit operator bool() const { return isOffered_; }
  int Created() const { return factory_.Created; }
  Heard& Log() { return factory_.Offered.Log; }

 private:
  Factory factory_;
  DWORD registration_ = 0;
  const bool isOffered_ = SUCCEEDED(CoRegisterClassObject(serviceClass, &factory_, CLSCTX_INPROC_SERVER,
                                                          REGCLS_MULTIPLEUSE, &registration_));
};

TEST(IniFileServiceSlots, ReadWriteAndSplitAreTheOnlyOnesCalled) {
  const auto& folder = ProgramFolder::OfThisRun();
  OfferedTable offer;
  ASSERT_TRUE(offer);
  {
    const auto addIn = folder.Module().Create();
    ComPtr<IAddInForm> form;
    ASSERT_EQ(addIn->get_Form(form.Put()), S_OK);
    ASSERT_EQ(form->LoadDefaults(), S_OK);
    EXPECT_EQ(offer.Created(), 1);
  }
  auto& heard = offer.Log();
  EXPECT_EQ(heard.References, 0);
  EXPECT_GT(heard.Calls[7], 20);
  EXPECT_GT(heard.Calls[8], 0);
  EXPECT_GT(heard.Calls[10], 0);
  EXPECT_TRUE(heard.Keys.contains("DeviceType/Installed"));
  EXPECT_EQ(heard.Files, std::set{folder.Configuration().string()});
  EXPECT_TRUE(heard.Written.contains("DeviceType/Installed=1"));
  EXPECT_TRUE(heard.Split.contains(R"("Zürich, 200",0,"X")"));
}

}  // namespace
}  // namespace zolvane
