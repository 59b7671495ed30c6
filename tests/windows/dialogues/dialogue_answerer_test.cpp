// The user of these tests, who runs in a thread of its own.
#include "bench/windows/play/dialogue_answerer.h"

#include <gtest/gtest.h>

namespace zolvane {
namespace {

void LetTimePass(int microseconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds{microseconds};
  while (std::chrono::steady_clock::now() < end) {
  }
}

// The thread is asked to end while it starts, while it begins to wait, and while it waits. If it missed that,
// the test would wait for ever.
TEST(DialogueAnswerer, EndsAtWhateverMomentItIsToldTo) {
  for (int round = 0; round < 2000; ++round) {
    const DialogueAnswerer user;
    LetTimePass(round % 400);
  }
}

// With no box to answer it looks again and again, and ends from there as well.
TEST(DialogueAnswerer, EndsWithWorkLeftToDo) {
  for (int round = 0; round < 500; ++round) {
    DialogueAnswerer user;
    user.PressButton(IDOK);
    LetTimePass(round % 400);
  }
}

}  // namespace
}  // namespace zolvane
