// What the system is told of mapped data files, as it repeats it itself.
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/reader/recording_bytes.h"

namespace {

using KPF_READER::Access;
using KPF_READER::Recording;
using testing::Contains;
using testing::Not;

/// The flags of the mapping of `file`, two letters each; empty where it is not mapped.
std::vector<std::string> flagsOf(const std::string& file) {
  const std::string name = std::filesystem::canonical(file).string(), mark = "VmFlags:";
  std::ifstream mappings("/proc/self/smaps");
  bool ofFile = false;
  for (std::string line; std::getline(mappings, line);) {
    if (line.ends_with(name)) ofFile = true;
    if (!ofFile || !line.starts_with(mark)) continue;
    std::istringstream words(line.substr(mark.size()));
    std::vector<std::string> flags;
    for (std::string flag; words >> flag;) flags.push_back(flag);
    return flags;
  }
  return {};
}

class MappingAdvice : public TEST_READER::HandMade {
 protected:
  std::vector<std::string> flagsWith(Access access) const {
    Recording recording(header, access);
    const auto record = recording.record(0);
    return flagsOf(div1);
  }
};

TEST_F(MappingAdvice, InOrderFilesAreReadAheadInLargePages) {
  if (!std::filesystem::exists("/sys/kernel/mm/transparent_hugepage")) {
    GTEST_SKIP() << "this system has no large pages";
  }
  const auto flags = flagsWith(Access::kSequential);
  EXPECT_THAT(flags, Contains("sr"));
  EXPECT_THAT(flags, Contains("hg"));
}

TEST_F(MappingAdvice, SparselyNothingIsReadAhead) {
  const auto flags = flagsWith(Access::kSparse);
  EXPECT_THAT(flags, Contains("rr"));
  EXPECT_THAT(flags, Not(Contains("hg")));
}

}  // namespace
