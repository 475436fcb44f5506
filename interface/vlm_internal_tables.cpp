// The tables, from before the first constructor to the end of the process.
#include "interface/vlm_internal_tables.h"

namespace VLM_INTERNAL {
namespace {

/// A table that is never destroyed: a call from the destructor of another static object, or from a
/// thread that nobody ended, finds a table.
template <class Object>
union Kept {
  constexpr Kept() : table() {}
  constexpr ~Kept() {}
  Kept(const Kept&) = delete;
  Kept& operator=(const Kept&) = delete;
  HandleTable<Object> table;
};

constinit Kept<VLM_KPF::VxKPFPackedStream> streams;
constinit Kept<VLM_KPF::VxKPFMotionAmpl> amplifiers;

/// The slots stay, so that the handles are answered like those of any other closed object.
template <class Object>
void destroyAll(HandleTable<Object>& table) {
  for (auto& slot : table) slot.reset();
}

/// Destroys at the end what nobody has closed, the amplifiers first.
struct LastCloser {
  ~LastCloser() {
    destroyAll(amplifiers.table);
    destroyAll(streams.table);
  }
};

// A low priority: made before the static objects of the application, in whatever order the program
// was linked, it comes after them at the end, and before the logger that closing a stream writes
// to.
[[gnu::init_priority(103)]] LastCloser lastCloser;

}  // namespace

constinit HandleTable<VLM_KPF::VxKPFPackedStream>& streamVector = streams.table;
constinit HandleTable<VLM_KPF::VxKPFMotionAmpl>& maVector = amplifiers.table;

}  // namespace VLM_INTERNAL
