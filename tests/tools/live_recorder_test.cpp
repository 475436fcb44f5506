#include "tools/kpf/recording/live_recorder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "format/kpf_layout.h"

namespace {

using namespace KPF_TOOL;
using State = LiveFrame::State;
namespace layout = KPF_FORMAT::FRAME_HEADER;

constexpr std::uint64_t kStart = 1700000000000000000;
constexpr std::size_t kRecordSize = 17;  // of one pixel, which is the frame's letter

/// Plays a script, one letter a frame at 10 frames/s: a good one, '.' an id that never comes, '!'
/// an incomplete frame, '_' a wait in which nothing comes, '<' the frame before the last good one
/// once more.
class ScriptedCamera : public LiveSource {
 public:
  explicit ScriptedCamera(std::string script, std::uint64_t firstId = 1)
      : script_(std::move(script)), id_(firstId) {}

  LiveFrame next() override {
    while (at_ < script_.size() && script_[at_] == '.') count();
    if (at_ == script_.size()) return make(State::kEnd);
    switch (script_[at_]) {
      case '_':
        ++at_;
        return make(State::kNone);
      case '!':
        count();
        return make(State::kIncomplete);
      case '<':
        ++at_;
        return good(id_ - 2, 'x');
      default: {
        const LiveFrame frame = good(id_, script_[at_]);
        count();
        return frame;
      }
    }
  }
  unsigned waiting() const override { return waiting_; }
  void letWait(unsigned frames) { waiting_ = frames; }

 private:
  LiveFrame make(State state) const {
    LiveFrame frame;
    frame.state = state;
    frame.id = 4711;  // of whatever the buffer held before
    return frame;
  }
  LiveFrame good(std::uint64_t id, char letter) {
    LiveFrame frame = make(State::kGood);
    frame.id = id > 65535 ? id - 65535 : id;
    frame.cameraTime = 1000 + id * 100000000;
    frame.arrival = kStart + id * 100000000;
    record_.back() = static_cast<unsigned char>(letter);
    frame.record = record_.data();
    return frame;
  }
  void count() {
    ++at_;
    ++id_;
  }

  std::string script_;
  std::size_t at_ = 0;
  std::uint64_t id_;
  unsigned waiting_ = 0;
  std::array<unsigned char, kRecordSize> record_{};
};

/// Writes down what it is given: a letter for a record, '-' for a placeholder, brackets around each
/// recording.
class ListeningSink : public ClipSink {
 public:
  void begin() override { text += '['; }
  void add(unsigned char* record) override {
    text += static_cast<char>(record[layout::kSize]);
    times.push_back(KPF_FORMAT::load(record, layout::kSeconds) * 1000000 +
                    KPF_FORMAT::load(record, layout::kMicroseconds));
  }
  void addPlaceholder() override { text += '-'; }
  void end() override { text += ']'; }

  std::string text;
  std::vector<std::uint64_t> times;  // microseconds
};

/// Fires at frames of one letter, or at a wait.
class LetterTrigger : public Trigger {
 public:
  explicit LetterTrigger(char letter) : letter_(letter) {}
  bool fires(const unsigned char* pixels) override {
    return pixels == nullptr ? letter_ == '_' : *pixels == static_cast<unsigned char>(letter_);
  }
  void arm() override { ++armed; }

  int armed = 0;

 private:
  char letter_;
};

class LiveRecorderTest : public testing::Test {
 protected:
  LiveRecorderTest() {
    plan_.rate = 10;
    plan_.recordSize = kRecordSize;
  }

  std::string record(ScriptedCamera camera) {
    camera.letWait(waiting_);
    LiveRecorder recorder(camera, sink_, plan_);
    recorder.run([this] { return ++asked_ > stopAt_; }, [] {});
    tally_ = recorder.tally();
    return sink_.text;
  }
  std::string recordAround(char letter, std::uint64_t before, ScriptedCamera camera) {
    LetterTrigger trigger(letter);
    plan_.trigger = &trigger;
    plan_.before = before;
    return record(std::move(camera));
  }
  void expectTally(std::uint64_t received, std::uint64_t lost, std::uint64_t incomplete,
                   std::uint64_t late = 0) {
    EXPECT_EQ(tally_.received, received);
    EXPECT_EQ(tally_.lost, lost);
    EXPECT_EQ(tally_.incomplete, incomplete);
    EXPECT_EQ(tally_.late, late);
  }

  LivePlan plan_;
  ListeningSink sink_;
  LiveTally tally_;
  unsigned waiting_ = 0;
  int asked_ = 0;
  int stopAt_ = 1000000;
};

TEST_F(LiveRecorderTest, EveryGoodFrameBecomesARecord) {
  EXPECT_EQ(record(ScriptedCamera("abc")), "[abc]");
  expectTally(3, 0, 0);
}

TEST_F(LiveRecorderTest, TimesAreTheCameras) {
  record(ScriptedCamera("ab.c"));
  const std::uint64_t first = kStart / 1000 + 100000;
  EXPECT_EQ(sink_.times, (std::vector<std::uint64_t>{first, first + 100000, first + 300000}));
}

TEST_F(LiveRecorderTest, SkippedIdsKeepTheirPlaces) {
  EXPECT_EQ(record(ScriptedCamera("a..b.c")), "[a--b-c]");
  expectTally(3, 3, 0);
}

TEST_F(LiveRecorderTest, IncompleteFramesKeepTheirPlaces) {
  EXPECT_EQ(record(ScriptedCamera("a!b!.c")), "[a-b--c]");
  expectTally(3, 1, 2);
}

TEST_F(LiveRecorderTest, IncompleteFramesBeforeTheFirstGoodOneToo) {
  EXPECT_EQ(record(ScriptedCamera("!!ab")), "[--ab]");
  expectTally(2, 0, 2);
}

TEST_F(LiveRecorderTest, AndThoseBehindTheLastOne) {
  EXPECT_EQ(record(ScriptedCamera("ab!!")), "[ab--]");
  expectTally(2, 0, 2);
}

TEST_F(LiveRecorderTest, IdsBeginAgain) {
  EXPECT_EQ(record(ScriptedCamera("abc.d", 65533)), "[abc-d]");
  expectTally(4, 1, 0);
}

TEST_F(LiveRecorderTest, AFrameBehindItsSuccessorIsLate) {
  EXPECT_EQ(record(ScriptedCamera("a.b<c")), "[a-bc]");
  expectTally(3, 1, 0, 1);
}

TEST_F(LiveRecorderTest, WaitingIsNoLoss) {
  EXPECT_EQ(record(ScriptedCamera("a__b_")), "[ab]");
  expectTally(2, 0, 0);
}

TEST_F(LiveRecorderTest, WithoutAGoodFrameNothingIsBegun) {
  EXPECT_EQ(record(ScriptedCamera("!!_")), "");
  expectTally(0, 0, 0);
}

TEST_F(LiveRecorderTest, TheLimitCountsPlaceholders) {
  plan_.limit.frames = 4;
  EXPECT_EQ(record(ScriptedCamera("a..bcd")), "[a--b]");
  expectTally(2, 2, 0);
}

TEST_F(LiveRecorderTest, TheLimitMayLieInsideAGap) {
  plan_.limit.frames = 2;
  EXPECT_EQ(record(ScriptedCamera("a..bcd")), "[a-]");
  expectTally(1, 1, 0);
}

TEST_F(LiveRecorderTest, ALimitOfTimeEndsBeforeTheFrameThatIsTooLate) {
  plan_.limit.nanoseconds = 300000000;
  EXPECT_EQ(record(ScriptedCamera("abcdef")), "[abc]");
  expectTally(3, 0, 0);
}

TEST_F(LiveRecorderTest, AWishToStopLeavesWhatIsThere) {
  stopAt_ = 2;
  EXPECT_EQ(record(ScriptedCamera("abcd")), "[ab]");
}

TEST_F(LiveRecorderTest, AWishToStopEndsAGapWithoutItsFrame) {
  stopAt_ = 4;
  EXPECT_EQ(record(ScriptedCamera("a.........b")), "[a--]");
}

TEST_F(LiveRecorderTest, NothingIsWrittenBeforeTheTrigger) {
  EXPECT_EQ(recordAround('x', 2, ScriptedCamera("abcdef")), "");
  expectTally(6, 0, 0);
}

TEST_F(LiveRecorderTest, TheRecordsBeforeTheTriggerComeFirst) {
  EXPECT_EQ(recordAround('d', 2, ScriptedCamera("abcdefg")), "[bcdefg]");
}

TEST_F(LiveRecorderTest, EvenNoneMayBeKept) {
  EXPECT_EQ(recordAround('d', 0, ScriptedCamera("abcdef")), "[def]");
}

TEST_F(LiveRecorderTest, LossesBeforeTheTriggerKeepTheirPlaces) {
  EXPECT_EQ(recordAround('d', 4, ScriptedCamera("abc.!def")), "[bc--def]");
  expectTally(6, 1, 1);
}

TEST_F(LiveRecorderTest, ATriggerNeedsNoFrame) {
  EXPECT_EQ(recordAround('_', 2, ScriptedCamera("abc_")), "[bc]");
}

TEST_F(LiveRecorderTest, AfterTheTriggerTheLimitCounts) {
  plan_.limit.frames = 3;
  EXPECT_EQ(recordAround('d', 2, ScriptedCamera("abcdefghi")), "[bcdef]");
}

TEST_F(LiveRecorderTest, TheLimitOfTimeCountsFromTheTrigger) {
  plan_.limit.nanoseconds = 200000000;
  EXPECT_EQ(recordAround('d', 2, ScriptedCamera("abcdefghi")), "[bcde]");
}

TEST_F(LiveRecorderTest, WhatIsHeldIsWrittenInTheEnd) {
  waiting_ = 5;  // there is never time to catch up
  stopAt_ = 5;
  EXPECT_EQ(recordAround('d', 3, ScriptedCamera("abcdefghi")), "[abcde]");
}

TEST_F(LiveRecorderTest, OrderHoldsWhileTheRingIsWritten) {
  waiting_ = 5;
  EXPECT_EQ(recordAround('g', 6, ScriptedCamera("abcdefghij.klmnop")), "[abcdefghij-klmnop]");
}

TEST_F(LiveRecorderTest, AgainWaitsForTheNextTrigger) {
  plan_.limit.frames = 2;
  plan_.again = true;
  EXPECT_EQ(recordAround('x', 1, ScriptedCamera("abxcdefxgh")), "[bxc][fxg]");
}

TEST_F(LiveRecorderTest, WhatWasRecordedIsNotHeldForTheNextOne) {
  plan_.limit.frames = 2;
  plan_.again = true;
  EXPECT_EQ(recordAround('x', 3, ScriptedCamera("abxcxdef")), "[abxc][xd]");
}

TEST_F(LiveRecorderTest, AFrameBehindTheLimitOfTimeMayTrigger) {
  plan_.limit.nanoseconds = 200000000;
  plan_.again = true;
  EXPECT_EQ(recordAround('x', 1, ScriptedCamera("axbxc")), "[axb][xc]");
}

TEST_F(LiveRecorderTest, TheTriggerIsArmedBehindEachRecording) {
  LetterTrigger trigger('x');
  plan_.trigger = &trigger;
  plan_.limit.frames = 1;
  plan_.again = true;
  EXPECT_EQ(record(ScriptedCamera("axbx")), "[x][x]");
  EXPECT_EQ(trigger.armed, 2);
}

TEST_F(LiveRecorderTest, EveryPlaceIsCountedOnce) {
  const std::string script = "ab!c..d!!.efg.!h<i____j";
  const std::string text = record(ScriptedCamera(script, 65530));
  EXPECT_EQ(text, "[ab-c--d---efg--hij]");
  EXPECT_EQ(tally_.received + tally_.lost + tally_.incomplete, text.size() - 2);
}

TEST_F(LiveRecorderTest, WhatCameBeforeAnErrorIsRecorded) {
  class Breaking : public ScriptedCamera {
   public:
    using ScriptedCamera::ScriptedCamera;
    LiveFrame next() override {
      const LiveFrame frame = ScriptedCamera::next();
      if (frame.state == State::kEnd) throw std::runtime_error("the input breaks");
      return frame;
    }
  };
  Breaking camera("abc");
  LiveRecorder recorder(camera, sink_, plan_);
  EXPECT_THROW(recorder.run([] { return false; }, [] {}), std::runtime_error);
  EXPECT_EQ(sink_.text, "[abc]");
}

TEST_F(LiveRecorderTest, TheSystemsClockMayJumpWithoutALoss) {
  // An hour ahead between two frames whose ids and camera times follow each other.
  class Jumping : public ScriptedCamera {
   public:
    using ScriptedCamera::ScriptedCamera;
    LiveFrame next() override {
      LiveFrame frame = ScriptedCamera::next();
      if (++count_ > 1) frame.arrival += 3600000000000;
      return frame;
    }

   private:
    int count_ = 0;
  };
  plan_.rate = 1000;
  Jumping camera("abc");
  LiveRecorder recorder(camera, sink_, plan_);
  recorder.run([] { return false; }, [] {});
  EXPECT_EQ(sink_.text, "[abc]");
}

}  // namespace
