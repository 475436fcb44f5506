// What the page asks and what it is answered, whatever carries it.
#ifndef KPF_EXCHANGE_H
#define KPF_EXCHANGE_H

#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "tools/kpf/terminal/json.h"

namespace KPF_TOOL {

/// A request of our own page.
struct Request {
  bool writes = false;                        // it may make files and start work
  std::string path;                           // "" is the page itself
  std::map<std::string, std::string> values;  // of its query
  std::string body;
};

/// The answer. The bytes stay valid as long as `owner` lives, so that nobody copies pictures.
struct Reply {
  int status = 200;
  std::string type;
  std::span<const unsigned char> bytes;
  std::shared_ptr<const void> owner;
};

using Answer = std::function<Reply(const Request&)>;

inline Reply replyWith(std::vector<unsigned char> bytes, std::string type, int status = 200) {
  auto owner = std::make_shared<const std::vector<unsigned char>>(std::move(bytes));
  const std::span<const unsigned char> all(*owner);
  return {status, std::move(type), all, std::move(owner)};
}

/// Texts of recordings need not be UTF-8; JSON must be.
inline Reply replyWith(const Json& json, int status = 200) {
  const std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
  return replyWith(std::vector<unsigned char>(text.begin(), text.end()), "application/json",
                   status);
}

/// What the page tells the user, as it stands.
inline Reply refusal(int status, const std::string& text) {
  return replyWith(Json{{"error", text}}, status);
}

}  // namespace KPF_TOOL

#endif
