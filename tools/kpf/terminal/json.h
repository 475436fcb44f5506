// Results for programs.
#ifndef KPF_JSON_H
#define KPF_JSON_H

#include <fmt/format.h>

#include <nlohmann/json.hpp>

namespace KPF_TOOL {

/// Keeps the members in the order in which they are set, so that people can read them too.
using Json = nlohmann::ordered_json;

/// One document on standard output. Texts of recordings need not be UTF-8, JSON must be: what is
/// not becomes U+FFFD.
inline void printJson(const Json& json) {
  fmt::print("{}\n", json.dump(2, ' ', false, Json::error_handler_t::replace));
}

}  // namespace KPF_TOOL

#endif
