// What the user is told beside the result.
#ifndef KPF_TELL_H
#define KPF_TELL_H

#include <fmt/format.h>

#include <cstdio>
#include <utility>

namespace KPF_TOOL {

/// On standard error, if anybody listens: {fmt} itself would throw where that is closed, full or a
/// terminal that is gone, and no job ends for that.
template <class... Arguments>
void tell(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
  std::fputs(fmt::format(format, std::forward<Arguments>(arguments)...).c_str(), stderr);
}

}  // namespace KPF_TOOL

#endif
