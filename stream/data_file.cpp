#include "stream/data_file.h"

#ifdef _WIN32
#include <io.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace VLM_KPF {
namespace {

#ifdef _WIN32
void cutAt(int file, std::uint64_t size) {
  if (_filelengthi64(file) > static_cast<__int64>(size))
    _chsize_s(file, static_cast<__int64>(size));
}
#else
void cutAt(int file, std::uint64_t size) {
  struct stat status {};
  if (fstat(file, &status) != 0 || status.st_size <= static_cast<off_t>(size)) return;
  [[maybe_unused]] const int ignored = ftruncate(file, static_cast<off_t>(size));
}
#endif

// What std::filebuf keeps from its users and gives to classes that derive from it: the way to the
// descriptor, which C++ has no public name for before C++26, and the bytes that wait in the buffer.
// A second descriptor, opened by the file's name, would be one more for every stream, and could be
// another file's.
class OpenBuffer : public std::filebuf {
 public:
  static int descriptor(std::filebuf& buffer) { return (buffer.*&OpenBuffer::_M_file).fd(); }
  static void forget(std::filebuf& buffer) { (buffer.*&OpenBuffer::setp)(nullptr, nullptr); }
};

}  // namespace

int descriptorOf(std::ofstream& file) noexcept {
  return file.is_open() ? OpenBuffer::descriptor(*file.rdbuf()) : -1;
}

// Whatever the buffer holds would go out with the next seek, or before the next record.
void resumeAt(std::ofstream& file, std::uint64_t whole, std::uint64_t next) {
  OpenBuffer::forget(*file.rdbuf());
  if (const int descriptor = descriptorOf(file); descriptor >= 0) cutAt(descriptor, whole);
  file.clear();
  file.seekp(static_cast<std::streamoff>(next));
}

}  // namespace VLM_KPF
