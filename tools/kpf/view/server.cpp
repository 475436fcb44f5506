// The one file that knows cpp-httplib.
#include "tools/kpf/view/server.h"

#include <fmt/format.h>
#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "tools/kpf/terminal/tool_error.h"
#include "tools/kpf/view/guard.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kThreads = 16;            // a browser keeps six connections
constexpr std::size_t kLargestBody = 64 << 10;  // a job in JSON is far smaller
constexpr std::size_t kLongestPath = 256;       // ours are far shorter
constexpr std::size_t kPiece = 1 << 20;         // bytes handed to the socket at once
constexpr int kIdleSeconds = 1;                 // how long Ctrl-C may wait for a connection

/// Nothing runs or loads but what is served here; nothing is kept, framed, or told to others.
const httplib::Headers kHeaders = {
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob:; "
     "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Cache-Control", "no-store"}};

/// The header's value; nonsense where it is given twice, which no browser does.
std::string only(const httplib::Request& request, const char* name) {
  return request.get_header_value_count(name) > 1 ? "given twice" : request.get_header_value(name);
}

Visit visitOf(const httplib::Request& request) {
  return {request.method,
          request.path,
          only(request, "Host"),
          only(request, "Origin"),
          only(request, "Sec-Fetch-Site"),
          only(request, "Sec-Fetch-Mode")};
}

/// Sends the bytes from where they lie. A provider is also what keeps the library from compressing:
/// on loopback that only costs time.
void send(const Reply& reply, httplib::Response& response) {
  response.status = reply.status;
  if (reply.bytes.empty()) return;
  const auto provide = [reply](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
    const auto piece = reply.bytes.subspan(offset, std::min(length, kPiece));
    return sink.write(reinterpret_cast<const char*>(piece.data()), piece.size());
  };
  response.set_content_provider(reply.bytes.size(), reply.type, provide);
}

}  // namespace

class Server::Listener {
 public:
  Listener(std::uint16_t port, Answer answer) : answer_(std::move(answer)) {
    set();
    const int bound = port == 0 ? server_.bind_to_any_port("127.0.0.1")
                      : server_.bind_to_port("127.0.0.1", port) ? port
                                                                : -1;
    if (bound < 0) {
      throw ToolError(Outcome::kRefused, fmt::format("port {} of 127.0.0.1 is taken", port),
                      "Choose another --port, or none.");
    }
    const std::string authority = fmt::format("127.0.0.1:{}", bound), secret = makeSecret();
    guard_ = std::make_unique<Guard>(authority, secret);
    address_ = fmt::format("http://{}/{}/", authority, secret);
    thread_ = std::thread([this] {
      server_.listen_after_bind();
      ended_ = true;
    });
    // Before it runs the library takes no notice of stop().
    while (!server_.is_running() && !ended_) std::this_thread::yield();
  }

  ~Listener() {
    server_.stop();
    thread_.join();
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  const std::string& address() const { return address_; }

 private:
  using Handled = httplib::Server::HandlerResponse;

  void set() {
    server_.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    server_.set_default_headers(kHeaders);
    server_.set_tcp_nodelay(true);
    // Without the library's SO_REUSEPORT, by which another process could share the port.
    server_.set_socket_options([](socket_t socket) {
      const int yes = 1;
      setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    server_.set_payload_max_length(kLargestBody);
    server_.set_keep_alive_max_count(1'000'000'000);
    server_.set_keep_alive_timeout(kIdleSeconds);
    // The library's own routing matches by regular expressions, which recurse over long paths, so
    // all is answered before it. Only what has a body has to wait until that is read.
    server_.set_pre_routing_handler([this](const auto& request, auto& response) {
      const bool known = request.method == "GET" || request.method == "HEAD";
      if (request.path.size() <= kLongestPath && request.method == "POST") {
        return Handled::Unhandled;
      }
      if (request.path.size() > kLongestPath || !known) {
        send(refusal(403, "refused"), response);
      } else {
        answer(request, response);
      }
      return Handled::Handled;
    });
    server_.Post(".*", [this](const auto& request, auto& response) { answer(request, response); });
  }

  /// No exception leaves: the library would put its text into a header.
  void answer(const httplib::Request& request, httplib::Response& response) {
    const auto path = guard_->admit(visitOf(request));
    if (!path) return send(refusal(403, "refused"), response);
    try {
      const std::map<std::string, std::string> values(request.params.begin(), request.params.end());
      send(answer_({request.method == "POST", *path, values, request.body}), response);
    } catch (const std::exception& error) {
      send(refusal(500, error.what()), response);
    }
  }

  Answer answer_;
  httplib::Server server_;
  std::unique_ptr<Guard> guard_;
  std::string address_;
  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

Server::Server(std::uint16_t port, Answer answer)
    : listener_(std::make_unique<Listener>(port, std::move(answer))) {}
Server::~Server() = default;

const std::string& Server::address() const { return listener_->address(); }

}  // namespace KPF_TOOL
