// What the tests of the stream writer start from.
#ifndef TESTS_STREAM_STREAM_TEST_H
#define TESTS_STREAM_STREAM_TEST_H

#include <memory>
#include <string>

#include "packed/vx_kpf_packed.h"
#include "stream/vx_stream_kpf_packed.h"
#include "tests/support/library_test.h"

/// Frames of 4 x 2 pixels at 12 bits: 12 packed bytes, records of 28.
VLM_INTERNAL::VXP_STREAM_CONFIGURATION smallConfiguration(unsigned frameCount);

/// A frame whose 12 packed bytes all are `fill`; without a header.
std::unique_ptr<VX_KPF_PACKED::VxKPFPacked> smallFrame(unsigned char fill);

/// The record of such a frame: number, seconds and microseconds below 2^8, then the pixels.
TEST_SUPPORT::Bytes smallRecord(unsigned char number, unsigned char seconds, unsigned char fill);

constexpr const char* kStatusText =
#ifdef _WIN32
    "Packed stream is incomplete and was not fully processed.\r\n"
    "Please review log data for possible error conditions.\r\n"
    "Status:\r\n";
#else
    "Packed stream is incomplete and was not fully processed.\n"
    "Please review log data for possible error conditions.\n"
    "Status:\n";
#endif

class StreamTest : public TEST_SUPPORT::LibraryTest {
 protected:
  /// Prepares `stream` as rec.kpf in the test's folder.
  void prepare(unsigned frameCount);
  TEST_SUPPORT::Bytes divBytes(const std::string& number) const;

  const std::string name = folder / "rec.kpf";
  const std::string statusFile = name + ".incomplete.txt";
  VLM_KPF::VxKPFPackedStream stream;
};

#endif
