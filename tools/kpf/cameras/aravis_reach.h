// Why a camera may be out of reach.
#ifndef KPF_ARAVIS_REACH_H
#define KPF_ARAVIS_REACH_H

#include <filesystem>
#include <string>
#include <vector>

namespace KPF_TOOL {

/// The device files of USB3 Vision cameras that are plugged in.
/// @param devices where the system lists what is on the USB.
std::vector<std::string> usbCameras(const std::filesystem::path& devices);

/// Names of network interfaces that are up and have an IPv4 address, the loopback left out.
std::vector<std::string> networkInterfaces();

/// A sentence on what was found, and what to look at next.
/// @param closed device files of cameras that may not be opened.
std::string reachText(const std::vector<std::string>& closed,
                      const std::vector<std::string>& interfaces);

/// That sentence for this machine.
std::string whyNoCamera();

}  // namespace KPF_TOOL

#endif
