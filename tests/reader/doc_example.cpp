// The example of docs/reader.md, word for word, so that it compiles.
#include <cstdint>
#include <cstdio>
#include <vector>

#include "kpf_reader.h"

int main(int argc, char** argv) try {
  if (argc != 2) return 2;
  const KPF_READER::Recording recording(argv[1]);
  std::vector<std::uint16_t> samples(recording.header().pixelCount());
  for (std::uint32_t n = 0; n < recording.recordCount(); ++n) {
    const KPF_READER::FrameRecord record = recording.record(n);
    if (record.placeholder) continue;
    KPF_READER::unpackPixels(recording.header(), record.pixels, samples);
    std::uint64_t sum = 0;
    for (const std::uint16_t sample : samples) sum += sample;
    std::printf("frame %u: light %.1f\n", record.place, static_cast<double>(sum) / 65535);
  }
} catch (const KPF_READER::RecordingError& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
