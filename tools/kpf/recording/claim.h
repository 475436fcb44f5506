// The name of a recording, as long as somebody writes it.
#ifndef KPF_CLAIM_H
#define KPF_CLAIM_H

#include <filesystem>
#include <optional>
#include <string>

#include "tools/kpf/files/file_system.h"

namespace KPF_TOOL {

/**
 * Keeps other processes of this program from a recording while its files are being written.
 *
 * Two recorders of one name would write into the same data files, and the one that ends last would
 * say in the other's header how many frames there are.
 */
class Claim {
 public:
  /// Makes the folder of the data files, which is what other processes look at.
  explicit Claim(const std::string& header);
  /// A folder that it made and nothing came into goes again.
  ~Claim();
  Claim(const Claim&) = delete;
  Claim& operator=(const Claim&) = delete;

  /// Whether the name is somebody else's.
  bool isOthers() const { return lock_ && lock_->isOthers(); }

  /// @throws ToolError where it is.
  void demand() const;

 private:
  const std::string header_;
  const std::filesystem::path folder_;
  bool made_ = false;  // by this object
  std::optional<FolderLock> lock_;
};

/// The same without a claim: whoever will make one later learns now that it would be refused.
/// @throws ToolError.
void checkUnclaimed(const std::string& header);

}  // namespace KPF_TOOL

#endif
