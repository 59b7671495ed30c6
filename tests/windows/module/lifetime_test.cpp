// What objects of the module leave behind, and how long the module stays.
#include <gtest/gtest.h>

#include <add_in.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <sstream>
#include <thread>
#include <vector>

#include "bench/host/bench_host.h"
#include "bench/windows/com/com_session.h"
#include "bench/windows/com/offered_host.h"
#include "bench/windows/com/offered_object.h"
#include "bench/windows/com/offered_settings.h"
#include "files/file_settings_service.h"
#include "instrument/links/link_factory.h"
#include "support/long_tests.h"
#include "win32/com_object.h"
#include "win32/unique_handle.h"
#include "windows/module/memory_balance.h"
#include "windows/support/add_in_use.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

// ---- Counters of the system that count

BOOL CALLBACK CountWindow(HWND, LPARAM count) {
  ++*reinterpret_cast<int*>(count);
  return TRUE;
}

int Windows() {
  int count = 0;
  EnumThreadWindows(GetCurrentThreadId(), CountWindow, reinterpret_cast<LPARAM>(&count));
  return count;
}

int Handles() {
  constexpr ULONG_PTR highest = 0x8000;
  int count = 0;
  for (ULONG_PTR handle = 4; handle < highest; handle += 4) {
    DWORD flags = 0;
    count += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) ? 1 : 0;
  }
  return count;
}

int FreeThreadSlots() {
  std::vector<DWORD> taken;
  for (DWORD slot = TlsAlloc(); slot != TLS_OUT_OF_INDEXES; slot = TlsAlloc()) {
    taken.push_back(slot);
  }
  for (const auto slot : taken) {
    TlsFree(slot);
  }
  return static_cast<int>(taken.size());
}

// Entries in use of the table of drawing objects, which every process finds through its environment block.
int DrawingObjects() {
  constexpr std::size_t tableOffset = sizeof(void*) == 8 ? 0xF8 : 0x94;
  constexpr std::size_t entries = 0x4000;
  constexpr std::size_t entrySize = 24;
  constexpr std::size_t typeOffset = 14;  // 0 in a free entry
  using Function = const unsigned char* NTAPI();
  auto* const environmentBlock = reinterpret_cast<Function*>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetCurrentPeb")));
  const unsigned char* table = nullptr;
  std::memcpy(static_cast<void*>(&table), environmentBlock() + tableOffset, sizeof(table));
  int count = 0;
  for (std::size_t entry = 0; table != nullptr && entry < entries; ++entry) {
    count += table[entry * entrySize + typeOffset] != 0 ? 1 : 0;
  }
  return count;
}

struct Counters {
  int Windows_ = Windows();
  int Handles_ = Handles();
  int FreeThreadSlots_ = FreeThreadSlots();
  int DrawingObjects_ = DrawingObjects();
  bool operator==(const Counters&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Counters& counters) {
  return out << "windows " << counters.Windows_ << ", handles " << counters.Handles_ << ", free slots "
             << counters.FreeThreadSlots_ << ", drawing objects " << counters.DrawingObjects_;
}

TEST(Lifetime, TheCountersSeeWhatIsLeftOpen) {
  const Counters before;
  const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  const HBRUSH brush = CreateSolidBrush(0x123456);
  const HWND window =
      CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
  const DWORD slot = TlsAlloc();
  const Counters during;
  EXPECT_GT(during.Handles_, before.Handles_);
  EXPECT_GT(during.DrawingObjects_, before.DrawingObjects_);
  EXPECT_GT(during.Windows_, before.Windows_);
  EXPECT_LT(during.FreeThreadSlots_, before.FreeThreadSlots_);
  TlsFree(slot);
  DestroyWindow(window);
  DeleteObject(brush);
  CloseHandle(event);
}

TEST(Lifetime, TheCountOfMemorySeesSmallAllocations) {
  constexpr int size = 16;
  using Block = std::array<char, size>;
  std::vector<std::unique_ptr<Block>> kept(1000);
  const MemoryBalance memory;
  for (auto& block : kept) {
    block = std::make_unique<Block>();
  }
  EXPECT_EQ(memory.Bytes(), size * std::ssize(kept));
  kept[0] = nullptr;
  EXPECT_EQ(memory.Bytes(), size * (std::ssize(kept) - 1));
  kept.clear();
  EXPECT_EQ(memory.Bytes(), 0);
}

TEST(Lifetime, TheCountOfMemorySeesWhicheverWayItIsAllocated) {
  constexpr int size = 1000;
  const MemoryBalance memory;
  const auto growth = [](const auto& allocate) {
    const auto before = MemoryBalance::Bytes();
    allocate();
    return MemoryBalance::Bytes() - before;
  };
  void* block = nullptr;
  EXPECT_EQ(growth([&] { block = HeapAlloc(GetProcessHeap(), 0, size); }), size);
  EXPECT_EQ(growth([&] { block = HeapReAlloc(GetProcessHeap(), 0, block, std::size_t{3} * size); }),
            2 * size);
  EXPECT_EQ(growth([&] { HeapFree(GetProcessHeap(), 0, block); }), -3 * size);
  HLOCAL local = nullptr;
  EXPECT_GE(growth([&] { local = LocalAlloc(LMEM_FIXED, size); }), size);
  EXPECT_LE(growth([&] { LocalFree(local); }), -size);
  void* task = nullptr;
  EXPECT_GE(growth([&] { task = CoTaskMemAlloc(size); }), size);
  EXPECT_LE(growth([&] { CoTaskMemFree(task); }), -size);
  UniqueBstr text;
  EXPECT_GE(growth([&] { *text.Put() = SysAllocStringByteLen(nullptr, size); }), size);
  ComPtr<IAddIn> addIn;
  EXPECT_GT(growth([&] { addIn = Module().Create(); }), 0);
}

TEST(Lifetime, TheCountOfMemorySeesWhatWasAllocatedBeforeAndIsFreed) {
  constexpr int size = 1000;
  void* const block = HeapAlloc(GetProcessHeap(), 0, size);
  const MemoryBalance memory;
  HeapFree(GetProcessHeap(), 0, block);
  EXPECT_EQ(memory.Bytes(), -size);
}

// What the host has: its object, its window and its settings-file service.
class Host {
 public:
  ComPtr<IDispatch> Object() { return OfferHostObject(host_.Object()); }
  ComPtr<IDispatch> Window() { return OfferHostWindow(host_.Window()); }

 private:
  BenchHost::Setup setup_{.Folder = ProgramFolder::OfThisRun().Text()};
  std::ostringstream unread_;
  Console console_{unread_, unread_, {.IsQuiet = true, .ResultsGoToNotes = false, .NotesWidth = {}}};
  InterruptFlag interrupt_;
  BenchHost host_{setup_, CreateLink("none", 5, interrupt_), nullptr, console_};
};

void CreateAndRelease() {
  const auto addIn = Module().Create();
  EXPECT_TRUE(FormOf(addIn));
}

void PlayWholeSession(Host& host) {
  const ComSession session{Module().Create(), host.Object(), host.Window()};
  EXPECT_EQ(session.Caption(), "Zolvane Setup");
}

// Warms up until everything is made that is made once and kept; then runs the session `count` times.
template <class Session>
void ExpectNothingLeftBehind(int count, const Session& session) {
  constexpr int warmUp = 20;
  for (int run = 0; run < warmUp; ++run) {
    session();
  }
  const Counters before;
  const MemoryBalance memory;
  for (int run = 0; run < count; ++run) {
    session();
  }
  EXPECT_EQ(memory.Bytes(), 0);
  EXPECT_EQ(Counters{}, before);
  EXPECT_EQ(OfferedObjectsAlive(), 0);
  EXPECT_EQ(OfferedServicesAlive(), 0);
  EXPECT_EQ(Module().CanUnloadNow(), S_OK);
}

class Lifetimes : public testing::Test {
 protected:
  Lifetimes() { Store(folder_.Configuration(), SampleFileText()); }

 private:
  const ProgramFolder& folder_ = ProgramFolder::OfThisRun();  // COM is in use from here on
  const OfferedSettings settings_{[] { return std::make_shared<FileSettingsService>(); }};
};

TEST_F(Lifetimes, HundredsOfObjectsLeaveNothingBehind) {
  ExpectNothingLeftBehind(TriesAll() ? 1000 : 200, CreateAndRelease);
}

TEST_F(Lifetimes, AHundredWholeSessionsLeaveNothingBehind) {
  Host host;
  ExpectNothingLeftBehind(100, [&] { PlayWholeSession(host); });
}

// A script of the host may hold the add-in longer than the host shows its page.
TEST_F(Lifetimes, ASessionThatEndsTakesThePageFromWhoeverStillHoldsTheAddIn) {
  Host host;
  const auto held = Module().Create();
  HWND frame = nullptr;
  {
    const ComSession session{held, host.Object(), host.Window()};
    frame = session.Frame();
    EXPECT_TRUE(IsWindow(frame));
  }
  EXPECT_FALSE(IsWindow(frame));
}

TEST(Lifetime, SessionsWithoutASettingsServiceLeaveNothingBehind) {
  if (sizeof(void*) == 8) {
    GTEST_SKIP()
        << "Wine itself leaves two handles open whenever a class of another program is asked for in vain";
  }
  Host host;
  ExpectNothingLeftBehind(20, [&] { PlayWholeSession(host); });
}

TEST(Lifetime, TheModuleStaysWhileAnObjectIsHeld) {
  EXPECT_EQ(Module().CanUnloadNow(), S_OK);
  auto addIn = Module().Create();
  EXPECT_EQ(Module().CanUnloadNow(), S_FALSE);
  auto form = FormOf(addIn);
  addIn.Reset();
  EXPECT_EQ(Module().CanUnloadNow(), S_FALSE);
  form.Reset();
  EXPECT_EQ(Module().CanUnloadNow(), S_OK);
}

TEST(Lifetime, ALockedServerStaysWithoutObjects) {
  ComPtr<IClassFactory> factory;
  ASSERT_EQ(Module().GetClassObject(__uuidof(::Connect), IID_IClassFactory, factory.PutVoid()), S_OK);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  EXPECT_EQ(Module().CanUnloadNow(), S_FALSE);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  factory.Reset();
  EXPECT_EQ(Module().CanUnloadNow(), S_OK);
}

TEST(Lifetime, TheClassFactoryRefusesWhatItDoesNotMake) {
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(Module().GetClassObject(IID_IDispatch, IID_IClassFactory, factory.PutVoid()),
            CLASS_E_CLASSNOTAVAILABLE);
  ASSERT_EQ(Module().GetClassObject(__uuidof(::Connect), IID_IClassFactory, factory.PutVoid()), S_OK);
  ComPtr<IDispatch> object;
  EXPECT_EQ(factory->CreateInstance(factory.Get(), IID_IDispatch, object.PutVoid()), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IPersist, object.PutVoid()), E_NOINTERFACE);
  EXPECT_EQ(Module().CanUnloadNow(), S_FALSE);
}

TEST(Lifetime, ThePageOfOneThreadIsOneObject) {
  const auto first = Module().Create();
  const auto second = Module().Create();
  EXPECT_EQ(FormOf(first).Get(), FormOf(second).Get());
}

TEST(Lifetime, EachThreadHasAPageOfItsOwn) {
  const auto addIn = Module().Create();
  const auto form = FormOf(addIn);
  long here = 0;
  form->get_hwnd(&here);
  long there = 0;
  std::thread{[&there] {
    OleInitialize(nullptr);
    {
      const auto other = Module().Create();
      FormOf(other)->get_hwnd(&there);
    }
    OleUninitialize();
  }}.join();
  EXPECT_NE(here, 0);
  EXPECT_NE(there, 0);
  EXPECT_NE(here, there);
}

// ---- Errors ----

// Knows every name; each use raises an error that has much to say.
class RaisingObject final : public ComObject<RaisingObject, IDispatch> {
 public:
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* ids) override {
    *ids = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO* exception,
                                   UINT*) override {
    exception->scode = E_ACCESSDENIED;
    exception->bstrSource = SysAllocStringLen(nullptr, 1000);
    exception->bstrDescription = SysAllocStringLen(nullptr, 2000);
    exception->bstrHelpFile = SysAllocStringLen(nullptr, 3000);
    return DISP_E_EXCEPTION;
  }
};

TEST(Lifetime, TheTextsOfAnErrorThatAMemberRaisesAreNotKept) {
  const auto addIn = Module().Create();
  const auto form = FormOf(addIn);
  const auto window = RaisingObject::Make();
  const auto use = [&] {
    for (int time = 0; time < 50; ++time) {
      EXPECT_EQ(form->putref_FormParent(window.Get()), S_OK);
      EXPECT_EQ(form->SaveChanges(), S_OK);
    }
  };
  use();
  const MemoryBalance memory;
  use();
  EXPECT_EQ(memory.Bytes(), 0);
}

}  // namespace
}  // namespace zolvane
