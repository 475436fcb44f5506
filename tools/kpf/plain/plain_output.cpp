#include "tools/kpf/plain/plain_output.h"

#include <string>

#include "tools/kpf/plain/frame_file.h"
#include "tools/kpf/plain/pgm_output.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {

std::unique_ptr<PictureOutput> openPlainOutput(const Destination& destination,
                                               const PictureFormat& format) {
  const std::string name = lowerCase(destination.name);
  if (name.ends_with(".raw")) return openFrameFile(destination, format, {});
  if (name.ends_with(".y4m")) return openFrameFile(destination, format, y4mFraming(format));
  if (name.ends_with(".pgm")) return openPgmOutput(destination, format);
  return nullptr;
}

}  // namespace KPF_TOOL
