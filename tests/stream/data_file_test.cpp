// A data file taken up again after a write that failed, on every system.
#include "stream/data_file.h"

#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/files.h"

namespace {

using TEST_SUPPORT::Bytes;

class DataFile : public testing::Test {
 protected:
  DataFile() : file(name, std::ios::out | std::ios::trunc | std::ios::binary) {}

  void write(const Bytes& bytes) {
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }
  Bytes bytesAfterClosing() {
    file.close();
    return TEST_SUPPORT::readBytes(name);
  }

  TEST_SUPPORT::TemporaryFolder folder;
  const std::string name = folder / "data.div";
  std::ofstream file;
};

TEST_F(DataFile, HasADescriptorWhileItIsOpen) {
  EXPECT_GE(VLM_KPF::descriptorOf(file), 0);
  file.close();
  EXPECT_EQ(VLM_KPF::descriptorOf(file), -1);
}

TEST_F(DataFile, WhatWaitsInTheBufferIsForgotten) {
  write({1, 2, 3});
  file.flush();
  write({9, 9});
  VLM_KPF::resumeAt(file, 3, 5);
  write({6});
  EXPECT_EQ(bytesAfterClosing(), (Bytes{1, 2, 3, 0, 0, 6}));
}

TEST_F(DataFile, TheTornBeginningIsCutOff) {
  write({1, 2, 3, 9, 9});
  file.flush();
  file.setstate(std::ios::failbit | std::ios::badbit);
  VLM_KPF::resumeAt(file, 3, 6);
  EXPECT_TRUE(file.good());
  EXPECT_EQ(TEST_SUPPORT::readBytes(name), (Bytes{1, 2, 3}));
  write({7, 8});
  EXPECT_EQ(bytesAfterClosing(), (Bytes{1, 2, 3, 0, 0, 0, 7, 8}));
}

TEST_F(DataFile, LargeWritesGoOnWhereTheyBelong) {
  write(Bytes(20000, 1));
  write({9, 9, 9});
  VLM_KPF::resumeAt(file, 20000, 20010);
  write({2});
  write(Bytes(30000, 3));
  const Bytes bytes = bytesAfterClosing();
  ASSERT_EQ(bytes.size(), 50011U);
  EXPECT_EQ(bytes[19999], 1);
  EXPECT_EQ(Bytes(bytes.begin() + 20000, bytes.begin() + 20012),
            (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 3}));
}

TEST_F(DataFile, AShorterFileIsNotMadeLonger) {
  write({1});
  file.flush();
  VLM_KPF::resumeAt(file, 10, 20);
  EXPECT_EQ(bytesAfterClosing(), (Bytes{1}));
}

TEST_F(DataFile, AClosedOneStaysClosedAndSaysSo) {
  file.close();
  VLM_KPF::resumeAt(file, 0, 10);
  EXPECT_FALSE(file.good());
  EXPECT_FALSE(file.is_open());
}

}  // namespace
