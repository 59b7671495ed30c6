// Hosts whose members fail, or answer in another form than usual.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <vector>

#include "shell/windows/host/late_bound_names.h"
#include "windows/host/noted_session.h"

namespace zolvane {
namespace {

constexpr WORD get = DISPATCH_PROPERTYGET;
constexpr WORD put = DISPATCH_PROPERTYPUT;
constexpr WORD method = DISPATCH_METHOD;

using StrangeResults = NotedSession;

TEST_F(StrangeResults, AStopFlagThatCannotBeReadIsNotRaisedForAQuery) {
  Calls.FailEverythingThatStartsWith("stop?");
  Open();
  Press(queryButton);
  EXPECT_EQ(Link().Commands,
            (Texts{"STATUS_STAGE", "STATUS_MECH", "RFID ON", "RFID READ_PERSISTENT", "STATUS PUMPS"}));
  EXPECT_TRUE(IsEnabled(queryButton));
}

TEST_F(StrangeResults, AStopFlagThatCannotBeReadIsNotRaisedForAnUpload) {
  Calls.FailEverythingThatStartsWith("stop?");
  Open();
  Press(uploadButton);
  ASSERT_FALSE(Link().Commands.empty());
  EXPECT_EQ(Link().Commands.back(), "SET_CALIBRATION SAVE");
  EXPECT_TRUE(IsEnabled(uploadButton));
}

TEST_F(StrangeResults, AHoldFlagThatCannotBeSetChangesNothing) {
  Calls.FailEverythingThatStartsWith("hold=");
  Open();
  Press(queryButton);
  EXPECT_EQ(Link().Commands.size(), 5U);
  EXPECT_EQ(Calls.Of({"hold="}), Texts(5, "hold=true"));
  EXPECT_EQ(Boxes(), Texts{});
}

// ---- Results in every form

VARIANT Number(long number) {
  VARIANT value{};
  V_VT(&value) = VT_I4;
  V_I4(&value) = number;
  return value;
}

VARIANT TextValue(const wchar_t* text) {
  VARIANT value{};
  V_VT(&value) = VT_BSTR;
  V_BSTR(&value) = SysAllocString(text);
  return value;
}

VARIANT NullPointer(VARTYPE type) {
  VARIANT value{};
  V_VT(&value) = type;
  V_BYREF(&value) = nullptr;
  return value;
}

template <class Variable>
VARIANT ReferenceTo(VARTYPE type, Variable& variable) {
  VARIANT value{};
  V_VT(&value) = static_cast<VARTYPE>(VT_BYREF | type);
  V_BYREF(&value) = static_cast<void*>(&variable);
  return value;
}

TEST_F(StrangeResults, AStopFlagIsRaisedInAnyFormThatStandsForYesAndInNoOther) {
  static VARIANT_BOOL no = VARIANT_FALSE;
  static VARIANT_BOOL yes = VARIANT_TRUE;
  static VARIANT zero = Number(0);
  constexpr std::size_t allSteps = 5;
  constexpr std::size_t firstStep = 1;
  struct Given {
    std::function<VARIANT()> Result;
    std::size_t Commands;
  };
  const std::vector<Given> forms{
      {[] { return VARIANT{}; }, allSteps},  // nothing is no
      {[] { return Number(0); }, allSteps},
      {[] { return Number(7); }, firstStep},
      {[] { return TextValue(L"False"); }, allSteps},
      {[] { return TextValue(L"1"); }, firstStep},
      {[] { return TextValue(L"neither"); }, allSteps},
      {[] { return ReferenceTo(VT_BOOL, no); }, allSteps},
      {[] { return ReferenceTo(VT_BOOL, yes); }, firstStep},
      {[] { return ReferenceTo(VT_VARIANT, zero); }, allSteps},
      {[] { return NullPointer(VT_DISPATCH); }, allSteps},
      {[] { return NullPointer(VT_UNKNOWN); }, allSteps},
      {[] { return NullPointer(VT_BYREF | VT_BOOL); }, allSteps},
      {[] { return NullPointer(VT_BYREF | VT_VARIANT); }, allSteps},
      {[] { return NullPointer(VT_BYREF | VT_DISPATCH); }, allSteps},
  };
  for (const auto& given : forms) {
    std::size_t commands = 0;
    const auto accept = [](const MemberUse&) { return S_OK; };
    const auto link = Offer({{names::stop, get,
                              [&given](const MemberUse& use) {
                                *use.Result = given.Result();
                                return S_OK;
                              }},
                             {names::hold, put, accept},
                             {names::sendCommand, method, [&commands](const MemberUse& use) {
                                ++commands;
                                return use.Give(std::optional<bool>{true});
                              }}});
    Open(Offer({{names::instrumentLink, get, [&link](const MemberUse& use) { return use.Give(link); }}}),
         OfferHostWindow(Window));
    Press(queryButton);
    EXPECT_EQ(commands, given.Commands) << "form " << (&given - forms.data());
  }
  EndSession();
}

TEST_F(StrangeResults, ALinkThatIsGivenByReferenceIsTheLinkAndStaysTheHosts) {
  static IDispatch* variable = nullptr;
  const auto link = Offer({{names::sendCommand, method,
                            [](const MemberUse& use) { return use.Give(std::optional<bool>{true}); }}});
  variable = link.Get();
  Open(Offer({{names::instrumentLink, get,
               [](const MemberUse& use) {
                 *use.Result = ReferenceTo(VT_DISPATCH, variable);
                 return S_OK;
               }}}),
       OfferHostWindow(Window));
  Press(queryButton);
  EXPECT_EQ(Boxes(), Texts{}) << "the command was answered";
  EndSession();
  EXPECT_EQ(link->AddRef(), 2U);
  EXPECT_EQ(link->Release(), 1U);
}

}  // namespace
}  // namespace zolvane
