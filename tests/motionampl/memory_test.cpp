// Who owns a frame, and what is left when memory runs out.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

#include "tests/motionampl/frames.h"
#include "tests/motionampl/watched_memory.h"
#include "tests/support/library_test.h"

namespace {

using namespace TEST_MOTIONAMPL;
using VLM_KPF::VxKPFMotionAmpl;

/// Memory is out for as long as it lives.
struct OutOfMemory {
  OutOfMemory() { watchedMemory.refusing = true; }
  ~OutOfMemory() { watchedMemory.refusing = false; }
};

class FrameOwnership : public TEST_SUPPORT::LibraryTest {
 protected:
  FrameOwnership() {
    watchedMemory = {};
    amplifier->setParameters(25.0, 20.0, 2, 1, 3.0);
  }
  ~FrameOwnership() override { watchedMemory.block = nullptr; }

  void addWatched() {
    unsigned char* const frame = newFrame({10, 200});
    watchedMemory.block = frame;
    amplifier->addFrame(frame);
  }

  void expectReleasedOnce() {
    EXPECT_EQ(watchedMemory.releases, 1);
    EXPECT_EQ(watchedMemory.otherReleases, 0);
    watchedMemory.block = nullptr;
  }

  std::unique_ptr<VxKPFMotionAmpl> amplifier = std::make_unique<VxKPFMotionAmpl>();
};

TEST_F(FrameOwnership, FrameIsKeptItselfUntilItLeavesTheWindow) {
  addWatched();
  EXPECT_EQ(amplifier->frames.front(), watchedMemory.block);
  add(*amplifier, {1, 2});
  EXPECT_EQ(watchedMemory.releases, 0);
  add(*amplifier, {3, 4});
  expectReleasedOnce();
}

TEST_F(FrameOwnership, ResetReleases) {
  addWatched();
  amplifier->reset();
  expectReleasedOnce();
}

TEST_F(FrameOwnership, NewParametersRelease) {
  addWatched();
  amplifier->setParameters(25.0, 20.0, 2, 1, 3.0);
  expectReleasedOnce();
}

TEST_F(FrameOwnership, DestructionReleases) {
  addWatched();
  amplifier.reset();
  expectReleasedOnce();
}

TEST_F(FrameOwnership, FailedParametersDoNotRelease) {
  addWatched();
  EXPECT_THROW(amplifier->setParameters(25.0, 20.0, -2, 1, 3.0), std::length_error);
  EXPECT_EQ(watchedMemory.releases, 0);
}

TEST_F(FrameOwnership, ParametersWithoutMemoryForTheSumsKeepFramesAndSums) {
  addWatched();
  {
    const OutOfMemory outOfMemory;
    EXPECT_THROW(amplifier->setParameters(30.0, 10.0, 2, 1, 5.0), std::bad_alloc);
  }
  EXPECT_EQ(watchedMemory.releases, 0);
  EXPECT_EQ(amplifier->refWindowSize, 9);
  EXPECT_EQ(amplifier->ampFactor, 5.0);
  EXPECT_EQ(*amplifier->summer, (std::vector<std::uint32_t>{10, 200}));
}

TEST_F(FrameOwnership, FrameThatTheQueueHasNoRoomForStaysTheCallers) {
  amplifier->setParameters(-25.0, 1.0, 2, 1, 3.0);  // no frame leaves: the queue has to grow
  std::vector<unsigned char*> spare(2000);
  for (unsigned char*& frame : spare) frame = newFrame({1, 2});
  std::size_t taken = 0;
  bool refused = false;
  while (!refused && taken < spare.size()) {
    const OutOfMemory outOfMemory;
    try {
      amplifier->addFrame(spare[taken]);
      ++taken;
    } catch (const std::bad_alloc&) {
      refused = true;
    }
  }
  ASSERT_TRUE(refused);
  EXPECT_EQ(amplifier->frames.size(), taken);
  EXPECT_EQ(amplifier->summer->front(), taken);
  EXPECT_EQ(amplifier->summer->back(), 2 * taken);
  for (std::size_t i = taken; i < spare.size(); ++i) ::operator delete(spare[i]);
}

TEST_F(FrameOwnership, AmplifyingWithoutMemoryThrowsAndChangesNothing) {
  amplifier->setParameters(25.0, 20.0, 64, 64, 3.0);  // too small for a spare block
  const Samples frame(64 * 64, 90);
  add(*amplifier, frame);
  add(*amplifier, frame);
  Samples out(frame.size(), 77);
  {
    const OutOfMemory outOfMemory;
    EXPECT_THROW(amplifier->amplifyFrame(out.data()), std::bad_alloc);
  }
  EXPECT_EQ(out, Samples(frame.size(), 77));
  EXPECT_TRUE(amplifier->mutex.try_lock());
  amplifier->mutex.unlock();
  EXPECT_EQ(amplifiedBy(*amplifier, frame.size()), Samples(frame.size(), 180));
}

}  // namespace
