// Files as the tests see them: whole, as bytes, under a folder of the test's own.
#ifndef TESTS_SUPPORT_FILES_H
#define TESTS_SUPPORT_FILES_H

#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

namespace TEST_SUPPORT {

using Bytes = std::vector<unsigned char>;

/// A new folder under the system's temporary one, removed with all it holds at the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  /// `name` in this folder, with forward slashes.
  std::string operator/(const std::string& name) const;

 private:
  std::filesystem::path path_;
};

/// Makes `folder` the current one for as long as it lives.
class CurrentFolder {
 public:
  explicit CurrentFolder(const std::filesystem::path& folder);
  ~CurrentFolder();
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;

 private:
  std::filesystem::path before_;
};

/// Throws when the file cannot be read: a test that asks for a file means it to be there.
Bytes readBytes(const std::filesystem::path& file);
std::string readText(const std::filesystem::path& file);
void writeBytes(const std::filesystem::path& file, const Bytes& bytes);
void writeText(const std::filesystem::path& file, const std::string& text);

/// Names of all entries below `folder`, sorted, with forward slashes.
std::vector<std::string> entriesBelow(const std::filesystem::path& folder);

}  // namespace TEST_SUPPORT

#endif
