// Systems that take no such advice.
#include <cstdint>
#include <filesystem>

#include "stream/page_cache.h"

namespace VLM_KPF {
namespace {

class NoPageCache final : public PageCache {
 public:
  void startWriting(int, ByteRange) noexcept override {}
  void dropWritten(int, ByteRange) noexcept override {}
  int keepOpen(int) noexcept override { return -1; }
  int takePages(const std::filesystem::path&, std::uint64_t) noexcept override { return -1; }
  void keepPages(int, std::uint64_t) noexcept override {}
  void release(int) noexcept override {}
};

constinit NoPageCache instance;

}  // namespace

PageCache& PageCache::system() { return instance; }

}  // namespace VLM_KPF
