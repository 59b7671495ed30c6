// Hosts whose objects do not have what they should have: the operation goes on without it.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "shell/windows/host/late_bound_names.h"
#include "windows/host/noted_session.h"

namespace zolvane {
namespace {

constexpr WORD get = DISPATCH_PROPERTYGET;
constexpr WORD put = DISPATCH_PROPERTYPUT;

using MissingMembers = NotedSession;

constexpr const char* errorText =
    "\r\n\r\nPlease ensure that the Zolvane is switched on\r\nand in 'Remote Mode'";

// What a query says to which nobody answers. Without a step's answer the next one is asked all the same.
constexpr std::array steps{"Getting Zolvane Type", "Getting Pipette Module Type", "Enabling RFID",
                           "Getting Pump Module Status"};

Texts ErrorOfEachStep() {
  Texts errors;
  for (const auto* const step : steps) {
    errors.push_back(std::string{step} + errorText);
  }
  return errors;
}

// ---- Windows without a status line

ComPtr<IDispatch> WindowWith(std::vector<OfferedMember> members, const std::shared_ptr<FakeWindow>& window) {
  members.push_back({names::changed, put, [window](const MemberUse& use) {
                       return window->SetChanged(use.BoolAt(0).value_or(true)).Ok() ? S_OK : E_FAIL;
                     }});
  return Offer(std::move(members));
}

OfferedMember StatusBarOf(const std::vector<OfferedMember>& members) {
  return {names::statusBar, get, [members](const MemberUse& use) { return use.Give(Offer(members)); }};
}

OfferedMember PanelsGiving(std::function<HRESULT(const MemberUse&)> give) {
  return {names::panels, get, std::move(give)};
}

OfferedMember PanelsWithPanel(const std::vector<OfferedMember>& members) {
  return PanelsGiving([members](const MemberUse& use) { return use.Give(Offer(members)); });
}

TEST_F(MissingMembers, AWindowWithoutAStatusLineHasNoStepToName) {
  const std::array<std::vector<OfferedMember>, 8> windows{{
      {},
      {{names::statusBar, get, [](const MemberUse&) { return DISP_E_EXCEPTION; }}},
      {{names::statusBar, get, [](const MemberUse& use) { return use.Give(ComPtr<IDispatch>{}); }}},
      {{names::statusBar, get, [](const MemberUse& use) { return use.Give(std::optional<bool>{true}); }}},
      {StatusBarOf({})},
      {StatusBarOf({PanelsGiving([](const MemberUse&) { return DISP_E_BADINDEX; })})},
      {StatusBarOf({PanelsGiving([](const MemberUse& use) { return use.Give(ComPtr<IDispatch>{}); })})},
      {StatusBarOf({PanelsGiving([](const MemberUse& use) {
        return use.Arguments.empty() ? use.Give(Offer({})) : DISP_E_BADPARAMCOUNT;
      })})},
  }};
  Object->TheLink = nullptr;
  for (const auto& members : windows) {
    const auto before = Boxes().size();
    Calls.Clear();
    Open(OfferHostObject(Object), WindowWith(members, Window));
    Press(queryButton);
    EXPECT_EQ(Boxes().size(), before + steps.size());
    EXPECT_EQ(Boxes().back(), errorText);
    Calls.Clear();
    EXPECT_EQ(Form->SaveChanges(), S_OK);
    EXPECT_EQ(Calls.Of({"changed="}), Texts{"changed=false"});
  }
}

TEST_F(MissingMembers, APanelThatCannotBeWrittenKeepsItsText) {
  Object->TheLink = nullptr;
  int writes = 0;
  Open(OfferHostObject(Object),
       WindowWith({StatusBarOf({PanelsWithPanel({{names::text, get | put,
                                                  [&](const MemberUse& use) {
                                                    writes += use.IsSet ? 1 : 0;
                                                    return use.IsSet ? DISP_E_EXCEPTION
                                                                     : use.Give(std::optional<std::string>{
                                                                           "Before"});
                                                  }}})})},
                  Window));
  Press(queryButton);
  EXPECT_EQ(Boxes(), Texts(steps.size(), std::string{"Before"} + errorText));
  EXPECT_EQ(writes, 8) << "each step, and nothing behind it";
}

TEST_F(MissingMembers, APanelThatCannotBeReadNamesNoStep) {
  Object->TheLink = nullptr;
  Texts written;
  Open(OfferHostObject(Object),
       WindowWith({StatusBarOf({PanelsWithPanel({{names::text, put,
                                                  [&](const MemberUse& use) {
                                                    written.push_back(use.TextAt(0).value_or("?"));
                                                    return S_OK;
                                                  }}})})},
                  Window));
  Press(queryButton);
  EXPECT_EQ(Boxes(), Texts(steps.size(), errorText));
  EXPECT_EQ(written, (Texts{"Getting Zolvane Type", "", "Getting Pipette Module Type", "", "Enabling RFID",
                            "", "Getting Pump Module Status", ""}));
}

// ---- Objects without members, and links out of order

TEST_F(MissingMembers, AnObjectThatKnowsNoNameIsOneWithoutLinkLogAndDialogue) {
  Open(Offer({}), OfferHostWindow(Window));
  Press(queryButton);
  EXPECT_EQ(Boxes(), ErrorOfEachStep());
  const auto before = Boxes().size();
  Press(uploadButton);
  EXPECT_EQ(Boxes().size(), before + 2);  // the confirmation, and that the first line was not sent
  EXPECT_TRUE(Boxes().back().ends_with(errorText));
  EXPECT_TRUE(IsEnabled(uploadButton));
  EXPECT_EQ(Window->Panel->Shown, "");
  Press(downloadButton);
  EXPECT_TRUE(Boxes().back().ends_with(errorText));
  EXPECT_TRUE(IsEnabled(downloadButton));
  EXPECT_EQ(Window->Panel->Shown, "");
}

TEST_F(MissingMembers, ALinkThatIsNotGivenIsASilentInstrument) {
  const std::array<std::function<HRESULT(const MemberUse&)>, 6> links{
      [](const MemberUse& use) { return use.Give(ComPtr<IDispatch>{}); },
      [](const MemberUse&) { return S_OK; },
      [](const MemberUse&) { return DISP_E_EXCEPTION; },
      [](const MemberUse&) { return E_NOTIMPL; },
      [](const MemberUse& use) { return use.Give(std::optional<std::string>{"a link"}); },
      [](const MemberUse& use) { return use.Give(Offer({})); },
  };
  for (const auto& link : links) {
    Open(Offer({{names::instrumentLink, get, link}}), OfferHostWindow(Window));
    const auto before = static_cast<std::ptrdiff_t>(Boxes().size());
    Press(queryButton);
    const auto boxes = Boxes();
    EXPECT_EQ((Texts{boxes.begin() + before, boxes.end()}), ErrorOfEachStep());
    EXPECT_TRUE(IsEnabled(queryButton));
  }
}

TEST(ObjectsWithoutMembers, AreLoadedSavedAndDetachedWithoutFailure) {
  {
    const auto addIn = ProgramFolder::OfThisRun().Module().Create();
    const auto form = FormOf(addIn);
    EXPECT_EQ(form->putref_FormParent(Offer({}).Get()), S_OK);
    EXPECT_EQ(form->putref_ObjectParent(Offer({}).Get()), S_OK);
    EXPECT_EQ(form->LoadDefaults(), S_OK);
    EXPECT_EQ(form->SaveChanges(), S_OK);
    EXPECT_EQ(form->putref_ObjectParent(nullptr), S_OK);
  }
  EXPECT_EQ(OfferedObjectsAlive(), 0);
}

}  // namespace
}  // namespace zolvane
