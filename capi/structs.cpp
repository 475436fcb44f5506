#include "capi/structs.h"

#include <atomic>
#include <cstddef>
#include <string>

#include "capi/handles.h"

namespace KPF_C {
namespace {

constexpr std::uint32_t kStep = 8;        // bytes by which structures grow
constexpr std::uint32_t kLargest = 4096;  // far beyond any; more is a size that nobody set

}  // namespace

void requireStructSize(std::uint32_t size) {
  if (size >= kStep && size <= kLargest && size % kStep == 0) return;
  throw Failure(KPF_ERROR_STRUCT,
                "struct_size is " + std::to_string(size) + "; set it to sizeof the structure");
}

void requireZeroBehind(const void* structure, std::size_t known, std::uint32_t size) {
  const auto* const bytes = static_cast<const unsigned char*>(structure);
  const bool zero = size <= known || std::all_of(bytes + known, bytes + size,
                                                 [](unsigned char byte) { return byte == 0; });
  if (!zero) {
    throw Failure(KPF_ERROR_STRUCT,
                  "a member is set that version " KPF_VERSION_TEXT " does not know");
  }
}

std::uintptr_t newHandleNumber() {
  static std::atomic<std::uintptr_t> last{0};
  return last += 16;
}

}  // namespace KPF_C

kpf_result kpf_struct_init(void* structure, uint32_t struct_size) {
  return KPF_C::call(__func__, [=] {
    KPF_C::require(structure != nullptr, "the structure is null");
    KPF_C::requireStructSize(struct_size);
    std::memset(structure, 0, struct_size);
    std::memcpy(structure, &struct_size, sizeof struct_size);
  });
}
