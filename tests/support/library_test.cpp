#include "tests/support/library_test.h"

#include <cstdio>

#include "interface/vlm_internal_tables.h"
#include "vx_log.h"

namespace TEST_SUPPORT {
namespace {

void resetLibrary() {
  VLM_INTERNAL::maVector.clear();
  VLM_INTERNAL::streamVector.clear();
  const auto logger = VX_LOG::VxLogger::factory();
  logger->loggerFile(nullptr);
  logger->loggerUseStdout(true);
}

}  // namespace

std::string outputOf(const std::function<void()>& action) {
  testing::internal::CaptureStdout();
  action();
  return testing::internal::GetCapturedStdout();
}

LibraryTest::LibraryTest() : current_(folder.path()) {
  resetLibrary();
  testing::internal::CaptureStdout();
}

LibraryTest::~LibraryTest() {
  resetLibrary();
  const std::string held = testing::internal::GetCapturedStdout();
  if (HasFailure()) std::fputs(held.c_str(), stderr);  // GoogleTest's own words among them
}

std::string LibraryTest::output() {
  std::string text = testing::internal::GetCapturedStdout();
  testing::internal::CaptureStdout();
  return text;
}

}  // namespace TEST_SUPPORT
