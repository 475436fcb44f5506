// Records a GenICam camera: record_camera ADDRESS OUT.kpf FRAMES
//
// The camera sends Mono12Packed, which is what a record holds: with a header of 16 bytes in front
// of it, a frame is written as it arrived. What is lost on the way keeps its place as a
// placeholder.
#include <arv.h>
#include <vlm_internal.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr unsigned kHeaderSize = 16;
constexpr int kBuffers = 50;             // that may fill while the disk is slow
constexpr guint64 kPatience = 6000000;   // microseconds; a camera that is gone says so after five
constexpr std::uint64_t kCycle = 65535;  // GigE Vision counts from 1 to 65535, and begins again

[[noreturn]] void fail(const GError* error) {
  std::fprintf(stderr, "record_camera: %s\n", error != nullptr ? error->message : "no stream");
  std::exit(1);
}

/// Number and time of a record, little-endian.
void stamp(unsigned char* record, std::uint64_t number, std::uint64_t nanoseconds) {
  const std::uint64_t seconds = nanoseconds / 1000000000;
  const std::uint64_t micros = nanoseconds / 1000 % 1000000;
  for (int i = 0; i < 4; ++i) record[i] = static_cast<unsigned char>(number >> 8 * i);
  for (int i = 0; i < 8; ++i) record[4 + i] = static_cast<unsigned char>(seconds >> 8 * i);
  for (int i = 0; i < 4; ++i) record[12 + i] = static_cast<unsigned char>(micros >> 8 * i);
}

/// A buffer with room for the header in front of the frame.
ArvBuffer* makeBuffer(unsigned payload) {
  auto* const record = static_cast<unsigned char*>(std::malloc(kHeaderSize + payload));
  if (record == nullptr) std::exit(1);
  return arv_buffer_new_full(payload, record + kHeaderSize, record, std::free);
}

/// Records until every place has its record. @return the frames that arrived whole.
unsigned recordFrames(ArvStream* camera, unsigned stream, std::uint64_t frames) {
  unsigned whole = 0;
  std::uint64_t lastId = 0;
  std::uint64_t startTime = 0;
  for (std::uint64_t next = 0; next < frames;) {
    ArvBuffer* const buffer = arv_stream_timeout_pop_buffer(camera, kPatience);
    if (buffer == nullptr) break;  // the camera is gone; the status file will say what is missing
    // The id of a buffer that failed may be an old one: the good ones tell how many are missing.
    if (arv_buffer_get_status(buffer) == ARV_BUFFER_STATUS_SUCCESS) {
      const std::uint64_t id = arv_buffer_get_frame_id(buffer);
      const std::uint64_t missing = whole == 0 ? 0 : (id + kCycle - lastId - 1) % kCycle;
      for (std::uint64_t i = 0; i < missing && next < frames; ++i, ++next) vxAddPlaceholder(stream);
      if (whole == 0) {
        startTime = arv_buffer_get_system_timestamp(buffer) - arv_buffer_get_timestamp(buffer);
      }
      lastId = id;
      if (next == frames) break;
      auto* const record =
          static_cast<unsigned char*>(const_cast<void*>(arv_buffer_get_user_data(buffer)));
      stamp(record, next++, startTime + arv_buffer_get_timestamp(buffer));
      vxAddPackedData(stream, record);
      ++whole;
    }
    arv_stream_push_buffer(camera, buffer);
  }
  return whole;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "Usage: record_camera ADDRESS OUT.kpf FRAMES\n");
    return 2;
  }
  GError* error = nullptr;
  ArvCamera* const camera = arv_camera_new(argv[1], &error);
  if (camera == nullptr) fail(error);
  arv_camera_set_pixel_format_from_string(camera, "Mono12Packed", &error);
  if (error != nullptr) fail(error);
  arv_camera_set_acquisition_mode(camera, ARV_ACQUISITION_MODE_CONTINUOUS, nullptr);
  arv_camera_gv_set_stream_options(camera, ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
  ArvStream* const frames = arv_camera_create_stream(camera, nullptr, nullptr, &error);
  if (frames == nullptr) fail(error);
  const unsigned payload = arv_camera_get_payload(camera, nullptr);
  for (int i = 0; i < kBuffers; ++i) arv_stream_push_buffer(frames, makeBuffer(payload));

  int x = 0, y = 0, width = 0, height = 0;
  arv_camera_get_region(camera, &x, &y, &width, &height, nullptr);
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.width = static_cast<unsigned>(width);
  configuration.height = static_cast<unsigned>(height);
  configuration.bitsPerPixel = 12;
  configuration.frameRate =
      static_cast<int>(std::lround(arv_camera_get_frame_rate(camera, nullptr)));
  configuration.frameCount = static_cast<unsigned>(std::strtoul(argv[3], nullptr, 10));
  const unsigned stream = vxCreatePackStreamer(argv[2], configuration);
  if (stream == 0) return 1;  // the library has said why

  arv_camera_start_acquisition(camera, nullptr);
  const unsigned whole = recordFrames(frames, stream, configuration.frameCount);
  arv_camera_stop_acquisition(camera, nullptr);
  const bool complete = vxIsPackStreamerFinished(stream) == STREAM_COMPLETE;
  vxClosePackStreamer(stream);
  g_object_unref(frames);
  g_object_unref(camera);
  std::printf("%s: %u frames, %u of them whole, %s\n", argv[2], configuration.frameCount, whole,
              complete ? "complete" : "incomplete");
  return complete ? 0 : 1;
}
