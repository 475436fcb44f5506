// Any sequence of calls on streams and amplifiers, beside a model of what must come of it.
//
// Input: one byte a call, then its arguments.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "fuzz/scratch.h"
#include "interface/vlm_internal_tables.h"
#include "vlm_internal.h"

namespace {

using FUZZ::require;

struct StreamModel {
  unsigned frames;
  unsigned written;
  std::size_t imageBytes;
};

struct AmplifierModel {
  int window;
  std::size_t frameBytes;
  std::size_t held;
};

/// Calls the library and keeps count beside it.
class Player {
 public:
  Player(FUZZ::Input& input, const FUZZ::Scratch& scratch) : input_(input), scratch_(scratch) {}

  void play() {
    for (int calls = 0; !input_.empty() && calls < 200; ++calls) {
      switch (input_.byte() % 8) {
        case 0:
          createStream();
          break;
        case 1:
          addFrame();
          break;
        case 2:
          closeStream();
          break;
        case 3:
          askStream();
          break;
        case 4:
          createAmplifier();
          break;
        case 5:
          feedAmplifier();
          break;
        case 6:
          askAmplifier();
          break;
        default:
          closeAmplifier();
      }
    }
  }

 private:
  unsigned anyHandle() {
    const unsigned char byte = input_.byte();
    return byte == 255 ? 0xFFFFFFFF : byte % 8;
  }

  /// The call's result, or -1000 when it threw for the handle one behind the last.
  template <class Call>
  static int guarded(Call call) {
    try {
      return call();
    } catch (const std::out_of_range&) {
      return -1000;
    }
  }

  static void expectBadHandle(int result) {
    require(result == VLM_BAD_HANDLE || result == -1000, "a bad handle is refused");
  }

  void createStream() {
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.width = input_.number(20);
    configuration.height = input_.number(9);
    configuration.bitsPerPixel = input_.byte() % 2 == 0 ? 8 : 12;
    configuration.frameRate = static_cast<int>(input_.byte()) - 3;
    configuration.frameCount = input_.byte() % 6;
    configuration.text2 = std::string(input_.number(3000), 'x');
    const std::string name = scratch_ / ("s" + std::to_string(input_.byte() % 3) + ".kpf");
    const unsigned handle = vxCreatePackStreamer(name, configuration);
    VX_LOG::VxLogger::factory()->loggerUseStdout(false);  // a new stream switches it on
    require((handle != 0) == (configuration.frameCount != 0), "a stream needs frames");
    if (handle == 0) return;
    require(!streams_.contains(handle), "a handle in use is not issued");
    const std::size_t sampleBytes = configuration.bitsPerPixel == 8 ? 1 : 2;
    const std::size_t stride = (configuration.width * sampleBytes + 3) / 4 * 4;
    const std::size_t record = vxGetPackedSize(configuration.width, configuration.height, 12) + 64;
    streams_[handle] = {configuration.frameCount, 0,
                        std::max(record, stride * configuration.height + 1)};
  }

  void addFrame() {
    const unsigned handle = anyHandle();
    const unsigned char how = input_.byte() % 3;
    const auto found = streams_.find(handle);
    const auto image = input_.bytes(found == streams_.end() ? 4096 : found->second.imageBytes);
    const int result = guarded([&] {
      if (how == 0) return vxAddPlaceholder(handle);
      return how == 1 ? vxAddTiffImageData(handle, image.data())
                      : vxAddPackedData(handle, image.data());
    });
    if (found == streams_.end()) return expectBadHandle(result);
    StreamModel& model = found->second;
    model.written = std::min(model.written + 1, model.frames);
    const bool complete = model.written == model.frames && how != 0;
    require(result == (complete ? STREAM_COMPLETE : STREAM_WRITING), "adding tells the state");
  }

  void askStream() {
    const unsigned handle = anyHandle();
    unsigned configured = 7, packed = 7, written = 7;
    const int result =
        guarded([&] { return vxGetPackStatistics(handle, &configured, &packed, &written); });
    const auto found = streams_.find(handle);
    if (found == streams_.end()) return expectBadHandle(result);
    require(
        configured == found->second.frames && written == found->second.written && packed == written,
        "the statistics count the frames");
  }

  void closeStream() {
    const unsigned handle = anyHandle();
    const int result = guarded([&] { return vxClosePackStreamer(handle); });
    if (streams_.erase(handle) == 0) return expectBadHandle(result);
    require(result == STREAM_CLOSED, "a stream is closed");
  }

  void createAmplifier() {
    const int width = static_cast<int>(input_.number(40));
    const int height = static_cast<int>(input_.number(20));
    const VXP_MA_CONFIGURATION parameters{static_cast<double>(input_.byte()) - 8.0,
                                          static_cast<double>(input_.byte()) / 4, width, height,
                                          static_cast<double>(input_.number(2000)) / 7 - 100};
    const unsigned handle = vxCreateMotionAmplifier(&parameters);
    require(!amplifiers_.contains(handle), "a handle in use is not issued");
    amplifiers_[handle] = {vxMAGetRefWindowSize(handle),
                           static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0};
  }

  void feedAmplifier() {
    const unsigned handle = anyHandle();
    const auto found = amplifiers_.find(handle);
    const auto samples = input_.bytes(found == amplifiers_.end() ? 1 : found->second.frameBytes);
    auto* const frame = static_cast<unsigned char*>(::operator new(samples.size() + 1));
    std::copy(samples.begin(), samples.end(), frame);
    const int result = guarded([&] { return vxMAAddFrame(handle, frame); });
    if (found == amplifiers_.end()) {
      ::operator delete(frame);  // still ours
      return expectBadHandle(result);
    }
    require(result == VLM_SUCCESS, "a frame is taken");
    AmplifierModel& model = found->second;
    ++model.held;
    if (model.window >= 1) {
      model.held = std::min(model.held, static_cast<std::size_t>(std::max(model.window - 1, 1)));
    }
  }

  void askAmplifier() {
    const unsigned handle = anyHandle();
    const auto found = amplifiers_.find(handle);
    std::vector<unsigned char> out(found == amplifiers_.end() ? 1 : found->second.frameBytes + 1);
    if (found != amplifiers_.end()) vxMAUpdateAmpFactor(handle, input_.byte());
    const int result = guarded([&] { return vxMAGetFrame(handle, out.data()); });
    if (found == amplifiers_.end()) return expectBadHandle(result);
    const AmplifierModel& model = found->second;
    const bool ready = model.window >= 1 && model.held > 0 &&
                       model.held >= static_cast<std::size_t>(model.window - 1);
    require(result == (ready ? VLM_SUCCESS : VLM_MA_NO_FRAME),
            "frames come once the window is full");
    require(out.back() == 0, "nothing is written behind the frame");
  }

  void closeAmplifier() {
    const unsigned handle = anyHandle();
    const int result = guarded([&] { return vxCloseMotionAmplifier(handle); });
    if (amplifiers_.erase(handle) == 0) return expectBadHandle(result);
    require(result == VLM_MA_CLOSED, "an amplifier is closed");
  }

  FUZZ::Input& input_;
  const FUZZ::Scratch& scratch_;
  std::map<unsigned, StreamModel> streams_;
  std::map<unsigned, AmplifierModel> amplifiers_;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const FUZZ::Scratch scratch;
  FUZZ::Input input(data, size);
  std::filesystem::current_path(scratch / "");
  VX_LOG::VxLogger::factory()->loggerUseStdout(false);
  Player(input, scratch).play();
  VLM_INTERNAL::streamVector.clear();
  VLM_INTERNAL::maVector.clear();
  return 0;
}
