// Records frames made on the fly: record_frames OUT.kpf
//
// A bright bar moves over a dark ground, 12 bits a pixel, 100 frames at 50 frames/s. Every tenth
// frame is lost on the way, as cameras lose them, and a placeholder keeps its place.
#include <vlm_internal.h>

#include <cstdio>
#include <vector>

namespace {

constexpr unsigned kWidth = 320;
constexpr unsigned kHeight = 240;
constexpr unsigned kFrames = 100;

/// 16-bit samples, little-endian, of which the upper 12 bits are recorded.
void draw(unsigned number, std::vector<unsigned char>& image) {
  for (unsigned y = 0; y < kHeight; ++y) {
    for (unsigned x = 0; x < kWidth; ++x) {
      const unsigned sample = (x + kWidth - 3 * number % kWidth) % kWidth < 20 ? 0xF000 : 0x1000;
      unsigned char* const at = image.data() + 2 * (y * kWidth + x);
      at[0] = static_cast<unsigned char>(sample);
      at[1] = static_cast<unsigned char>(sample >> 8);
    }
  }
}

unsigned framesTaken(unsigned stream) {
  unsigned announced = 0;
  unsigned packed = 0;
  unsigned written = 0;
  vxGetPackStatistics(stream, &announced, &packed, &written);
  return written;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "Usage: record_frames OUT.kpf\n");
    return 2;
  }
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.text5 = "a bar that moves";
  configuration.width = kWidth;
  configuration.height = kHeight;
  configuration.bitsPerPixel = 12;
  configuration.frameRate = 50;
  configuration.frameCount = kFrames;
  configuration.startSeconds = 1700000000;

  const unsigned stream = vxCreatePackStreamer(argv[1], configuration);
  if (stream == 0) return 1;  // the library has said why
  std::vector<unsigned char> image(2 * kWidth * kHeight);
  for (unsigned number = 0; number < kFrames; ++number) {
    if (number % 10 == 9) {
      vxAddPlaceholder(stream);
    } else {
      draw(number, image);
      vxAddTiffImageData(stream, image.data());
    }
    if (framesTaken(stream) == number) break;  // refused: the library has said why
  }
  const unsigned taken = framesTaken(stream);
  const bool complete = vxIsPackStreamerFinished(stream) == STREAM_COMPLETE;
  vxClosePackStreamer(stream);
  std::printf("%s: %u frames, %s\n", argv[1], taken, complete ? "complete" : "incomplete");
  return complete ? 0 : 1;
}
