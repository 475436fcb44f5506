// A camera that runs.
#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "format/kpf_layout.h"
#include "tools/kpf/cameras/aravis_handles.h"
#include "tools/kpf/cameras/aravis_setup.h"
#include "tools/kpf/cameras/camera.h"
#include "tools/kpf/cameras/pixel_form.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kHeaderRoom = KPF_FORMAT::FRAME_HEADER::kSize;
constexpr guint64 kPatience = 100000;      // microseconds to wait for a frame
constexpr int kSocketBuffer = 4 << 20;     // bytes; "auto" lost frames where this lost none
constexpr unsigned kFewestBuffers = 20;    // frames, however slow the camera is
constexpr unsigned kLongestSide = 0xFFFF;  // pixels; the header has 16 bits for each side

/// Gives back what Aravis holds for all cameras, when the program ends.
struct AravisSession {
  ~AravisSession() { arv_shutdown(); }
};

/// Memory for a frame with room for the record's header in front of it, so that what the camera
/// sends becomes a record where it lies.
BufferPtr makeBuffer(std::size_t payload) {
  void* const memory = std::malloc(kHeaderRoom + payload);
  if (memory == nullptr) {
    throw ToolError(Outcome::kRefused, "there is no memory for the camera's buffers",
                    "Ask for fewer with --buffers.");
  }
  auto* const frame = static_cast<unsigned char*>(memory) + kHeaderRoom;
  return BufferPtr(arv_buffer_new_full(payload, frame, memory, std::free));
}

class AravisCamera : public Camera {
 public:
  AravisCamera(const std::string& id, const CameraSettings& settings);
  ~AravisCamera() override;
  AravisCamera(const AravisCamera&) = delete;
  AravisCamera& operator=(const AravisCamera&) = delete;

  unsigned width() const override { return width_; }
  unsigned height() const override { return height_; }
  int bits() const override { return form_.recordedBits(); }
  double rate() const override { return rate_; }
  unsigned buffers() const override { return buffers_; }
  std::string description() const override { return description_; }

  LiveFrame next() override;
  unsigned waiting() const override;
  std::string trouble() const override;

 private:
  void readGeometry();
  void makeStream(const CameraSettings& settings);
  void start();
  bool isWhole(ArvBuffer* buffer) const;
  LiveFrame goodFrame(ArvBuffer* buffer);

  std::atomic<bool> lost_ = false;  // set by a thread of Aravis'
  CameraPtr camera_;
  const PixelForm& form_;
  StreamPtr stream_;
  BufferPtr taken_;  // whose frame is out, until the next call
  bool running_ = false;
  unsigned width_ = 0;
  unsigned height_ = 0;
  unsigned buffers_ = 0;
  double rate_ = 0;
  std::string description_;
  std::vector<unsigned char> record_;  // of pixels that have to be converted
  std::unique_ptr<PixelPacker> packer_;
};

void noteLost(ArvDevice*, gpointer lost) { *static_cast<std::atomic<bool>*>(lost) = true; }

AravisCamera::AravisCamera(const std::string& id, const CameraSettings& settings)
    : camera_(connectCamera(id)), form_(setUpCamera(camera_.get(), settings)) {
  g_signal_connect(arv_camera_get_device(camera_.get()), "control-lost", G_CALLBACK(noteLost),
                   &lost_);
  readGeometry();
  rate_ = frameRateOf(camera_.get());
  ArvError error;
  description_ = escaped(
      fmt::format("{} {}, {}", textOf(arv_camera_get_vendor_name(camera_.get(), error.fresh())),
                  textOf(arv_camera_get_model_name(camera_.get(), error.fresh())), form_.name));
  makeStream(settings);
}

void AravisCamera::readGeometry() {
  ArvError error;
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  arv_camera_get_region(camera_.get(), &x, &y, &width, &height, error.fresh());
  width_ = static_cast<unsigned>(width);
  height_ = static_cast<unsigned>(height);
  const bool fits = width > 0 && height > 0 && width_ <= kLongestSide && height_ <= kLongestSide;
  // Two packed pixels share three bytes, and in a recording they are of one row.
  if (fits && (form_.recordedBits() == 8 || width_ % 2 == 0)) return;
  throw ToolError(Outcome::kWrongUsage,
                  fmt::format("frames of {} x {} pixels cannot be recorded", width, height),
                  "Choose another size with --region; of 12-bit pixels an even width.");
}

void AravisCamera::makeStream(const CameraSettings& settings) {
  ArvError error;
  if (arv_camera_is_gv_device(camera_.get()) != FALSE) {
    // They need rights of their own, and see every packet twice on the loopback.
    arv_camera_gv_set_stream_options(camera_.get(), ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
  }
  stream_.reset(arv_camera_create_stream(camera_.get(), nullptr, nullptr, error.fresh()));
  packer_ = std::make_unique<PixelPacker>(form_, width_, height_);
  const guint payload = arv_camera_get_payload(camera_.get(), error ? nullptr : error.fresh());
  if (!stream_ || payload < packer_->frameSize()) {
    throw ToolError(Outcome::kRefused,
                    fmt::format("the camera gives no stream: {}", escaped(error.text())),
                    "Close other programs that use this camera.");
  }
  if (ARV_IS_GV_STREAM(stream_.get())) {
    g_object_set(stream_.get(), "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED,
                 "socket-buffer-size", kSocketBuffer, "packet-resend",
                 ARV_GV_STREAM_PACKET_RESEND_ALWAYS, nullptr);
  }
  buffers_ = settings.buffers != 0
                 ? settings.buffers
                 : std::max(kFewestBuffers, static_cast<unsigned>(std::ceil(rate_ / 2)));
  for (unsigned i = 0; i < buffers_; ++i) {
    arv_stream_push_buffer(stream_.get(), makeBuffer(payload).release());
  }
  record_.resize(kHeaderRoom + packer_->frameSize());
}

AravisCamera::~AravisCamera() {
  // A camera that is gone would be waited for.
  if (running_ && !lost_) arv_camera_stop_acquisition(camera_.get(), nullptr);
  g_signal_handlers_disconnect_by_data(arv_camera_get_device(camera_.get()), &lost_);
}

void AravisCamera::start() {
  ArvError error;
  arv_camera_start_acquisition(camera_.get(), error.fresh());
  if (error) {
    throw ToolError(Outcome::kRefused,
                    fmt::format("the camera does not start: {}", escaped(error.text())),
                    "Close other programs that use this camera.");
  }
  running_ = true;
}

LiveFrame AravisCamera::next() {
  if (!running_) start();
  if (taken_) arv_stream_push_buffer(stream_.get(), taken_.release());
  taken_.reset(arv_stream_timeout_pop_buffer(stream_.get(), kPatience));
  LiveFrame frame;
  if (!taken_) {
    if (lost_) frame.state = LiveFrame::State::kEnd;
    return frame;
  }
  const ArvBufferStatus status = arv_buffer_get_status(taken_.get());
  // What was still empty when the stream was stopped is no frame of the camera's.
  if (status == ARV_BUFFER_STATUS_ABORTED || status == ARV_BUFFER_STATUS_CLEARED) return frame;
  frame.state = LiveFrame::State::kIncomplete;
  return status == ARV_BUFFER_STATUS_SUCCESS && isWhole(taken_.get()) ? goodFrame(taken_.get())
                                                                      : frame;
}

/// Somebody else may have changed the camera's settings meanwhile.
bool AravisCamera::isWhole(ArvBuffer* buffer) const {
  return arv_buffer_get_payload_type(buffer) != ARV_BUFFER_PAYLOAD_TYPE_MULTIPART &&
         arv_buffer_get_image_pixel_format(buffer) == form_.code &&
         arv_buffer_get_image_width(buffer) == static_cast<int>(width_) &&
         arv_buffer_get_image_height(buffer) == static_cast<int>(height_);
}

LiveFrame AravisCamera::goodFrame(ArvBuffer* buffer) {
  LiveFrame frame;
  frame.state = LiveFrame::State::kGood;
  frame.id = arv_buffer_get_frame_id(buffer);
  frame.cameraTime = arv_buffer_get_timestamp(buffer);
  frame.arrival = arv_buffer_get_system_timestamp(buffer);
  std::size_t size = 0;
  const void* const data = arv_buffer_get_data(buffer, &size);
  // The memory is ours, see makeBuffer; Aravis only lends it as constant.
  auto* const pixels = static_cast<unsigned char*>(const_cast<void*>(data));
  if (form_.way == PixelForm::Way::kAsItIs) {
    frame.record = pixels - kHeaderRoom;
  } else {
    packer_->pack(pixels, record_.data());
    frame.record = record_.data();
  }
  return frame;
}

unsigned AravisCamera::waiting() const {
  gint empty = 0;
  gint filled = 0;
  arv_stream_get_n_buffers(stream_.get(), &empty, &filled);
  return static_cast<unsigned>(std::max(filled, 0));
}

std::string AravisCamera::trouble() const {
  return lost_ ? "the camera is gone: no answer, is it plugged in and powered?" : "";
}

}  // namespace

std::unique_ptr<Camera> openCamera(const std::string& name, const CameraSettings& settings) {
  static const AravisSession session;
  return std::make_unique<AravisCamera>(name.substr(kCameraPrefix.size()), settings);
}

}  // namespace KPF_TOOL
