// A page cache that notes what it is asked, one word for each call.
#ifndef TESTS_STREAM_SCRIPTED_PAGE_CACHE_H
#define TESTS_STREAM_SCRIPTED_PAGE_CACHE_H

#include <cstdint>
#include <string>
#include <utility>

#include "stream/page_cache.h"

class ScriptedPageCache final : public VLM_KPF::PageCache {
 public:
  static constexpr int kKept = 1000;  // added to a file's descriptor by keepOpen
  static constexpr std::uint64_t kMiB = 1U << 20;

  void startWriting(int file, VLM_KPF::ByteRange bytes) noexcept override {
    note("start", file, bytes);
  }
  void dropWritten(int file, VLM_KPF::ByteRange bytes) noexcept override {
    note("drop", file, bytes);
  }
  int keepOpen(int file) noexcept override {
    said_ += "keep " + std::to_string(file) + "\n";
    return full ? -1 : file + kKept;
  }
  void release(int file) noexcept override { said_ += "release " + std::to_string(file) + "\n"; }

  /// What was asked since the last time: "start 5 0-8" is of MiB 0 to 8 of file 5; a `+` stands for
  /// bytes beyond.
  std::string said() { return std::exchange(said_, ""); }

  bool full = false;  // no descriptor is left to give

 private:
  void note(const char* what, int file, VLM_KPF::ByteRange bytes) {
    said_ += std::string(what) + " " + std::to_string(file) + " " +
             std::to_string(bytes.begin / kMiB) + "-" + std::to_string(bytes.end / kMiB) +
             (bytes.end % kMiB != 0 ? "+\n" : "\n");
  }

  std::string said_;
};

#endif
