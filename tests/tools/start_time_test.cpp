#include "tools/kpf/recording/start_time.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <utility>

#include "tools/kpf/terminal/tool_error.h"

namespace {

using namespace KPF_TOOL;

using Time = std::pair<std::uint64_t, std::uint32_t>;

Time parsed(const std::string& text) {
  const StartTime time = parseStartTime(text);
  return {time.seconds, time.microseconds};
}

TEST(StartTime, SecondsSince1970) {
  EXPECT_EQ(parsed("0"), Time(0, 0));
  EXPECT_EQ(parsed("1700000000"), Time(1700000000, 0));
  EXPECT_EQ(parsed("999999999999999999"), Time(999999999999999999, 0));
}

TEST(StartTime, DigitsBehindThePointAreMicroseconds) {
  EXPECT_EQ(parsed("1.25"), Time(1, 250000));
  EXPECT_EQ(parsed("1.000001"), Time(1, 1));
  EXPECT_EQ(parsed("1.9999999"), Time(1, 999999));  // cut, not rounded into the next second
  EXPECT_EQ(parsed("2023-11-14T22:13:20.5"), Time(1700000000, 500000));
}

TEST(StartTime, DatesAreUtc) {
  EXPECT_EQ(parsed("2023-11-14T22:13:20Z"), Time(1700000000, 0));
  EXPECT_EQ(parsed("2023-11-14T22:13:20"), Time(1700000000, 0));
  EXPECT_EQ(parsed("2023-11-14 22:13:20"), Time(1700000000, 0));
  EXPECT_EQ(parsed("1970-01-01T00:00:00Z"), Time(0, 0));
  EXPECT_EQ(parsed("2024-02-29T23:59:59Z"), Time(1709251199, 0));
}

TEST(StartTime, NothingIsNow) {
  // std::time may be a few milliseconds behind this clock.
  const auto seconds = [] {
    return static_cast<std::uint64_t>(
        std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now())
            .time_since_epoch()
            .count());
  };
  const std::uint64_t before = seconds();
  const StartTime now = parseStartTime("");
  const std::uint64_t after = seconds();
  EXPECT_GE(now.seconds, before);
  EXPECT_LE(now.seconds, after);
  EXPECT_LT(now.microseconds, 1000000U);
}

class NoStartTime : public testing::TestWithParam<const char*> {};

TEST_P(NoStartTime, IsRefusedWithAnExample) {
  try {
    parseStartTime(GetParam());
    FAIL() << "taken for a time";
  } catch (const ToolError& error) {
    EXPECT_EQ(error.what(), std::string(GetParam()) + " is not a time");
    EXPECT_EQ(error.outcome(), Outcome::kWrongUsage);
    EXPECT_THAT(error.advice(), testing::HasSubstr("2026-11-21T05:00:00Z"));
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, NoStartTime,
    testing::Values("yesterday", "-1", "+1", "1e9", "1.", " 1", "1 ", "0x10",
                    "9999999999999999999",                         // more than 18 digits
                    "2023-02-29T00:00:00", "2023-13-01T00:00:00",  // no such day
                    "2023-11-00T00:00:00", "2023-11-14T24:00:00",  // no such hour
                    "2023-11-14T22:60:00", "2023-11-14T22:00:60",
                    "1969-12-31T23:59:59",  // the format counts from 1970
                    "2023-11-14", "2023-11-14T22:13", "2023-11-14T22:13:20+01:00"));

}  // namespace
