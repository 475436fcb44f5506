// Uses the library as an application does: caller FOLDER. Says what went wrong and ends with 1.
//
// Leaves in FOLDER one whole recording for the reader, and one that was open when it ended.
#include <vlm_internal.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

void expect(bool holds, const std::string& what) {
  if (holds) return;
  std::fprintf(stderr, "not so: %s\n", what.c_str());
  std::exit(1);
}

Bytes read(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  expect(file.is_open(), name + " is there");
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration(unsigned frames) {
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION result;
  result.text5 = "made by a caller";
  result.width = 2;
  result.height = 1;
  result.bitsPerPixel = 12;
  result.frameRate = 2;
  result.frameCount = frames;
  result.startSeconds = 5;
  return result;
}

const unsigned char kImage[] = {0xC0, 0xAB, 0x30, 0x12};

/// Records three frames under `name` and checks every byte of the data file.
void record(const std::string& name, const std::string& dataFile) {
  const unsigned stream = vxCreatePackStreamer(name, configuration(3));
  expect(stream != 0, name + " is created");
  expect(vxAddTiffImageData(stream, kImage) == STREAM_WRITING, "a frame is added");
  expect(vxAddPlaceholder(stream) == STREAM_WRITING, "a placeholder is added");
  expect(vxAddTiffImageData(stream, kImage) == STREAM_COMPLETE, "the last frame is added");
  expect(vxClosePackStreamer(stream) == STREAM_CLOSED, "the stream is closed");
  Bytes expected{0, 0, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xAB, 0x3C, 0x12};
  expected.resize(2 * 19);
  const Bytes last{2, 0, 0, 0, 6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xAB, 0x3C, 0x12};
  expected.insert(expected.end(), last.begin(), last.end());
  expect(read(dataFile) == expected, dataFile + " holds the three records");
  expect(read(name).size() == 2998, name + " is a header file");
}

void recordUnderManyNames(const std::string& folder) {
  record(folder + "/clip.kpf", folder + "/clip/clip_0001.div");
  record(folder + "/with spaces.kpf", folder + "/with spaces/with spaces_0001.div");
#ifdef _WIN32
  std::string back = folder;
  std::replace(back.begin(), back.end(), '/', '\\');
  record(back + "\\back.kpf", folder + "/back/back_0001.div");
  record(back + "/mixed.kpf", folder + "/mixed/mixed_0001.div");
#endif
  expect(vxCreatePackStreamer(folder + "/missing/clip.kpf", configuration(1)) == 0,
         "a name in no folder gives no stream");
}

/// A frame as the amplifier takes it over: it frees what the caller's operator new gave.
unsigned char* newFrame(const Bytes& samples) {
  auto* const frame = static_cast<unsigned char*>(::operator new(samples.size()));
  std::copy(samples.begin(), samples.end(), frame);
  return frame;
}

void amplify() {
  const VXP_MA_CONFIGURATION parameters{25.0, 20.0, 2, 1, 3.0};
  const unsigned amplifier = vxCreateMotionAmplifier(&parameters);
  expect(vxMAGetRefWindowSize(amplifier) == 3, "the window is three frames");
  const Bytes frames[] = {{10, 200}, {20, 100}, {90, 50}, {30, 250}};
  const Bytes amplified[] = {{}, {50, 100}, {252, 50}, {30, 255}};
  for (int i = 0; i < 4; ++i) {
    expect(vxMAAddFrame(amplifier, newFrame(frames[i])) == VLM_SUCCESS, "a frame is taken");
    Bytes out(2);
    const int result = vxMAGetFrame(amplifier, out.data());
    expect(result == (i == 0 ? VLM_MA_NO_FRAME : VLM_SUCCESS), "a frame is delivered in time");
    expect(i == 0 || out == amplified[i], "the frame is amplified");
  }
  expect(vxCloseMotionAmplifier(amplifier) == VLM_MA_CLOSED, "the amplifier is closed");
}

template <class Call>
void expectOutOfRange(Call call) {
  try {
    call();
  } catch (const std::out_of_range&) {
    return;
  }
  expect(false, "std::out_of_range crosses the boundary");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::string folder = argv[1];
  const auto logger = VX_LOG::VxLogger::factory();
  expect(logger->loggerFile((folder + "/log.txt").c_str()) == 0, "a log file is set");
  logger->loggerUseStdout(false);

  recordUnderManyNames(folder);
  amplify();
  expectOutOfRange([] { vxClosePackStreamer(2); });
  expectOutOfRange([] { vxMAGetRefWindowSize(2); });

  const unsigned open = vxCreatePackStreamer(folder + "/open.kpf", configuration(3));
  expect(vxAddTiffImageData(open, kImage) == STREAM_WRITING, "a frame is added");
  return 0;
}
