// Ends with a stream open: open_stream NAME LOG return|exit|static
#include <cstdlib>
#include <string>

#include "vlm_internal.h"

namespace {

/// A static object of the application, which ends before or after the library's, as it comes.
struct LateSpeaker {
  bool speaks = false;
  ~LateSpeaker() {
    if (speaks) VX_LOG::VxLogger::factory()->vx_log(7, "late words");
  }
};
LateSpeaker lateSpeaker;

bool record(const std::string& name) {
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.width = 4;
  configuration.height = 1;
  configuration.bitsPerPixel = 8;
  configuration.frameRate = 1;
  configuration.frameCount = 2;
  const unsigned stream = vxCreatePackStreamer(name, configuration);
  const unsigned char pixels[4] = {1, 2, 3, 4};
  return stream == 1 && vxAddTiffImageData(stream, pixels) == STREAM_WRITING;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const VXP_MA_CONFIGURATION parameters{25.0, 20.0, 2, 1, 3.0};
  if (vxCreateMotionAmplifier(&parameters) != 1) return 3;
  if (vxMAAddFrame(1, static_cast<unsigned char*>(::operator new(2))) != VLM_SUCCESS) return 4;
  if (!record(argv[1])) return 5;
  if (VX_LOG::VxLogger::factory()->loggerFile(argv[2]) != 0) return 6;
  const std::string mode = argv[3];
  lateSpeaker.speaks = mode == "static";
  if (mode == "exit") std::exit(0);
  return 0;
}
