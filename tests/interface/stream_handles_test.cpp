// What every stream function does with its handle.
#include <functional>
#include <stdexcept>
#include <string>

#include "interface/vlm_internal_tables.h"
#include "tests/support/library_test.h"
#include "vlm_internal.h"

namespace {

using VLM_INTERNAL::streamVector;

struct Function {
  const char* name;
  std::function<int(unsigned)> call;
};

const unsigned char kImage[16] = {};
unsigned counts[3];

const Function kFunctions[] = {
    {"vxClosePackStreamer", vxClosePackStreamer},
    {"vxIsPackStreamerFinished", vxIsPackStreamerFinished},
    {"vxAddPlaceholder", vxAddPlaceholder},
    {"vxGetPackStatistics",
     [](unsigned h) { return vxGetPackStatistics(h, &counts[0], &counts[1], &counts[2]); }},
    {"vxAddPackedData", [](unsigned h) { return vxAddPackedData(h, kImage); }},
    {"vxAddTiffImageData", [](unsigned h) { return vxAddTiffImageData(h, kImage); }},
    {"vxReplaceFrame", [](unsigned h) { return vxReplaceFrame(h, 0, kImage); }},
};

class StreamHandles : public TEST_SUPPORT::LibraryTest {
 protected:
  unsigned create(const std::string& stem) {
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.frameCount = 1;
    return vxCreatePackStreamer(folder / (stem + ".kpf"), configuration);
  }

  void expectInvalid(const Function& function, unsigned handle, const std::string& printed) {
    output();
    EXPECT_EQ(function.call(handle), 10) << function.name;
    EXPECT_EQ(output(),
              std::string(function.name) + ": streamHandle (" + printed + ") is invalid!\n");
  }
};

TEST_F(StreamHandles, AreNumberedFromOneAndReusedLowestFirst) {
  EXPECT_EQ(create("a"), 1U);
  EXPECT_EQ(create("b"), 2U);
  EXPECT_EQ(create("c"), 3U);
  EXPECT_EQ(vxClosePackStreamer(2), 5);
  EXPECT_EQ(vxClosePackStreamer(1), 5);
  EXPECT_EQ(create("d"), 1U);
  EXPECT_EQ(create("e"), 2U);
  EXPECT_EQ(create("f"), 4U);
}

TEST_F(StreamHandles, ZeroIsLoggedAndRefused) {
  for (const Function& function : kFunctions) {
    output();
    EXPECT_EQ(function.call(0), 10) << function.name;
    EXPECT_EQ(output(), std::string(function.name) + ": streamHandle is 0!\n");
  }
}

TEST_F(StreamHandles, OutOfRangeIsLoggedAndRefused) {
  create("a");
  create("b");
  for (const Function& function : kFunctions) {
    expectInvalid(function, 4, "4");
    expectInvalid(function, 0x7FFFFFFF, "2147483647");
    expectInvalid(function, 0x80000000, "-2147483648");
    expectInvalid(function, 0xFFFFFFFF, "-1");
  }
}

TEST_F(StreamHandles, OneBehindTheLastThrowsAndLogsNothing) {
  create("a");
  create("b");
  output();
  for (const Function& function : kFunctions) {
    EXPECT_THROW(function.call(3), std::out_of_range) << function.name;
  }
  EXPECT_EQ(output(), "");
  EXPECT_EQ(streamVector.size(), 2U);
}

TEST_F(StreamHandles, FirstHandleThrowsWhileNoneWasIssued) {
  for (const Function& function : kFunctions) {
    EXPECT_THROW(function.call(1), std::out_of_range) << function.name;
  }
}

TEST_F(StreamHandles, ClosedOneIsLoggedAndRefused) {
  create("a");
  create("b");
  vxClosePackStreamer(1);
  for (const Function& function : kFunctions) expectInvalid(function, 1, "1");
}

TEST_F(StreamHandles, BadOneLeavesTheCountsUntouched) {
  unsigned configured = 1, packed = 2, written = 3;
  EXPECT_EQ(vxGetPackStatistics(0, &configured, &packed, &written), 10);
  EXPECT_EQ(configured, 1U);
  EXPECT_EQ(packed, 2U);
  EXPECT_EQ(written, 3U);
}

TEST_F(StreamHandles, FailedCreationIssuesNone) {
  create("a");
  output();
  EXPECT_EQ(vxCreatePackStreamer("nodot", {}), 0U);
  EXPECT_EQ(streamVector.size(), 1U);
  EXPECT_EQ(create("b"), 2U);
}

}  // namespace
