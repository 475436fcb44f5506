// Systems that take no such advice.
#include "stream/page_cache.h"

namespace VLM_KPF {
namespace {

class NoPageCache final : public PageCache {
 public:
  void startWriting(int, ByteRange) noexcept override {}
  void dropWritten(int, ByteRange) noexcept override {}
  int keepOpen(int) noexcept override { return -1; }
  void release(int) noexcept override {}
};

constinit NoPageCache instance;

}  // namespace

PageCache& PageCache::system() { return instance; }

}  // namespace VLM_KPF
