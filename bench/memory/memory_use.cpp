// How much memory the library holds: the growth of the resident set by a stream and by amplifiers,
// each in a process of its own, and the page faults of every further frame.
#include <fmt/format.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/files.h"
#include "vlm_internal.h"

namespace {

constexpr unsigned kWidth = 1920;
constexpr unsigned kHeight = 1080;
constexpr std::size_t kPixels = std::size_t{kWidth} * kHeight;
constexpr unsigned kFirstFrames = 8;  // of a stream
constexpr unsigned kFurtherFrames = 64;
constexpr double kMegabyte = 1e6;

double residentMegabytes() {
  std::size_t whole = 0;
  std::size_t resident = 0;
  std::ifstream("/proc/self/statm") >> whole >> resident;
  return static_cast<double>(resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) /
         kMegabyte;
}

long pageFaults() {
  rusage used{};
  getrusage(RUSAGE_SELF, &used);
  return used.ru_minflt;
}

/// Begins, adds frames until the library holds what it will hold, then some more; prints a line.
void watch(const std::string& what, double held, unsigned frames,
           const std::function<void()>& begin, const std::function<void()>& addFrame) {
  const double before = residentMegabytes();
  begin();
  for (unsigned i = 0; i < frames; ++i) addFrame();
  const double grown = residentMegabytes() - before;
  const long faults = pageFaults();
  for (unsigned i = 0; i < kFurtherFrames; ++i) addFrame();
  const double perFrame = static_cast<double>(pageFaults() - faults) / kFurtherFrames;
  fmt::print("{:<32}{:>10.1f}{:>12.1f}{:>24.2f}\n", what, held, grown, perFrame);
  std::fflush(stdout);
}

/// What failed would hold less memory than it should.
void expectResult(int result, int expected) {
  if (result != expected) throw std::runtime_error("the library did not do the work");
}

void watchStream() {
  const TEST_SUPPORT::TemporaryFolder folder;
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.width = kWidth;
  configuration.height = kHeight;
  configuration.frameRate = 30;
  configuration.bitsPerPixel = 12;
  configuration.frameCount = kFirstFrames + kFurtherFrames;
  const std::vector<unsigned char> image(kPixels * 2, 1);
  unsigned stream = 0;
  watch(
      "stream, 12 bits", static_cast<double>(vxGetPackedSize(kWidth, kHeight, 12)) / kMegabyte,
      kFirstFrames, [&] { stream = vxCreatePackStreamer(folder / "memory.kpf", configuration); },
      [&] { vxAddTiffImageData(stream, image.data()); });
  expectResult(vxIsPackStreamerFinished(stream), STREAM_COMPLETE);
  vxClosePackStreamer(stream);
}

void watchAmplifier(unsigned window) {
  const VXP_MA_CONFIGURATION configuration{static_cast<double>(window), 3.0, kWidth, kHeight, 2.5};
  std::vector<unsigned char> amplified(kPixels, 1);
  unsigned amplifier = 0;
  // Frames, sums, and the reference that the amplified frame is measured against.
  const double held = static_cast<double>(kPixels * (window - 1 + 4 + 1)) / kMegabyte;
  watch(
      fmt::format("amplifier, W = {}", window), held, 2 * window,
      [&] { amplifier = vxCreateMotionAmplifier(&configuration); },
      [&] {
        auto* const frame = static_cast<unsigned char*>(::operator new(kPixels));
        std::memset(frame, 1, kPixels);
        vxMAAddFrame(amplifier, frame);
        vxMAGetFrame(amplifier, amplified.data());
      });
  expectResult(vxMAGetFrame(amplifier, amplified.data()), VLM_SUCCESS);
  vxCloseMotionAmplifier(amplifier);
}

bool inChild(const std::function<void()>& work) {
  const pid_t child = fork();
  if (child == 0) {
    work();
    std::_Exit(EXIT_SUCCESS);
  }
  int status = 0;
  return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): a measurement that fails may end by it.
int main() {
  VX_LOG::VxLogger::factory()->loggerUseStdout(false);
  fmt::print("{:<32}{:>10}{:>12}{:>24}\n", fmt::format("{} x {}", kWidth, kHeight), "holds MB",
             "grows MB", "page faults a frame");
  std::fflush(stdout);
  const bool done = inChild(watchStream) && inChild([] { watchAmplifier(9); }) &&
                    inChild([] { watchAmplifier(90); });
  return done ? EXIT_SUCCESS : EXIT_FAILURE;
}
