// Reads back what caller.cpp recorded: reader HEADER_FILE
#include <kpf_reader.h>

#include <cstdint>
#include <vector>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const KPF_READER::Recording recording(argv[1]);
  if (recording.recordCount() != 3) return 3;
  std::vector<std::uint16_t> samples(2);
  recording.unpack(0, samples);
  return samples == std::vector<std::uint16_t>{0xABC0, 0x1230} ? 0 : 4;
}
