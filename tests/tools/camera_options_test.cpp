// What the texts of camera options say, and the line while it records.
#include <gtest/gtest.h>

#include "tools/kpf/cameras/region.h"
#include "tools/kpf/recording/live_status.h"
#include "tools/kpf/terminal/tool_error.h"

namespace {

using namespace KPF_TOOL;

TEST(RegionTest, HasASizeAndACorner) {
  const Region region = parseRegion("640x480+16+8");
  EXPECT_EQ(region.width, 640);
  EXPECT_EQ(region.height, 480);
  EXPECT_EQ(region.x, 16);
  EXPECT_EQ(region.y, 8);
  EXPECT_EQ(parseRegion("2x1").x, 0);
}

TEST(RegionTest, AnythingElseIsRefused) {
  for (const char* const text : {"", "640", "640x", "0x480", "640x480+1", "640x480+-1+0", "a"}) {
    EXPECT_THROW(parseRegion(text), ToolError) << text;
  }
}

TEST(LiveStatusTest, TellsHowItGoes) {
  LiveStatus status;
  status.frames = 412;
  status.received = 409;
  status.seconds = 4.09;
  status.rateWanted = 100;
  status.lost = 3;
  status.waiting = 1;
  status.mostWaiting = 7;
  status.buffers = 50;
  status.diskMinutes = 131.6;
  status.worstCall = 0.00124;
  EXPECT_EQ(liveText(status),
            "412 frames, 100.0 of 100 frames/s, 3 lost, 1 of 50 buffers waiting (most 7), disk for "
            "132 min, slowest write 1.2 ms");
}

TEST(LiveStatusTest, ArmedItTellsWhatIsHeld) {
  LiveStatus status;
  status.armed = true;
  status.held = 17;
  status.before = 250;
  status.motion = 4.257;
  EXPECT_EQ(liveText(status),
            "armed, 17 of 250 records held, motion 4.26, 0 lost, disk for 0 min, "
            "slowest write 0.0 ms");
}

}  // namespace
