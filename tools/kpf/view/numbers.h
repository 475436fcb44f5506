// Numbers in what the page asks.
#ifndef KPF_NUMBERS_H
#define KPF_NUMBERS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/kpf/view/exchange.h"

namespace KPF_TOOL {

/// "1,2.5": exactly `count` finite numbers. @throws ToolError.
std::vector<double> numbersOf(const std::string& text, std::size_t count);

/// Cut to a whole number from 0 to 4294967295.
std::uint32_t wholeOf(double value);

/// The text, or `otherwise` where the request does not say. @throws nothing.
std::string textOf(const Request& request, const std::string& name,
                   const std::string& otherwise = "");

/// A number of the request, or `otherwise`. @throws ToolError when it is none.
double numberOf(const Request& request, const std::string& name, double otherwise);
std::uint32_t wholeOf(const Request& request, const std::string& name, std::uint32_t otherwise);

}  // namespace KPF_TOOL

#endif
