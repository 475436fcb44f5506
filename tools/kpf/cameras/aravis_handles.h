// Aravis' objects and errors, released on every way out.
#ifndef KPF_ARAVIS_HANDLES_H
#define KPF_ARAVIS_HANDLES_H

#include <arv.h>

#include <memory>
#include <string>
#include <vector>

namespace KPF_TOOL {

struct Unref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
using CameraPtr = std::unique_ptr<ArvCamera, Unref>;
using StreamPtr = std::unique_ptr<ArvStream, Unref>;
using BufferPtr = std::unique_ptr<ArvBuffer, Unref>;

/// Where Aravis puts what went wrong.
class ArvError {
 public:
  ArvError() = default;
  ~ArvError() { g_clear_error(&error_); }
  ArvError(const ArvError&) = delete;
  ArvError& operator=(const ArvError&) = delete;

  /// For a call; forgets what an earlier one left.
  GError** fresh() {
    g_clear_error(&error_);
    return &error_;
  }
  explicit operator bool() const { return error_ != nullptr; }
  std::string text() const { return error_ == nullptr ? "" : error_->message; }

 private:
  GError* error_ = nullptr;
};

/// What Aravis returns where it may have nothing to say.
inline std::string textOf(const char* text) { return text == nullptr ? "" : text; }

/// The names of the camera's pixel formats; none where it does not tell.
std::vector<std::string> pixelFormatsOf(ArvCamera* camera);

}  // namespace KPF_TOOL

#endif
