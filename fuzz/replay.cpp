// Runs a target on files: replay FILE-OR-FOLDER... For builds without a fuzzer.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/fuzz_input.h"

namespace {

int replay(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file),
                                std::istreambuf_iterator<char>()};
  std::printf("%s\n", path.generic_string().c_str());
  std::fflush(stdout);
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return 1;
}

int replayAll(const std::filesystem::path& path) {
  if (!std::filesystem::exists(path)) return 0;  // no finding yet
  if (!std::filesystem::is_directory(path)) return replay(path);
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(path)) count += replay(entry.path());
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) count += replayAll(argv[i]);
  std::printf("%d inputs replayed\n", count);
  return count > 0 ? 0 : 1;
}
