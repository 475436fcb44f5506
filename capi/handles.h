// Handles of one kind, and what they stand for.
#ifndef CAPI_HANDLES_H
#define CAPI_HANDLES_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <utility>

#include "capi/calls.h"

namespace KPF_C {

/// A number that no handle of any kind has had. Looks like an address, and is none.
std::uintptr_t newHandleNumber();

/**
 * Objects by their handles. A handle is looked up, never followed: one that was closed, or is of
 * another kind, is told from a living one for as long as the process runs. Safe on any thread; an
 * object lives until the last call that found it has ended.
 */
template <class Handle, class Object>
class Handles {
 public:
  Handle* issue(std::shared_ptr<Object> object) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): opaque, and only ever compared.
    auto* const handle = reinterpret_cast<Handle*>(newHandleNumber());
    const std::unique_lock lock(mutex_);
    objects_.emplace(handle, std::move(object));
    return handle;
  }

  std::shared_ptr<Object> find(Handle* handle) const {
    const std::shared_lock lock(mutex_);
    const auto found = objects_.find(handle);
    if (found == objects_.end()) throwNoSuchHandle(handle);
    return found->second;
  }

  /// Ends the handle and gives its object out.
  std::shared_ptr<Object> retire(Handle* handle) {
    const std::unique_lock lock(mutex_);
    const auto found = objects_.find(handle);
    if (found == objects_.end()) throwNoSuchHandle(handle);
    std::shared_ptr<Object> object = std::move(found->second);
    objects_.erase(found);
    return object;
  }

 private:
  [[noreturn]] static void throwNoSuchHandle(const Handle* handle) {
    throw Failure(KPF_ERROR_HANDLE, handle == nullptr ? "the handle is null"
                                                      : "the handle was closed, or never issued");
  }

  mutable std::shared_mutex mutex_;  // guards the table, not the objects
  std::unordered_map<Handle*, std::shared_ptr<Object>> objects_;
};

}  // namespace KPF_C

#endif
