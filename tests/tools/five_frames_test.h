// A small recording for tests to look at and to damage.
#ifndef TESTS_TOOLS_FIVE_FRAMES_TEST_H
#define TESTS_TOOLS_FIVE_FRAMES_TEST_H

#include <gtest/gtest.h>

#include <string>

#include "tests/support/files.h"
#include "vlm_internal.h"

/// Five frames of 4 x 2 pixels at 8 bits, 25 a second, sound as the library leaves them.
class FiveFramesTest : public testing::Test {
 protected:
  FiveFramesTest() {
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.width = 4;
    configuration.height = 2;
    configuration.bitsPerPixel = 8;
    configuration.frameRate = 25;
    configuration.frameCount = 5;
    configuration.startSeconds = 1700000000;
    const unsigned stream = vxCreatePackStreamer(header_, configuration);
    const unsigned char image[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    for (int n = 0; n < 5; ++n) vxAddTiffImageData(stream, image);
    vxClosePackStreamer(stream);
  }

  TEST_SUPPORT::TemporaryFolder folder_;
  const std::string header_ = folder_ / "clip.kpf";
};

#endif
