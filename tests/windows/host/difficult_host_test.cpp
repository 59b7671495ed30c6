// Hosts that call back in answer to a call, that run out of memory, whose settings-file service is of no use, or that
// use the add-in by name in every way a script may.
#include <gtest/gtest.h>

#include <add_in.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/windows/com/offered_object.h"
#include "bench/windows/com/offered_settings.h"
#include "shell/windows/class_factory.h"
#include "shell/windows/host/late_bound_names.h"
#include "shell/windows/page/page_layout.h"
#include "win32/late_bound.h"
#include "win32/module_instance.h"
#include "win32/text.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

// ---- Memory that runs out: the component's sources as part of this program, so that its allocations can be refused

constexpr long long unlimited = std::numeric_limits<long long>::max();
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): all that the operators of memory know
long long allocationsLeft = unlimited;
std::atomic<long long> allocationsAlive{0};

// How often one place was given back.
struct Deletions {
  const void* Place = nullptr;
  int Count = 0;
};
Deletions deletions;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

// From the given allocation on there is no memory, until this ends.
class MemoryFor {
 public:
  explicit MemoryFor(long long allocations) { allocationsLeft = allocations; }
  ~MemoryFor() { allocationsLeft = unlimited; }
  MemoryFor(const MemoryFor&) = delete;
  MemoryFor& operator=(const MemoryFor&) = delete;

  bool HasRunOut() const { return allocationsLeft <= 0; }
};

}  // namespace
}  // namespace zolvane

// NOLINTBEGIN(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory): this is what the others stand on
void* operator new(std::size_t size) {
  if (zolvane::allocationsLeft <= 0) {
    throw std::bad_alloc{};
  }
  if (zolvane::allocationsLeft != zolvane::unlimited) {
    --zolvane::allocationsLeft;
  }
  if (void* const memory = std::malloc(size != 0 ? size : 1)) {
    ++zolvane::allocationsAlive;
    return memory;
  }
  throw std::bad_alloc{};
}

void operator delete(void* memory) noexcept {
  const bool isWatched = memory != nullptr && memory == zolvane::deletions.Place;
  if (isWatched && zolvane::deletions.Count++ > 0) {
    return;
  }
  zolvane::allocationsAlive -= memory != nullptr ? 1 : 0;
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  operator delete(memory);
}
// NOLINTEND(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory)

namespace zolvane {
namespace {

using Members = std::vector<OfferedMember>;

constexpr WORD read = DISPATCH_PROPERTYGET;
constexpr WORD set = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;

HRESULT Accept(const MemberUse&) {
  return S_OK;
}

OfferedMember Object(const wchar_t* name, const ComPtr<IDispatch>& object) {
  return {name, read, [object](const MemberUse& use) { return use.Give(object); }};
}

// A settings-file service with one record in every table.
class OneRecordEach final : public IniFileService {
 public:
  std::optional<std::string> ReadValue(std::string_view, std::string_view key, std::string_view,
                                       std::string_view fallback) override {
    if (key == "Installed") {
      return "1";
    }
    return key == "Item1" ? "\"A name that fits in no small string\",1,2,3" : std::string{fallback};
  }
  Status WriteValue(std::string_view, std::string_view, std::string_view, std::string_view) override {
    return Status::Success();
  }
  std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                    std::string_view text) override {
    std::vector<std::string> pieces;
    while (!text.empty()) {
      const auto end = text.find(delimiter);
      pieces.emplace_back(text.substr(0, end));
      text.remove_prefix(end == std::string_view::npos ? text.size() : end + delimiter.size());
    }
    return pieces;
  }
};

// The host's objects, all that a session needs.
struct HostObjects {
  ComPtr<IDispatch> Link =
      Offer({{names::hold, set, Accept},
             {names::stop, read, [](const MemberUse& use) { return use.Give(std::optional{false}); }},
             {names::sendCommand, DISPATCH_METHOD,
              [](const MemberUse& use) { return use.Give(std::optional{true}); }}});
  ComPtr<IDispatch> Host = Offer({Object(names::instrumentLink, Link)});
  ComPtr<IDispatch> Panel = Offer({{names::text, set | read, Accept}});
  ComPtr<IDispatch> Panels = Offer({Object(L"", Panel)});
  ComPtr<IDispatch> StatusBar = Offer({Object(names::panels, Panels)});
  ComPtr<IDispatch> Window = Offer({Object(names::statusBar, StatusBar), {names::changed, set, Accept}});
};

ComPtr<IAddInForm> FormOf(const ComPtr<IAddIn>& addIn) {
  ComPtr<IAddInForm> form;
  addIn->get_Form(form.Put());
  return form;
}

HWND FrameOf(const ComPtr<IAddInForm>& form) {
  ComPtr<IDispatch> frame;
  form->get_Frame(frame.Put());
  return reinterpret_cast<HWND>(
      static_cast<LONG_PTR>(std::stoll(*LateBound{frame}.Read(names::frameWindow)->ToText())));
}

// What a host does in a session, one thing after the other.
struct Session {
  HostObjects Objects;
  ComPtr<IAddIn> AddIn;
  ComPtr<IAddInForm> Form;
  HWND Frame = nullptr;
};

using Step = std::function<HRESULT(Session&)>;

constexpr std::size_t detaching = 9;
constexpr std::size_t releasing = 10;

HRESULT ClickOn(const Session& session, int id) {
  const auto control = reinterpret_cast<LPARAM>(GetDlgItem(session.Frame, id));
  SendMessageW(session.Frame, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), control);
  return S_OK;
}

const std::vector<Step>& Steps() {
  static const std::vector<Step> steps{
      [](Session& session) {
        const auto factory = MakeClassFactory();
        return factory->CreateInstance(nullptr, __uuidof(IAddIn), session.AddIn.PutVoid());
      },
      [](Session& session) { return session.AddIn->get_Form(session.Form.Put()); },
      [](Session& session) {
        UniqueBstr caption;
        return session.AddIn->get_Caption(caption.Put());
      },
      [](Session& session) { return session.Form->putref_FormParent(session.Objects.Window.Get()); },
      [](Session& session) { return session.Form->putref_ObjectParent(session.Objects.Host.Get()); },
      [](Session& session) { return session.Form->LoadDefaults(); },
      [](Session& session) { return ClickOn(session, IdOf(CheckControl::RFID)); },
      [](Session& session) {
        const HWND list = GetDlgItem(session.Frame, IdOf(ListControl::HeadType));
        return SendMessageW(list, WM_KEYDOWN, VK_DOWN, 0), S_OK;
      },
      [](Session& session) { return session.Form->SaveChanges(); },
      [](Session& session) { return session.Form->putref_ObjectParent(nullptr); },
      [](Session& session) { return session.AddIn.Reset(), session.Form.Reset(), S_OK; },
  };
  return steps;
}

// Plays the session, with so much memory for one of its steps. True when that was not enough.
bool RunsOutIn(std::size_t starvedStep, long long allocations) {
  Session session;
  bool hasRunOut = false;
  for (std::size_t step = 0; step < Steps().size(); ++step) {
    if (step == detaching && starvedStep == releasing) {
      continue;  // what is released then is attached still
    }
    session.Frame = session.Form ? FrameOf(session.Form) : nullptr;
    if (step != starvedStep) {
      if (session.AddIn ? session.Form || step == 1 : step == 0) {
        EXPECT_EQ(Steps()[step](session), S_OK) << "step " << step;
      }
      continue;
    }
    HRESULT result = S_OK;
    {
      const MemoryFor limited{allocations};
      try {
        result = Steps()[step](session);
      } catch (const std::bad_alloc&) {
        // of the test's own
      }
      hasRunOut = limited.HasRunOut();
    }
    EXPECT_TRUE(SUCCEEDED(result) || result == E_OUTOFMEMORY || result == E_FAIL)
        << "step " << step << ", " << allocations << " allocations: " << std::hex << result;
  }
  return hasRunOut;
}

class MemoryRunsOut : public testing::TestWithParam<std::size_t> {};

TEST_P(MemoryRunsOut, AndTheHostGoesOnWithNothingLeftBehind) {
  ProgramFolder::OfThisRun();  // brings COM along
  const OfferedSettings settings{[] { return std::make_shared<OneRecordEach>(); }};
  RunsOutIn(GetParam(), unlimited);
  const long long before = allocationsAlive;
  constexpr long long most = 4000;
  long long allocations = 0;
  while (allocations < most && RunsOutIn(GetParam(), allocations)) {
    allocations += allocations < 60 ? 1 : 17;
    ASSERT_EQ(allocationsAlive, before) << allocations;
    ASSERT_EQ(OfferedObjectsAlive(), 0) << allocations;
    ASSERT_EQ(OfferedServicesAlive(), 0) << allocations;
    ASSERT_FALSE(ModuleLock::IsHeld()) << allocations;
  }
}

INSTANTIATE_TEST_SUITE_P(InEachStepOfASession, MemoryRunsOut, testing::Range<std::size_t>(0, 11));

// ---- A settings-file service that is of no use

class RefusingSettings final : public IniFileService {
 public:
  explicit RefusingSettings(int& calls) : calls_{calls} {}

  std::optional<std::string> ReadValue(std::string_view, std::string_view, std::string_view,
                                       std::string_view) override {
    return ++calls_, std::nullopt;
  }
  Status WriteValue(std::string_view, std::string_view, std::string_view, std::string_view) override {
    return ++calls_, Status::Failure(E_ACCESSDENIED);
  }
  std::optional<std::vector<std::string>> SplitText(std::string_view, std::string_view) override {
    return ++calls_, std::nullopt;
  }

 private:
  int& calls_;
};

TEST(SettingsService, ThatRefusesEveryCallIsCreatedOnceAndLeavesAnEmptyPage) {
  const auto& folder = ProgramFolder::OfThisRun();
  int created = 0;
  int calls = 0;
  const OfferedSettings settings{[&] { return ++created, std::make_shared<RefusingSettings>(calls); }};
  const auto addIn = folder.Module().Create();
  const auto form = FormOf(addIn);
  EXPECT_EQ(form->LoadDefaults(), S_OK);
  EXPECT_EQ(form->LoadDefaults(), S_OK);
  const HWND devices = GetDlgItem(FrameOf(form), IdOf(ListControl::DeviceType));
  EXPECT_EQ(SendMessageW(devices, CB_GETCOUNT, 0, 0), 0);
  EXPECT_EQ(created, 1);
  EXPECT_GT(calls, 100);
}

TEST(SettingsService, ThatCannotBeCreatedIsAskedForAgain) {
  const auto& folder = ProgramFolder::OfThisRun();
  bool mayCreate = false;
  const OfferedSettings settings{[&] { return mayCreate ? std::make_shared<OneRecordEach>() : nullptr; }};
  const auto addIn = folder.Module().Create();
  const auto form = FormOf(addIn);
  const HWND devices = GetDlgItem(FrameOf(form), IdOf(ListControl::DeviceType));
  EXPECT_EQ(form->LoadDefaults(), S_OK);
  EXPECT_EQ(SendMessageW(devices, CB_GETCOUNT, 0, 0), 0);
  mayCreate = true;
  EXPECT_EQ(form->LoadDefaults(), S_OK);
  EXPECT_EQ(SendMessageW(devices, CB_GETCOUNT, 0, 0), 1);
}

// ---- A host that reenters

class ReenteringHost : public testing::Test {
 protected:
  // The page is detached as soon as it tells of the change that the user makes.
  void DetachDuring(void (*makeChange)(HWND frame)) {
    bool mayDetach = false;
    const auto tell = [&](const MemberUse&) {
      return mayDetach ? form_->putref_ObjectParent(nullptr) : S_OK;
    };
    form_->putref_FormParent(Offer({{names::changed, set, tell}}).Get());
    form_->putref_ObjectParent(Offer({}).Get());
    form_->LoadDefaults();
    mayDetach = true;
    const HWND frame = FrameOf(form_);
    makeChange(frame);
    EXPECT_FALSE(IsWindow(frame));
    EXPECT_EQ(OfferedObjectsAlive(), 0);
  }

  const ProgramFolder& folder_ = ProgramFolder::OfThisRun();
  OfferedSettings settings_{[] { return std::make_shared<OneRecordEach>(); }};
  ComPtr<IAddIn> addIn_ = folder_.Module().Create();
  ComPtr<IAddInForm> form_ = FormOf(addIn_);
};

TEST_F(ReenteringHost, MayUseTheClassWhileItsLastReferenceIsReleased) {
  ComPtr<IAddIn> addIn;
  MakeClassFactory()->CreateInstance(nullptr, __uuidof(IAddIn), addIn.PutVoid());
  IAddIn* const raw = addIn.Get();
  int uses = 0;
  const auto link = Offer({{names::hold, set, [&](const MemberUse&) {
                              ++uses;
                              raw->AddRef();
                              raw->Release();
                              return S_OK;
                            }}});
  FormOf(addIn)->putref_ObjectParent(Offer({Object(names::instrumentLink, link)}).Get());
  deletions = {.Place = raw, .Count = 0};
  addIn.Reset();
  EXPECT_EQ(std::exchange(deletions.Place, nullptr), raw);
  EXPECT_EQ(deletions.Count, 1);
  EXPECT_EQ(uses, 1);
}

TEST_F(ReenteringHost, ThatDetachesThePageWhileItsPanelIsLookedUpIsNotHeldOnTo) {
  {
    const auto panel = Offer({});
    const auto panels = Offer({Object(L"", panel)});
    const auto statusBar = Offer({Object(names::panels, panels)});
    const auto window = Offer({{names::statusBar, read, [&](const MemberUse& use) {
                                  EXPECT_EQ(form_->putref_ObjectParent(nullptr), S_OK);
                                  return use.Give(statusBar);
                                }}});
    EXPECT_EQ(form_->putref_FormParent(window.Get()), S_OK);
  }
  EXPECT_EQ(OfferedObjectsAlive(), 0);
}

TEST_F(ReenteringHost, MayDetachThePageWhileAListTellsOfAChoice) {
  DetachDuring([](HWND frame) {
    const HWND list = GetDlgItem(frame, IdOf(ListControl::DeviceType));
    SendMessageW(list, WM_KEYDOWN, VK_DOWN, 0);
    SendMessageW(list, WM_KEYDOWN, VK_UP, 0);
  });
}

TEST_F(ReenteringHost, MayDetachThePageWhileABoxTellsOfAClick) {
  DetachDuring([](HWND frame) { SendMessageW(GetDlgItem(frame, IdOf(CheckControl::RFID)), BM_CLICK, 0, 0); });
}

// ---- Use by name

DISPID NumberOf(IDispatch* object, const wchar_t* name) {
  auto* text = const_cast<LPOLESTR>(name);
  DISPID number = DISPID_UNKNOWN;
  object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &number);
  return number;
}

HRESULT SetByName(IDispatch* object, const wchar_t* name, WORD kind, VARIANT value) {
  DISPID isPut = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{&value, &isPut, 1, 1};
  return object->Invoke(NumberOf(object, name), IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, nullptr,
                        nullptr, nullptr);
}

VARIANT Value(IDispatch* object) {
  VARIANT value{};
  V_VT(&value) = VT_DISPATCH;
  V_DISPATCH(&value) = object;
  return value;
}

class ByName : public ReenteringHost {
 protected:
  long PageWindow() const {
    long window = 0;
    form_->get_hwnd(&window);
    return window;
  }
};

TEST_F(ByName, TheWindowIsSetWithOrWithoutTheWordForObjects) {
  for (const WORD kind : std::array<WORD, 3>{DISPATCH_PROPERTYPUT, DISPATCH_PROPERTYPUTREF, set}) {
    int changes = 0;
    const auto window = Offer({{names::changed, set, [&](const MemberUse&) { return ++changes, S_OK; }}});
    EXPECT_EQ(SetByName(form_.Get(), L"FormParent", kind, Value(window.Get())), S_OK);
    form_->SaveChanges();
    EXPECT_EQ(changes, 1);
  }
}

TEST_F(ByName, AVariableThatHoldsTheWindowIsTheWindow) {
  int changes = 0;
  const auto window = Offer({{names::changed, set, [&](const MemberUse&) { return ++changes, S_OK; }}});
  VARIANT variable = Value(window.Get());
  VARIANT reference{};
  V_VT(&reference) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&reference) = &variable;
  EXPECT_EQ(SetByName(form_.Get(), L"FormParent", DISPATCH_PROPERTYPUTREF, reference), S_OK);
  form_->SaveChanges();
  EXPECT_EQ(changes, 1);
}

TEST_F(ByName, NothingDetachesThePage) {
  const long before = PageWindow();
  EXPECT_NE(before, 0);
  EXPECT_EQ(SetByName(form_.Get(), L"ObjectParent", DISPATCH_PROPERTYPUTREF, Value(nullptr)), S_OK);
  EXPECT_EQ(PageWindow(), 0);
}

// An object without the face that late binding needs.
struct Faceless final : IUnknown {
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown ? this : nullptr;
    return *object != nullptr ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
};

TEST_F(ByName, WhatIsNoUsableObjectIsRefusedAndDetachesNothing) {
  Faceless object;
  VARIANT faceless{};
  V_VT(&faceless) = VT_UNKNOWN;
  V_UNKNOWN(&faceless) = &object;
  VARIANT number{};
  V_VT(&number) = VT_I4;
  const long before = PageWindow();
  for (const auto& value : {faceless, number}) {
    for (const auto* const name : {L"ObjectParent", L"FormParent"}) {
      EXPECT_EQ(SetByName(form_.Get(), name, DISPATCH_PROPERTYPUTREF, value), DISP_E_TYPEMISMATCH);
    }
  }
  EXPECT_EQ(PageWindow(), before);
}

TEST_F(ByName, AWrongNumberOfArgumentsIsRefused) {
  DISPPARAMS none{};
  std::array<VARIANT, 2> two{};
  DISPPARAMS tooMany{two.data(), nullptr, 2, 0};
  const auto invoke = [&](const wchar_t* name, WORD kind, DISPPARAMS& parameters) {
    Variant result;
    return form_->Invoke(NumberOf(form_.Get(), name), IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                         result.Put(), nullptr, nullptr);
  };
  EXPECT_EQ(invoke(L"FormParent", DISPATCH_PROPERTYPUT, none), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(invoke(L"FormParent", DISPATCH_PROPERTYPUT, tooMany), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(invoke(L"LoadDefaults", DISPATCH_METHOD, tooMany), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(invoke(L"HelpContextID", DISPATCH_PROPERTYPUT, none), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(form_->Invoke(NumberOf(form_.Get(), L"SaveChanges"), IID_NULL, LOCALE_USER_DEFAULT,
                          DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr),
            E_INVALIDARG);
}

// ---- Numbers and interfaces

// The members of an interface in the host's type library, with their numbers.
std::map<std::wstring, DISPID> MembersInHostLibrary(REFIID iid) {
  ComPtr<ITypeLib> library;
  LoadTypeLibEx(std::filesystem::path{ZOLVANE_HOST_LIBRARY_PATH}.c_str(), REGKIND_NONE, library.Put());
  ComPtr<ITypeInfo> dispatch;
  library->GetTypeInfoOfGuid(iid, dispatch.Put());
  std::map<std::wstring, DISPID> members;
  FUNCDESC* function = nullptr;
  for (UINT index = 0; SUCCEEDED(dispatch->GetFuncDesc(index, &function)); ++index) {
    UniqueBstr name;
    dispatch->GetDocumentation(function->memid, name.Put(), nullptr, nullptr, nullptr);
    members[name.Get()] = function->memid;
    dispatch->ReleaseFuncDesc(function);
  }
  return members;
}

TEST_F(ByName, MembersHaveTheNumbersOfTheHostsLibrary) {
  const std::array<std::pair<GUID, IDispatch*>, 2> objects{
      {{__uuidof(IAddIn), addIn_.Get()}, {__uuidof(IAddInForm), form_.Get()}}};
  int compared = 0;
  for (const auto& [iid, object] : objects) {
    for (const auto& [name, number] : MembersInHostLibrary(iid)) {
      const bool isOfTheSystem = (static_cast<DWORD>(number) & 0x60000000U) != 0;
      if (!isOfTheSystem) {
        EXPECT_EQ(NumberOf(object, name.c_str()), number) << Utf8(name);
        ++compared;
      }
    }
  }
  EXPECT_EQ(compared, 2 + 9);
}

// Every interface leads to every other one, and to one and the same identity.
void ExpectOneObject(IUnknown* object, const std::vector<GUID>& interfaces) {
  ComPtr<IUnknown> identity;
  ASSERT_EQ(object->QueryInterface(IID_IUnknown, identity.PutVoid()), S_OK);
  for (const auto& from : interfaces) {
    ComPtr<IUnknown> first;
    ASSERT_EQ(object->QueryInterface(from, first.PutVoid()), S_OK);
    for (const auto& to : interfaces) {
      ComPtr<IUnknown> second;
      ASSERT_EQ(first->QueryInterface(to, second.PutVoid()), S_OK);
      ComPtr<IUnknown> same;
      ASSERT_EQ(second->QueryInterface(IID_IUnknown, same.PutVoid()), S_OK);
      EXPECT_EQ(same.Get(), identity.Get());
    }
  }
  void* other = &identity;
  EXPECT_EQ(object->QueryInterface(IID_IPersist, &other), E_NOINTERFACE);
  EXPECT_EQ(other, nullptr);
}

TEST_F(ByName, AllInterfacesOfAnObjectLeadToEachOther) {
  ExpectOneObject(addIn_.Get(), {IID_IUnknown, IID_IDispatch, __uuidof(IAddIn), __uuidof(_Connect)});
  ExpectOneObject(form_.Get(), {IID_IUnknown, IID_IDispatch, __uuidof(IAddInForm)});
  ComPtr<IDispatch> frame;
  form_->get_Frame(frame.Put());
  ExpectOneObject(frame.Get(), {IID_IUnknown, IID_IDispatch});
}

}  // namespace
}  // namespace zolvane
