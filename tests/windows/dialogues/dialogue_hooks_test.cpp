// Hooks between the module and the system's boxes and dialogues, from their making to their end.
#include "bench/windows/play/dialogue_hooks.h"

#include <gtest/gtest.h>

#include <vector>

#include "bench/windows/play/imports.h"
#include "windows/support/dialogue_spectator.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

HMODULE Module() {
  return ProgramFolder::OfThisRun().Module().Module();
}

// Which of the system's three functions the module calls directly, in a fixed order.
std::vector<bool> DirectCalls() {
  std::vector<bool> calls;
  for (const auto function :
       {SystemFunction(L"user32.dll", "MessageBoxW"), SystemFunction(L"comdlg32.dll", "GetOpenFileNameW"),
        SystemFunction(L"comdlg32.dll", "GetSaveFileNameW")}) {
    calls.push_back(ReplaceImport(Module(), function, function));
  }
  return calls;
}

TEST(DialogueHooks, TheModuleCallsTheSystemAgainAfterTheirEnd) {
  const std::vector<bool> all{true, true, true};
  const std::vector<bool> none{false, false, false};
  ASSERT_EQ(DirectCalls(), all);
  DialogueSpectator user;
  for (int time = 0; time < 2; ++time) {
    {
      const DialogueHooks hooks{Module(), nullptr, user};
      EXPECT_EQ(DirectCalls(), none);
    }
    EXPECT_EQ(DirectCalls(), all);
  }
}

}  // namespace
}  // namespace zolvane
