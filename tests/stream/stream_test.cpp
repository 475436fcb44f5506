#include "tests/stream/stream_test.h"

#include <algorithm>
#include <string>

using TEST_SUPPORT::Bytes;
using VX_KPF_PACKED::VxKPFPacked;

VLM_INTERNAL::VXP_STREAM_CONFIGURATION smallConfiguration(unsigned frameCount) {
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.width = 4;
  configuration.height = 2;
  configuration.bitsPerPixel = 12;
  configuration.frameRate = 1;
  configuration.frameCount = frameCount;
  configuration.startSeconds = 100;
  return configuration;
}

std::unique_ptr<VxKPFPacked> smallFrame(unsigned char fill) {
  auto frame = std::make_unique<VxKPFPacked>();
  const Bytes record(16 + 12, fill);
  frame->setPackedData(record.data(), 16 + 12, 4, 2, 12);
  frame->header.clear();
  return frame;
}

Bytes smallRecord(unsigned char number, unsigned char seconds, unsigned char fill) {
  Bytes record(16 + 12, fill);
  std::fill_n(record.begin(), 16, static_cast<unsigned char>(0));
  record[0] = number;
  record[4] = seconds;
  return record;
}

void StreamTest::prepare(unsigned frameCount) {
  ASSERT_EQ(stream.prepareForWriting(name, smallConfiguration(frameCount)), 3U);
}

Bytes StreamTest::divBytes(const std::string& number) const {
  return TEST_SUPPORT::readBytes(folder / ("rec/rec_" + number + ".div"));
}
