// Records until it is killed: recording_child OUT.kpf WIDTH HEIGHT BITS FRAMES
//
// Every byte of frame n is n modulo 251, plus 1. After each add call that returned, one byte goes
// to standard error.
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <vector>

#include "vlm_internal.h"

int main(int argc, char** argv) {
  if (argc != 6) return 2;
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.width = static_cast<unsigned>(std::atoi(argv[2]));
  configuration.height = static_cast<unsigned>(std::atoi(argv[3]));
  configuration.bitsPerPixel = std::atoi(argv[4]);
  configuration.frameCount = static_cast<unsigned>(std::atoi(argv[5]));
  configuration.frameRate = 100;
  const unsigned stream = vxCreatePackStreamer(argv[1], configuration);
  if (stream == 0) return 1;
  std::vector<unsigned char> image(std::size_t{2} * configuration.width * configuration.height);
  for (unsigned n = 0; n < configuration.frameCount; ++n) {
    image.assign(image.size(), static_cast<unsigned char>(n % 251 + 1));
    vxAddTiffImageData(stream, image.data());
    if (write(STDERR_FILENO, ".", 1) != 1) return 3;
  }
  pause();  // nobody gets away alive
}
