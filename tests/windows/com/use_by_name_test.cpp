// The add-in's objects, used by name in every way a script may, and asked for each of their interfaces.
#include <gtest/gtest.h>

#include <add_in.h>

#include <array>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "bench/windows/com/offered_object.h"
#include "shell/windows/host/late_bound_names.h"
#include "win32/late_bound.h"
#include "win32/text.h"
#include "windows/support/add_in_use.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

constexpr WORD set = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;

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

class UseByName : public testing::Test {
 protected:
  long PageWindow() const {
    long window = 0;
    form_->get_hwnd(&window);
    return window;
  }

  const ProgramFolder& folder_ = ProgramFolder::OfThisRun();
  ComPtr<IAddIn> addIn_ = folder_.Module().Create();
  ComPtr<IAddInForm> form_ = FormOf(addIn_);
};

TEST_F(UseByName, TheWindowIsSetByEitherKindOfPut) {
  for (const WORD kind : std::array<WORD, 3>{DISPATCH_PROPERTYPUT, DISPATCH_PROPERTYPUTREF, set}) {
    int changes = 0;
    const auto window = Offer({{names::changed, set, [&](const MemberUse&) { return ++changes, S_OK; }}});
    EXPECT_EQ(SetByName(form_.Get(), L"FormParent", kind, Value(window.Get())), S_OK);
    form_->SaveChanges();
    EXPECT_EQ(changes, 1);
  }
}

TEST_F(UseByName, AVariableThatHoldsTheWindowIsTheWindow) {
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

TEST_F(UseByName, ANullObjectDetachesThePage) {
  const long before = PageWindow();
  EXPECT_NE(before, 0);
  EXPECT_EQ(SetByName(form_.Get(), L"ObjectParent", DISPATCH_PROPERTYPUTREF, Value(nullptr)), S_OK);
  EXPECT_EQ(PageWindow(), 0);
}

TEST_F(UseByName, NullAndAnEmptyVariableDetachAsNothingDoes) {
  for (const auto* const name : {L"FormParent", L"ObjectParent"}) {
    for (const VARTYPE type : {VT_NULL, VT_EMPTY}) {
      VARIANT value{};
      V_VT(&value) = type;
      EXPECT_EQ(SetByName(form_.Get(), name, DISPATCH_PROPERTYPUTREF, value), S_OK) << type;
    }
  }
  EXPECT_EQ(PageWindow(), 0);
}

// An object that cannot be used by name.
struct Faceless final : IUnknown {
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown ? this : nullptr;
    return *object != nullptr ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
};

TEST_F(UseByName, WhatIsNoUsableObjectIsRefusedAndDetachesNothing) {
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

TEST_F(UseByName, AWrongNumberOfArgumentsIsRefused) {
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

TEST_F(UseByName, MembersHaveTheNumbersOfTheHostsLibrary) {
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

TEST_F(UseByName, AllInterfacesOfAnObjectLeadToEachOther) {
  ExpectOneObject(addIn_.Get(), {IID_IUnknown, IID_IDispatch, __uuidof(IAddIn), __uuidof(_Connect)});
  ExpectOneObject(form_.Get(), {IID_IUnknown, IID_IDispatch, __uuidof(IAddInForm)});
  ComPtr<IDispatch> frame;
  form_->get_Frame(frame.Put());
  ExpectOneObject(frame.Get(), {IID_IUnknown, IID_IDispatch});
}

TEST(UseByNameAlone, ReadsTheCaptionAndLoadsThePage) {
  const auto addIn = ProgramFolder::OfThisRun().Module().Create();
  const LateBound byName{addIn.As<IDispatch>()};
  EXPECT_EQ(byName.Read(L"caption")->ToText(), "Zolvane Setup");
  const auto form = byName.ReadObject(L"FORM");
  EXPECT_EQ(form.Read(L"HelpContextID")->ToText(), "9014");
  EXPECT_TRUE(form.Call(L"LoadDefaults", {}).Ok());
  EXPECT_FALSE(form.Read(L"NoSuchMember"));
}

}  // namespace
}  // namespace zolvane
