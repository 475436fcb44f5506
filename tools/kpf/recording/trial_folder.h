// A place on the disk that is tried, and nothing left of it afterwards.
#ifndef KPF_TRIAL_FOLDER_H
#define KPF_TRIAL_FOLDER_H

#include <cstdint>
#include <string>

namespace KPF_TOOL {

/// A folder of its own below another, removed with all that is in it.
class TrialFolder {
 public:
  /// @throws ToolError where `parent` is no folder, or nothing can be made in it.
  explicit TrialFolder(const std::string& parent);
  ~TrialFolder() { clear(); }
  TrialFolder(const TrialFolder&) = delete;
  TrialFolder& operator=(const TrialFolder&) = delete;

  const std::string& path() const { return path_; }
  /// Bytes that are free on its disk, as this user may take them.
  std::uint64_t room() const;
  /// Removes the folder with all that is in it.
  void clear() const;

 private:
  std::string path_;
};

/// Bytes of a frame's record. @throws ToolError for one that fits no data file.
std::uint64_t recordBytes(unsigned width, unsigned height, int bits);

}  // namespace KPF_TOOL

#endif
