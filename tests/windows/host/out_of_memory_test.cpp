// Memory that runs out in each step of a session, at every allocation.
#include <gtest/gtest.h>

#include <hestrion_cmds.h>

#include <functional>
#include <new>
#include <vector>

#include "bench/windows/com/offered_settings.h"
#include "shell/windows/class_factory.h"
#include "shell/windows/page/page_layout.h"
#include "win32/guarded.h"
#include "win32/module_instance.h"
#include "win32/unique_handle.h"
#include "windows/host/counted_memory.h"
#include "windows/host/small_host.h"
#include "windows/support/add_in_use.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

using small_host::HostObjects;
using small_host::OneRecordEach;

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
        result = E_OUTOFMEMORY;  // of the test's own
      }
      hasRunOut = limited.HasRunOut();
    }
    EXPECT_TRUE(SUCCEEDED(result) || result == E_OUTOFMEMORY || result == E_FAIL)
        << "step " << step << ", " << allocations << " allocations: " << std::hex << result;
  }
  return hasRunOut;
}

class OutOfMemory : public testing::TestWithParam<std::size_t> {};

TEST_P(OutOfMemory, TheHostGoesOnAndNothingIsLeftBehind) {
  ProgramFolder::OfThisRun();  // brings COM along
  const OfferedSettings settings{[] { return std::make_shared<OneRecordEach>(); }};
  RunsOutIn(GetParam(), unlimitedAllocations);
  const long long before = AllocationsAlive();
  constexpr long long most = 4000;
  long long allocations = 0;
  while (allocations < most && RunsOutIn(GetParam(), allocations)) {
    allocations += allocations < 60 ? 1 : 17;
    ASSERT_EQ(AllocationsAlive(), before) << allocations;
    ASSERT_EQ(OfferedObjectsAlive(), 0) << allocations;
    ASSERT_EQ(OfferedServicesAlive(), 0) << allocations;
    ASSERT_FALSE(ModuleLock::IsHeld()) << allocations;
  }
}

TEST(GuardedCall, SaysOfWantOfMemoryThatItIsThat) {
  EXPECT_EQ(Guarded([]() -> HRESULT { throw std::bad_alloc{}; }), E_OUTOFMEMORY);
  EXPECT_EQ(Guarded([]() -> HRESULT { throw std::exception{}; }), E_UNEXPECTED);
  EXPECT_EQ(Guarded([] { return S_FALSE; }), S_FALSE);
}

INSTANTIATE_TEST_SUITE_P(StepOfASession, OutOfMemory, testing::Range<std::size_t>(0, 11));

}  // namespace
}  // namespace zolvane
