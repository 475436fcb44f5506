// Works on while the program ends: late_work NAME.kpf static|thread|forgotten|closed
//
// static: a static object converts, adds and amplifies in its destructor. thread: another thread
// does so all the time, and that destructor ends it. forgotten: a thread that nobody ends converts
// all the time, at least until that destructor is over. closed: an object that outlives the open
// handles uses one of them.
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "vlm_internal.h"

namespace {

// Large enough that the memory of a frame is handed on, and that a team works on it.
constexpr unsigned kWidth = 2048;
constexpr unsigned kHeight = 2048;
constexpr unsigned kPixels = kWidth * kHeight;
constexpr unsigned kFrames = 100000;
constexpr int kLateFrames = 3;

void require(bool holds, int code) {
  if (!holds) std::_Exit(code);
}

bool converts() {
  const std::vector<unsigned char> image(2 * kPixels, 0x77);
  std::vector<unsigned char> out(vxGetPackedSize(kWidth, kHeight, 12));
  return vxConvertTiffImageData(image.data(), out.data(), 1, kWidth, kHeight, 12) == VLM_SUCCESS &&
         out[16] == 0x77 && out.back() == 0x77;
}

bool adds(unsigned stream) {
  const std::vector<unsigned char> image(2 * kPixels, 0x77);
  return vxAddTiffImageData(stream, image.data()) == STREAM_WRITING;
}

// W is 3: two frames of 60 have the reference 40, and the factor is 3.
bool amplifies(unsigned amplifier) {
  void* const frame = ::operator new(kPixels);
  std::memset(frame, 60, kPixels);
  if (vxMAAddFrame(amplifier, static_cast<unsigned char*>(frame)) != VLM_SUCCESS) return false;
  if (!vxMAAvailable(amplifier)) return true;
  std::vector<unsigned char> out(kPixels);
  return vxMAGetFrame(amplifier, out.data()) == VLM_SUCCESS && out.front() == 120 &&
         out.back() == 120;
}

std::atomic<int> conversions{0};  // of the forgotten thread; trivially destroyed

void awaitConversions() {
  const int wanted = conversions + kLateFrames;
  while (conversions < wanted) std::this_thread::yield();
}

/// Made before everything of the library but the logger, where it is linked into the program.
struct Oldest {
  bool speaks = false;
  ~Oldest() {
    if (speaks) require(!adds(1) && converts(), 9);
  }
};
[[gnu::init_priority(101)]] Oldest oldest;

/// A static object of the application. It is made before or after the library's, as the program
/// was linked, and lives to see the end of main either way.
class Application {
 public:
  ~Application() {
    ending_ = true;
    if (thread_.joinable()) thread_.join();
    for (int i = 0; i < lateFrames_; ++i) work();
    if (forgot_) awaitConversions();
  }

  void workInDestructor() { lateFrames_ = kLateFrames; }

  void workOnThread() {
    thread_ = std::thread([this] {
      while (!ending_) work();
    });
    while (!worked_) std::this_thread::yield();
  }

  void forgetThread() {
    forgot_ = true;
    std::thread([] {
      for (;; ++conversions) require(converts(), 8);
    }).detach();
    awaitConversions();
  }

  void begin(const std::string& name) {
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.width = kWidth, configuration.height = kHeight, configuration.bitsPerPixel = 12;
    configuration.frameRate = 1, configuration.frameCount = kFrames;
    stream_ = vxCreatePackStreamer(name, configuration);
    require(stream_ == 1, 3);
    const VXP_MA_CONFIGURATION parameters{25.0, 20.0, kWidth, kHeight, 3.0};
    amplifier_ = vxCreateMotionAmplifier(&parameters);
    require(amplifier_ == 1, 4);
    work();
  }

 private:
  void work() {
    require(converts(), 5);
    require(adds(stream_), 6);
    require(amplifies(amplifier_), 7);
    worked_ = true;
  }

  unsigned stream_ = 0;
  unsigned amplifier_ = 0;
  int lateFrames_ = 0;
  bool forgot_ = false;
  std::atomic<bool> worked_{false};
  std::atomic<bool> ending_{false};
  std::thread thread_;
};
Application application;

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  application.begin(argv[1]);
  const std::string mode = argv[2];
  if (mode == "static") application.workInDestructor();
  if (mode == "thread") application.workOnThread();
  if (mode == "closed") oldest.speaks = true;
  if (mode == "forgotten") application.forgetThread();
  return 0;
}
