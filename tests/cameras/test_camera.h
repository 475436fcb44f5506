// A GigE Vision camera on the loopback that sends what the tests know.
#ifndef TESTS_CAMERAS_TEST_CAMERA_H
#define TESTS_CAMERAS_TEST_CAMERA_H

#include <arv.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>

#include "tests/support/files.h"

namespace TEST_SUPPORT {

/// Aravis' own camera, with Mono12Packed and the other formats of grey beside those that it has.
/// There is one port for all of them on a machine, so one at a time waits for the other, whatever
/// process it is in.
class TestCamera {
 public:
  /// @param lostPackets in a thousand.
  explicit TestCamera(double lostPackets = 0);
  ~TestCamera();
  TestCamera(const TestCamera&) = delete;
  TestCamera& operator=(const TestCamera&) = delete;

  /// The camera's time of each frame that it made, by its id.
  std::map<std::uint64_t, std::uint64_t> times() const;

 private:
  static void fill(ArvBuffer* buffer, void* self, guint32, guint32, ArvPixelFormat);

  int lock_;
  TemporaryFolder folder_;
  mutable std::mutex mutex_;  // the camera has a thread of its own
  std::map<std::uint64_t, std::uint64_t> times_;
  ArvGvFakeCamera* camera_;
};

/// The bytes of the frame of an id: the id, little-endian, in every first two of 16, so that no two
/// frames are alike anywhere.
Bytes framePattern(std::uint64_t id, std::size_t size);

}  // namespace TEST_SUPPORT

#endif
