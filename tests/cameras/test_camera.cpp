#include "tests/cameras/test_camera.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace TEST_SUPPORT {
namespace {

int lockPort() {
  const auto file = std::filesystem::temp_directory_path() / "vlm_test_camera.lock";
  const int lock = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (lock < 0 || flock(lock, LOCK_EX) != 0) throw std::runtime_error("the port cannot be locked");
  return lock;
}

std::string builtInFeatures() {
  std::size_t size = 0;
  ArvFakeCamera* const camera = arv_fake_camera_new("XML");
  const char* const text = arv_fake_camera_get_genicam_xml(camera, &size);
  std::string xml(text, size);
  g_object_unref(camera);
  return xml;
}

std::string formatEntry(const char* name, std::uint32_t code) {
  return std::string("<EnumEntry Name=\"") + name + "\" NameSpace=\"Standard\"><Value>" +
         std::to_string(code) + "</Value></EnumEntry>\n";
}

/// What the camera says of itself, with more formats.
std::string features() {
  std::string xml = builtInFeatures();
  const std::size_t at = xml.find("<EnumEntry Name=\"Mono8\"");
  if (at == std::string::npos) throw std::runtime_error("the camera has no Mono8");
  xml.insert(at, formatEntry("Mono12Packed", 0x010C0006) + formatEntry("Mono12p", 0x010C0047) +
                     formatEntry("Mono12", 0x01100005));
  return xml;
}

}  // namespace

Bytes framePattern(std::uint64_t id, std::size_t size) {
  Bytes bytes(size);
  for (std::size_t i = 0; i < size; ++i) {
    bytes[i] = static_cast<unsigned char>(i % 16 == 0   ? id
                                          : i % 16 == 1 ? id >> 8
                                                        : id * 31 + i * 7 + (i >> 8));
  }
  return bytes;
}

TestCamera::TestCamera(double lostPackets) : lock_(lockPort()) {
  const std::string file = folder_ / "features.xml";
  writeText(file, features());
  camera_ = ARV_GV_FAKE_CAMERA(g_object_new(
      ARV_TYPE_GV_FAKE_CAMERA, "interface-name", "127.0.0.1", "serial-number", "TEST",
      "genicam-filename", file.c_str(), "gvsp-lost-ratio", lostPackets / 1000, nullptr));
  if (arv_gv_fake_camera_is_running(camera_) == FALSE) {
    throw std::runtime_error("no camera on 127.0.0.1: something else has its port");
  }
  arv_fake_camera_set_fill_pattern(arv_gv_fake_camera_get_fake_camera(camera_), fill, this);
}

TestCamera::~TestCamera() {
  g_object_unref(camera_);
  close(lock_);
}

std::map<std::uint64_t, std::uint64_t> TestCamera::times() const {
  const std::scoped_lock lock(mutex_);
  return times_;
}

void TestCamera::fill(ArvBuffer* buffer, void* self, guint32, guint32, ArvPixelFormat) {
  auto* const camera = static_cast<TestCamera*>(self);
  // The buffer does not know how much of it will be sent.
  const std::size_t size =
      arv_fake_camera_get_payload(arv_gv_fake_camera_get_fake_camera(camera->camera_));
  const void* const data = arv_buffer_get_data(buffer, nullptr);
  const Bytes bytes = framePattern(arv_buffer_get_frame_id(buffer), size);
  std::copy(bytes.begin(), bytes.end(), static_cast<unsigned char*>(const_cast<void*>(data)));
  const std::scoped_lock lock(camera->mutex_);
  camera->times_[arv_buffer_get_frame_id(buffer)] = arv_buffer_get_timestamp(buffer);
}

}  // namespace TEST_SUPPORT
