// A page cache that notes what it is asked, one word for each call.
#ifndef TESTS_STREAM_SCRIPTED_PAGE_CACHE_H
#define TESTS_STREAM_SCRIPTED_PAGE_CACHE_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>

#include "stream/page_cache.h"

class ScriptedPageCache final : public VLM_KPF::PageCache {
 public:
  static constexpr int kKept = 1000;  // added to a file's descriptor by keepOpen
  static constexpr int kTaken = 99;   // what takePages gives
  static constexpr std::uint64_t kMiB = 1U << 20;

  void startWriting(int file, VLM_KPF::ByteRange bytes) noexcept override {
    note("start", std::to_string(file), bytes);
  }
  void dropWritten(int file, VLM_KPF::ByteRange bytes) noexcept override {
    note("drop", std::to_string(file), bytes);
  }
  int keepOpen(int file) noexcept override {
    said_ += "keep " + std::to_string(file) + "\n";
    return full ? -1 : file + kKept;
  }
  int takePages(const std::filesystem::path& folder, std::uint64_t bytes) noexcept override {
    note("take", (folder / "").parent_path().filename().string(), {0, bytes});
    return full ? -1 : kTaken;
  }
  void keepPages(int pages, std::uint64_t bytes) noexcept override {
    note("hold", std::to_string(pages), {0, bytes});
  }
  void release(int file) noexcept override { said_ += "release " + std::to_string(file) + "\n"; }

  /// What was asked since the last time: "start 5 0-8" is of MiB 0 to 8 of file 5; a `+` stands for
  /// bytes beyond.
  std::string said() { return std::exchange(said_, ""); }

  bool full = false;  // no descriptor is left to give

 private:
  void note(const char* what, const std::string& whose, VLM_KPF::ByteRange bytes) {
    said_ += std::string(what) + " " + whose + " " + std::to_string(bytes.begin / kMiB) + "-" +
             std::to_string(bytes.end / kMiB) + (bytes.end % kMiB != 0 ? "+\n" : "\n");
  }

  std::string said_;
};

#endif
