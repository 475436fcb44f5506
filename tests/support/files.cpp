#include "tests/support/files.h"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <system_error>

namespace TEST_SUPPORT {
namespace fs = std::filesystem;
namespace {

fs::path newFolderName() {
  static std::atomic<unsigned> count{0};
  static const std::string process = std::to_string(std::random_device{}());
  return fs::temp_directory_path() / ("vlm_test_" + process + "_" + std::to_string(++count));
}

}  // namespace

TemporaryFolder::TemporaryFolder() : path_(newFolderName()) { fs::create_directories(path_); }

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TemporaryFolder::operator/(const std::string& name) const {
  return (path_ / name).generic_string();
}

CurrentFolder::CurrentFolder(const fs::path& folder) : before_(fs::current_path()) {
  fs::current_path(folder);
}

CurrentFolder::~CurrentFolder() {
  std::error_code ignored;
  fs::current_path(before_, ignored);
}

Bytes readBytes(const fs::path& file) {
  const std::string text = readText(file);
  return {text.begin(), text.end()};
}

std::string readText(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + file.string());
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeBytes(const fs::path& file, const Bytes& bytes) {
  writeText(file, std::string(bytes.begin(), bytes.end()));
}

void writeText(const fs::path& file, const std::string& text) {
  std::ofstream out(file, std::ios::binary);
  out << text;
  if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
}

std::vector<std::string> entriesBelow(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    names.push_back(entry.path().lexically_relative(folder).generic_string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace TEST_SUPPORT
