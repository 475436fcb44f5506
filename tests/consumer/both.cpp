// Records and reads back in one program, which links the writer's and the reader's static library:
// both FOLDER
#include <kpf_reader.h>
#include <vlm_internal.h>

#include <string>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::string name = std::string(argv[1]) + "/both.kpf";
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.width = 2, configuration.height = 1, configuration.bitsPerPixel = 8;
  configuration.frameRate = 1, configuration.frameCount = 2;
  const unsigned stream = vxCreatePackStreamer(name, configuration);
  const unsigned char image[] = {7, 9, 0, 0};
  if (vxAddTiffImageData(stream, image) != STREAM_WRITING) return 3;
  if (vxClosePackStreamer(stream) != STREAM_CLOSED) return 4;

  const KPF_READER::Recording recording(name);
  if (recording.recordCount() != 1 || !recording.statusFile()) return 5;
  return recording.record(0).pixels[1] == 9 ? 0 : 6;
}
