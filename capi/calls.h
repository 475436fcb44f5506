// What every exported function is wrapped in: exceptions end here, and become a result and a text.
#ifndef CAPI_CALLS_H
#define CAPI_CALLS_H

#include <stdexcept>
#include <string>

#include "capi/kpf.h"

namespace KPF_C {

/// Ends a call: the result that its caller gets, and what is to be said about it.
class Failure : public std::runtime_error {
 public:
  Failure(kpf_result result, const std::string& problem)
      : std::runtime_error(problem), result_(result) {}
  kpf_result result() const { return result_; }

 private:
  kpf_result result_;
};

/// Throws a KPF_ERROR_ARGUMENT unless `holds`.
inline void require(bool holds, const char* problem) {
  if (!holds) throw Failure(KPF_ERROR_ARGUMENT, problem);
}

/// To be called while an exception is handled: keeps its text for the thread, gives its result.
kpf_result reportException(const char* function) noexcept;

/// Runs `body`; whatever it throws is reported under the name of `function`.
template <class Body>
kpf_result call(const char* function, Body&& body) noexcept {
  try {
    body();
    return KPF_OK;
  } catch (...) {
    return reportException(function);
  }
}

}  // namespace KPF_C

#endif
