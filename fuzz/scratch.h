// A folder of this process's own for targets that need files.
#ifndef FUZZ_SCRATCH_H
#define FUZZ_SCRATCH_H

#include <filesystem>
#include <random>
#include <string>
#include <system_error>

namespace FUZZ {

class Scratch {
 public:
  Scratch()
      : path_(std::filesystem::temp_directory_path() /
              ("vlm_fuzz_" + std::to_string(std::random_device{}()))) {
    clear();
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::current_path(path_.parent_path(), ignored);  // Windows keeps the current one
    std::filesystem::remove_all(path_, ignored);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  /// Empty again.
  void clear() const {
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }

  std::string operator/(const std::string& name) const { return (path_ / name).generic_string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace FUZZ

#endif
