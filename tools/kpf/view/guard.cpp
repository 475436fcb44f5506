#include "tools/kpf/view/guard.h"

#include <fmt/format.h>

#include <cstddef>
#include <random>
#include <string_view>
#include <utility>

namespace KPF_TOOL {
namespace {

/// Takes as long for a wrong first letter as for a wrong last one, so that nobody learns the secret
/// letter by letter.
bool sameInConstantTime(std::string_view given, std::string_view wanted) {
  if (given.size() != wanted.size()) return false;
  unsigned difference = 0;
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    difference |= static_cast<unsigned>(given[i] ^ wanted[i]);
  }
  return difference == 0;
}

bool reads(const std::string& method) { return method == "GET" || method == "HEAD"; }

}  // namespace

Guard::Guard(std::string authority, std::string secret)
    : authority_(std::move(authority)), secret_(std::move(secret)) {}

bool Guard::comesFromUs(const Visit& visit) const {
  if (visit.host != authority_) return false;
  const bool ownOrigin = visit.origin == "http://" + authority_;
  // What changes something has to say where it comes from; browsers always do.
  if (visit.method == "POST") return ownOrigin;
  return reads(visit.method) && (visit.origin.empty() || ownOrigin);
}

std::optional<std::string> Guard::admit(const Visit& visit) const {
  const std::string_view path = visit.path;
  if (!comesFromUs(visit) || !path.starts_with('/')) return std::nullopt;
  const std::size_t end = path.find('/', 1);
  if (!sameInConstantTime(path.substr(1, end - 1), secret_)) return std::nullopt;
  const std::string behind(end == std::string_view::npos ? "" : path.substr(end + 1));
  // Another site may lead here, as the file does that the browser is started with, and get no more.
  const bool elsewhere =
      !visit.fetchSite.empty() && visit.fetchSite != "same-origin" && visit.fetchSite != "none";
  if (elsewhere && (visit.fetchMode != "navigate" || !behind.empty())) return std::nullopt;
  return behind;
}

std::string makeSecret() {
  std::random_device random;  // the system's generator, not a sequence
  std::string digits;
  for (int word = 0; word < 4; ++word) digits += fmt::format("{:08x}", random());
  return digits;
}

}  // namespace KPF_TOOL
