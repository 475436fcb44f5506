// Who may ask the server for anything.
#ifndef KPF_GUARD_H
#define KPF_GUARD_H

#include <optional>
#include <string>

namespace KPF_TOOL {

/// What a request says of where it comes from. A header that is missing is empty, one that is given
/// twice counts as wrong and must not get here.
struct Visit {
  std::string method;
  std::string path;
  std::string host;       // Host
  std::string origin;     // Origin
  std::string fetchSite;  // Sec-Fetch-Site, which a page cannot forge
  std::string fetchMode;  // Sec-Fetch-Mode
};

/**
 * Lets in the page that the tool itself opened and nobody else.
 *
 * The port is open to every program of the machine, and to every page in its browsers. Such a page
 * does not know the secret; one that has got hold of it still names another origin, and one whose
 * own name was made to point to 127.0.0.1 still sends that name as the host.
 */
class Guard {
 public:
  /// @param authority host and port, as a browser that was sent here puts them in Host.
  Guard(std::string authority, std::string secret);

  /// The path behind the secret, without a slash at its head; nothing when the visitor is refused.
  std::optional<std::string> admit(const Visit& visit) const;

 private:
  bool comesFromUs(const Visit& visit) const;

  std::string authority_;
  std::string secret_;
};

/// 128 random bits in hexadecimal digits.
std::string makeSecret();

}  // namespace KPF_TOOL

#endif
