#include "capi/calls.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <exception>
#include <iterator>
#include <new>
#include <string_view>

#include "reader/kpf_reader.h"

namespace KPF_C {
namespace {

// Fixed, so that running out of memory can be told, and there is nothing to free at a thread's end.
constexpr std::size_t kTextCapacity = 2048;
thread_local char errorText[kTextCapacity] = "";

/// `at`, or before it where that would split a character of UTF-8.
std::size_t characterStart(std::string_view text, std::size_t at) {
  while (at > 0 && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80) --at;
  return at;
}

std::size_t append(std::size_t length, std::string_view text) {
  const std::size_t room = kTextCapacity - 1 - length;
  const std::size_t taken = text.size() <= room ? text.size() : characterStart(text, room);
  std::memcpy(errorText + length, text.data(), taken);
  return length + taken;
}

kpf_result fail(const char* function, kpf_result result, std::string_view problem) noexcept {
  std::size_t length = append(0, function);
  length = append(length, ": ");
  length = append(length, problem);
  errorText[length] = '\0';
  std::replace(errorText, errorText + length, '\n', ' ');
  return result;
}

}  // namespace

kpf_result reportException(const char* function) noexcept {
  try {
    throw;
  } catch (const Failure& failure) {
    return fail(function, failure.result(), failure.what());
  } catch (const KPF_READER::RecordingError& error) {
    return fail(function, KPF_ERROR_FORMAT, error.what());
  } catch (const std::bad_alloc&) {
    return fail(function, KPF_ERROR_MEMORY, "out of memory");
  } catch (const std::exception& error) {
    return fail(function, KPF_ERROR_INTERNAL, error.what());
  } catch (...) {
    return fail(function, KPF_ERROR_INTERNAL, "an exception of an unknown kind");
  }
}

}  // namespace KPF_C

const char* kpf_error_text(void) { return KPF_C::errorText; }

const char* kpf_version(void) { return KPF_VERSION_TEXT; }

const char* kpf_result_name(kpf_result result) {
  static constexpr const char* kNames[] = {
      "KPF_OK",         "KPF_ERROR_ARGUMENT",   "KPF_ERROR_STRUCT", "KPF_ERROR_HANDLE",
      "KPF_ERROR_NAME", "KPF_ERROR_EXISTS",     "KPF_ERROR_OPEN",   "KPF_ERROR_WRITE",
      "KPF_ERROR_FULL", "KPF_ERROR_INCOMPLETE", "KPF_ERROR_FORMAT", "KPF_ERROR_RANGE",
      "KPF_ERROR_LOST", "KPF_ERROR_NOT_READY",  "KPF_ERROR_MEMORY", "KPF_ERROR_INTERNAL"};
  const auto number = static_cast<std::size_t>(result);
  return number < std::size(kNames) ? kNames[number] : "unknown";
}
