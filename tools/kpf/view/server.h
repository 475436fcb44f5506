// A server for this machine's browsers alone.
#ifndef KPF_SERVER_H
#define KPF_SERVER_H

#include <cstdint>
#include <memory>
#include <string>

#include "tools/kpf/view/exchange.h"

namespace KPF_TOOL {

/// Listens on 127.0.0.1 and passes on what Guard admits. Every answer forbids the browser to run
/// or load anything but what comes from here, and to keep any of it.
class Server {
 public:
  /// @param port 0 for one that is free. @param answer is called by several threads at a time.
  /// @throws ToolError when the port is taken.
  Server(std::uint16_t port, Answer answer);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// Where the page is, secret included.
  const std::string& address() const;

 private:
  class Listener;
  std::unique_ptr<Listener> listener_;
};

}  // namespace KPF_TOOL

#endif
