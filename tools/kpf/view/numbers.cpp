#include "tools/kpf/view/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

[[noreturn]] void refuse(const std::string& text) {
  throw ToolError(Outcome::kWrongUsage, quoted(text) + " is not what was expected",
                  "Load the page again.");
}

}  // namespace

std::vector<double> numbersOf(const std::string& text, std::size_t count) {
  std::vector<double> values;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (values.size() < count) {
    double value = 0;
    const auto [behind, error] = std::from_chars(at, end, value);
    if (error != std::errc() || !std::isfinite(value)) refuse(text);
    values.push_back(value);
    at = behind;
    if (values.size() < count && (at == end || *at++ != ',')) refuse(text);
  }
  if (at != end) refuse(text);
  return values;
}

std::uint32_t wholeOf(double value) {
  constexpr double kMost = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(std::clamp(value, 0.0, kMost));
}

std::string textOf(const Request& request, const std::string& name, const std::string& otherwise) {
  const auto found = request.values.find(name);
  return found == request.values.end() ? otherwise : found->second;
}

double numberOf(const Request& request, const std::string& name, double otherwise) {
  const auto found = request.values.find(name);
  return found == request.values.end() ? otherwise : numbersOf(found->second, 1).front();
}

std::uint32_t wholeOf(const Request& request, const std::string& name, std::uint32_t otherwise) {
  return wholeOf(numberOf(request, name, otherwise));
}

}  // namespace KPF_TOOL
