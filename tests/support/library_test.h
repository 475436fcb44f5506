// A test that starts from the library as it is when just loaded, and sees what it says.
#ifndef TESTS_SUPPORT_LIBRARY_TEST_H
#define TESTS_SUPPORT_LIBRARY_TEST_H

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/support/files.h"

namespace TEST_SUPPORT {

/// What `action` writes to standard output, the C library's and the descriptor's alike.
std::string outputOf(const std::function<void()>& action);

/**
 * Every case has a folder of its own as the current one, an unset logger and empty handle tables.
 *
 * Standard output is held back from the start; `output()` gives and forgets what it holds.
 */
class LibraryTest : public testing::Test {
 protected:
  LibraryTest();
  ~LibraryTest() override;

  std::string output();

  TemporaryFolder folder;

 private:
  CurrentFolder current_;
};

}  // namespace TEST_SUPPORT

#endif
