// A TestCamera in a process of its own: fake_camera [LOST_PACKETS_IN_A_THOUSAND]
//
// Says "ready", and runs until its standard input ends.
#include <cstdio>
#include <cstdlib>

#include "tests/cameras/test_camera.h"

int main(int argc, char** argv) {
  const TEST_SUPPORT::TestCamera camera(argc > 1 ? std::strtod(argv[1], nullptr) : 0);
  std::puts("ready");
  std::fflush(stdout);
  char line[16];
  while (std::fgets(line, sizeof line, stdin) != nullptr) {
  }
  return 0;
}
