#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/files.h"
#include "tools/kpf/cameras/aravis_reach.h"

namespace {

using namespace KPF_TOOL;

TEST(ReachTest, CamerasOnTheUsbAreFoundByTheirInterfaces) {
  const TEST_SUPPORT::TemporaryFolder folder;
  const auto write = [&folder](const std::string& name, const std::string& text) {
    std::filesystem::create_directories((folder.path() / name).parent_path());
    TEST_SUPPORT::writeText(folder.path() / name, text + "\n");
  };
  write("2-1/busnum", "2");
  write("2-1/devnum", "14");
  for (const std::string part : {"2-1:1.0", "2-1:1.1"}) {
    write(part + "/bInterfaceClass", "ef");
    write(part + "/bInterfaceSubClass", "05");
  }
  write("1-4:1.0/bInterfaceClass", "03");
  write("1-4:1.0/bInterfaceSubClass", "01");
  EXPECT_EQ(usbCameras(folder.path()), std::vector<std::string>{"/dev/bus/usb/002/014"});
  EXPECT_TRUE(usbCameras(folder.path() / "none").empty());
}

TEST(ReachTest, SaysWhatToLookAtNext) {
  EXPECT_NE(reachText({"/dev/bus/usb/002/014"}, {"eth0"}).find("may not open /dev/bus/usb/002/014"),
            std::string::npos);
  EXPECT_NE(reachText({}, {}).find("No network"), std::string::npos);
  EXPECT_NE(reachText({}, {"eth0", "eth1"}).find("answered on eth0, eth1"), std::string::npos);
}

}  // namespace
