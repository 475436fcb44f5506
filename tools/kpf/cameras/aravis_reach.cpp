#include "tools/kpf/cameras/aravis_reach.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <system_error>

namespace KPF_TOOL {
namespace fs = std::filesystem;
namespace {

std::string wordIn(const fs::path& file) {
  std::string word;
  std::ifstream(file) >> word;
  return word;
}

}  // namespace

// Interfaces of class "miscellaneous", subclass "USB3 Vision". The device is the folder whose name
// is that of the interface up to the colon.
std::vector<std::string> usbCameras(const fs::path& devices) {
  std::vector<std::string> cameras;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(devices, none)) {
    if (wordIn(entry.path() / "bInterfaceClass") != "ef") continue;
    if (wordIn(entry.path() / "bInterfaceSubClass") != "05") continue;
    const std::string name = entry.path().filename().string();
    const fs::path device = devices / name.substr(0, name.find(':'));
    const int bus = std::atoi(wordIn(device / "busnum").c_str());
    const int number = std::atoi(wordIn(device / "devnum").c_str());
    const std::string file = fmt::format("/dev/bus/usb/{:03}/{:03}", bus, number);
    // A camera has several such interfaces: control, events, stream.
    if (std::find(cameras.begin(), cameras.end(), file) == cameras.end()) cameras.push_back(file);
  }
  return cameras;
}

std::vector<std::string> networkInterfaces() {
  std::vector<std::string> names;
  ifaddrs* all = nullptr;
  if (getifaddrs(&all) != 0) return names;
  for (const ifaddrs* at = all; at != nullptr; at = at->ifa_next) {
    const bool up = (at->ifa_flags & IFF_UP) != 0 && (at->ifa_flags & IFF_LOOPBACK) == 0;
    if (up && at->ifa_addr != nullptr && at->ifa_addr->sa_family == AF_INET) {
      names.emplace_back(at->ifa_name);
    }
  }
  freeifaddrs(all);
  return names;
}

std::string reachText(const std::vector<std::string>& closed,
                      const std::vector<std::string>& interfaces) {
  if (!closed.empty()) {
    return fmt::format(
        "No permission: a USB3 Vision camera is plugged in, and you may not open {}. Add a udev "
        "rule "
        "that lets you.",
        closed.front());
  }
  if (interfaces.empty()) {
    return "No network: no interface is up that has an address; and no camera was found on the "
           "USB.";
  }
  return fmt::format(
      "No camera answered on {}, and none was found on the USB. Cameras in another "
      "network, and behind a firewall that stops UDP, are not found: name one by its address, "
      "genicam:192.168.0.10.",
      fmt::join(interfaces, ", "));
}

std::string whyNoCamera() {
  std::vector<std::string> closed;
  for (const std::string& file : usbCameras("/sys/bus/usb/devices")) {
    if (access(file.c_str(), R_OK | W_OK) != 0) closed.push_back(file);
  }
  return reachText(closed, networkInterfaces());
}

}  // namespace KPF_TOOL
