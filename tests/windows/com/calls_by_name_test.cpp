// What the add-in says to the host's late-bound objects, to the letter: the names of members and the types of
// values. The host here shares no code with the add-in. It spells the names itself, and looks at what arrives
// before anything could convert it.
#include <gtest/gtest.h>

#include <hestrion_cmds.h>

#include <array>
#include <cwchar>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/texts.h"
#include "windows/com/bare_ini_file_service.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

std::string Narrow(std::wstring_view text) {
  std::string narrow;
  for (const wchar_t letter : text) {
    narrow += static_cast<char>(letter);
  }
  return narrow;
}

// Type and value, as "BOOL 0".
std::string Described(const VARIANT& value) {
  switch (value.vt) {
    case VT_BOOL:
      return "BOOL " + std::to_string(value.boolVal);
    case VT_I2:
      return "I2 " + std::to_string(value.iVal);
    case VT_I4:
      return "I4 " + std::to_string(value.lVal);
    case VT_BSTR:
      return "BSTR " + Narrow(value.bstrVal);
    case VT_BYREF | VT_BSTR:
      return "BSTR& " + Narrow(*value.pbstrVal);
    default:
      return "type " + std::to_string(value.vt);
  }
}

std::string Described(const DISPPARAMS& parameters) {
  std::string text;
  for (UINT argument = parameters.cArgs; argument > 0; --argument) {
    text += " " + Described(parameters.rgvarg[argument - 1]);
  }
  for (UINT name = 0; name < parameters.cNamedArgs; ++name) {
    text += " named " + std::to_string(parameters.rgdispidNamedArgs[name]);
  }
  return text;
}

// A property of the host may be a method without arguments, so it is read as either.
std::string_view KindOf(WORD flags) {
  switch (flags) {
    case DISPATCH_PROPERTYGET | DISPATCH_METHOD:
      return "read";
    case DISPATCH_PROPERTYPUT:
      return "put";
    case DISPATCH_METHOD:
      return "call";
    default:
      return "other use of";
  }
}

// One object of the host. Its members answer with an object or a value of their own, and each use of one
// is written down.
class HandMade final : public IDispatch {
 public:
  struct Member {
    const wchar_t* Name;
    VARIANT Answer;
  };

  HandMade(std::vector<std::string>& calls, std::vector<Member> members)
      : calls_{calls}, members_{std::move(members)} {}
  ~HandMade() { EXPECT_EQ(references_, 0U) << members_.size(); }
  HandMade(const HandMade&) = delete;
  HandMade& operator=(const HandMade&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    const bool isOffered = iid == IID_IUnknown || iid == IID_IDispatch;
    *object = isOffered ? static_cast<IDispatch*>(this) : nullptr;
    return isOffered ? AddRef(), S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override { return --references_; }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    for (std::size_t member = 0; member < members_.size(); ++member) {
      if (std::wcscmp(*names, members_[member].Name) == 0) {
        *ids = static_cast<DISPID>(member + 1);
        return S_OK;
      }
    }
    calls_.push_back("unknown " + Narrow(*names));
    return DISP_E_UNKNOWNNAME;
  }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO*, UINT*) override {
    if (id < 1 || static_cast<std::size_t>(id) > members_.size()) {
      return DISP_E_MEMBERNOTFOUND;
    }
    auto& member = members_[static_cast<std::size_t>(id - 1)];
    calls_.push_back(std::string{KindOf(flags)} + " " + Narrow(member.Name) + Described(*parameters));
    return result != nullptr ? VariantCopy(result, &member.Answer) : S_OK;
  }

 private:
  std::vector<std::string>& calls_;
  std::vector<Member> members_;
  ULONG references_ = 0;
};

VARIANT Nothing() {
  return VARIANT{};
}
VARIANT An(IDispatch& object) {
  VARIANT value{};
  value.vt = VT_DISPATCH;
  value.pdispVal = &object;
  return value;
}
VARIANT Boolean(bool truth) {
  VARIANT value{};
  value.vt = VT_BOOL;
  value.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
  return value;
}
VARIANT Short(SHORT number) {
  VARIANT value{};
  value.vt = VT_I2;
  value.iVal = number;
  return value;
}

class CallsByName : public testing::Test {
 protected:
  CallsByName() {
    addIn_ = folder_.Module().Create();
    addIn_->get_Form(form_.Put());
  }
  ~CallsByName() override {
    if (form_) {
      form_->putref_ObjectParent(nullptr);
    }
  }

  void Open() {
    form_->putref_FormParent(&window_);
    form_->putref_ObjectParent(&object_);
    form_->LoadDefaults();
  }

  HWND PageWindow() const {
    LONG handle = 0;
    form_->get_hwnd(&handle);
    return reinterpret_cast<HWND>(static_cast<LONG_PTR>(handle));
  }

  HWND Frame() const {
    ComPtr<IDispatch> frame;
    form_->get_Frame(frame.Put());
    std::wstring name = L"hWnd";
    LPOLESTR names = name.data();
    DISPID id = 0;
    frame->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
    DISPPARAMS none{};
    VARIANT handle{};
    frame->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &handle, nullptr, nullptr);
    EXPECT_EQ(handle.vt, VT_I4);
    return reinterpret_cast<HWND>(static_cast<LONG_PTR>(handle.lVal));
  }

  // What was said since the last time that it was asked for.
  std::vector<std::string> Calls() { return std::exchange(calls_, {}); }

  // The button "Query Zolvane" is the control of number 232.
  void PressQuery() const { SendMessageW(GetDlgItem(Frame(), 232), BM_CLICK, 0, 0); }

 private:
  std::vector<std::string> calls_;
  const ProgramFolder& folder_ = ProgramFolder::OfThisRun();
  BareIniFileService settings_;
  HandMade panel_{calls_, {{L"Text", Nothing()}}};
  HandMade statusBar_{calls_, {{L"Panels", An(panel_)}}};
  HandMade window_{calls_,
                   {{L"Changed", Nothing()}, {L"sbstatusbar", An(statusBar_)}, {L"SetFocus", Nothing()}}};
  HandMade link_{calls_, {{L"SendCommand", Boolean(false)}, {L"Stop", Boolean(false)}, {L"Hold", Nothing()}}};
  HandMade dialog_{calls_,
                   {{L"Style", Nothing()},
                    {L"Title", Nothing()},
                    {L"Message", Nothing()},
                    {L"Show", Nothing()},
                    {L"Result", Short(1)}}};
  HandMade dialogs_{calls_, {{L"MessageDialog", An(dialog_)}}};
  HandMade object_{calls_,
                   {{L"InstrumentLink", An(link_)},
                    {L"WriteLogLine", Nothing()},
                    {L"HostDialogAvailable", Boolean(true)},
                    {L"Dialogs", An(dialogs_)}}};
  ComPtr<IAddIn> addIn_;
  ComPtr<IAddInForm> form_;

 protected:
  IAddInForm& Form() const { return *form_.Get(); }
};

TEST_F(CallsByName, TheWindowIsAskedForItsStatusPanel) {
  Open();
  EXPECT_EQ(Calls(), (Texts{"read sbstatusbar", "read Panels BSTR STATUS"}));
}

TEST_F(CallsByName, TheWindowIsToldThatNothingIsPending) {
  Open();
  Calls();
  Form().SaveChanges();
  EXPECT_EQ(Calls(), Texts{"put Changed BOOL 0 named -3"});
}

TEST_F(CallsByName, AClickBesideTheControlsAsksTheWindowToTakeTheFocus) {
  Open();
  Calls();
  SendMessageW(Frame(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(1, 1));
  EXPECT_EQ(Calls(), Texts{"call SetFocus"});
}

TEST_F(CallsByName, TheLinkIsLetGoWhenTheHostTakesItsObjectBack) {
  Open();
  Calls();
  Form().putref_ObjectParent(nullptr);
  EXPECT_EQ(Calls(), (Texts{"read InstrumentLink", "put Hold BOOL 0 named -3"}));
}

TEST_F(CallsByName, AnOperationSpeaksToPanelLinkLogAndDialogue) {
  Open();
  Calls();
  PressQuery();
  const Texts firstStep{"put Text BSTR Getting Zolvane Type named -3",
                        "read InstrumentLink",
                        "put Stop BOOL 0 named -3",
                        "read InstrumentLink",
                        "put Hold BOOL -1 named -3",
                        "read InstrumentLink",
                        "call SendCommand BSTR& STATUS_STAGE BSTR&  I4 0",
                        "read Text",
                        "call WriteLogLine BSTR ******* Message dialogue : Communication Error [, , Please "
                        "ensure that the Zolvane "
                        "is switched on, and in 'Remote Mode']",
                        "read HostDialogAvailable",
                        "read Dialogs",
                        "read MessageDialog",
                        "put Style I2 0 named -3",
                        "put Title BSTR Communication Error named -3",
                        "put Message BSTR \r\n\r\nPlease ensure that the Zolvane is switched on\r\nand in "
                        "'Remote Mode' named -3",
                        "call Show BOOL -1",
                        "read Result",
                        "read Result",
                        "call WriteLogLine BSTR ******* Message dialogue : button selected : 1"};
  auto calls = Calls();
  calls.resize(firstStep.size());
  EXPECT_EQ(calls, firstStep);
}

TEST_F(CallsByName, ThePageHasAWindowOfItsOwnBesidesItsFrame) {
  const HWND page = PageWindow();
  EXPECT_TRUE(IsWindow(page));
  EXPECT_NE(page, Frame());
  EXPECT_EQ(GetParent(Frame()), page);
  EXPECT_EQ(GetAncestor(page, GA_ROOT), page);
  EXPECT_FALSE(IsWindowVisible(page));
}

TEST_F(CallsByName, TheWindowOfThePageBearsItsCaption) {
  std::array<wchar_t, 64> caption{};
  GetWindowTextW(PageWindow(), caption.data(), static_cast<int>(caption.size()));
  EXPECT_EQ(std::wstring_view{caption.data()}, L"Zolvane Setup");
}

}  // namespace
}  // namespace zolvane
