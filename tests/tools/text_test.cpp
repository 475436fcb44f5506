#include "tools/kpf/terminal/text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace KPF_TOOL;

TEST(Text, ControlCharactersAreEscaped) {
  EXPECT_EQ(escaped("\x1b[31mred\n"), "\\x1b[31mred\\x0a");
  EXPECT_EQ(escaped(std::string("a\0b", 3)), "a\\x00b");
  EXPECT_EQ(escaped("\x7f"), "\\x7f");
  EXPECT_EQ(escaped("\x1f \x20"), "\\x1f  ");
}

TEST(Text, WhatIsNoPrintableTextIsEscaped) {
  EXPECT_EQ(escaped("\xc2\x9b"
                    "31m"),
            "\\xc2\\x9b31m");  // a control character of two bytes
  EXPECT_EQ(escaped("a\xe2\x80\xae"
                    "b"),
            "a\\xe2\\x80\\xaeb");  // the rest to the left
  EXPECT_EQ(escaped("\xe2\x81\xa6"), "\\xe2\\x81\\xa6");
  EXPECT_EQ(escaped("\xd8\x9c"), "\\xd8\\x9c");
  EXPECT_EQ(escaped("\xef\xbb\xbf"), "\\xef\\xbb\\xbf");     // a byte order mark
  EXPECT_EQ(quoted("\xe2\x80\xa8"), "\"\\xe2\\x80\\xa8\"");  // a line end
}

TEST(Text, WhatIsNoUtf8IsEscapedByteByByte) {
  EXPECT_EQ(escaped("caf\xe9"), "caf\\xe9");              // Latin-1
  EXPECT_EQ(escaped("\xe2\x82"), "\\xe2\\x82");           // cut
  EXPECT_EQ(escaped("\xe2\x82\""), "\\xe2\\x82\"");       // and gone on with something else
  EXPECT_EQ(escaped("\xc0\xaf"), "\\xc0\\xaf");           // longer than need be
  EXPECT_EQ(escaped("\xed\xa0\x80"), "\\xed\\xa0\\x80");  // half of a pair
  EXPECT_EQ(escaped("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
  EXPECT_EQ(escaped("\xff\x80"), "\\xff\\x80");
}

TEST(Text, OtherWritingIsLeftAlone) {
  EXPECT_EQ(escaped("\xd0\x96 \xe6\xbc\xa2 \xf0\x9f\x8e\xa5"),
            "\xd0\x96 \xe6\xbc\xa2 \xf0\x9f\x8e\xa5");
  EXPECT_EQ(escaped("\xf4\x8f\xbf\xbd"), "\xf4\x8f\xbf\xbd");
}

TEST(Text, NamesKeepTheirOtherCharacters) {
  EXPECT_EQ(escaped(""), "");
  EXPECT_EQ(escaped("./a \"b\"\\c.kpf"), "./a \"b\"\\c.kpf");
  EXPECT_EQ(escaped("gr\xc3\xbc\xc3\x9f"), "gr\xc3\xbc\xc3\x9f");
}

TEST(Text, QuotedTextsEndWhereTheQuoteStands) {
  EXPECT_EQ(quoted(""), "\"\"");
  EXPECT_EQ(quoted("a\"b"), "\"a\\\"b\"");
  EXPECT_EQ(quoted("a\\"), "\"a\\\\\"");
  EXPECT_EQ(quoted("\t"), "\"\\x09\"");
}

TEST(Text, SizesHaveOneDigitAndDecimalUnits) {
  EXPECT_EQ(sizeText(0), "0 bytes");
  EXPECT_EQ(sizeText(999), "999 bytes");
  EXPECT_EQ(sizeText(1000), "1.0 kB");
  EXPECT_EQ(sizeText(351'900'000), "351.9 MB");
  EXPECT_EQ(sizeText(2e9), "2.0 GB");
  EXPECT_EQ(sizeText(3.25e12), "3.2 TB");
}

TEST(Text, SizesNeverReadThousandOfAUnit) {
  EXPECT_EQ(sizeText(999'949), "999.9 kB");
  EXPECT_EQ(sizeText(999'950), "1.0 MB");
  EXPECT_EQ(sizeText(999'999'999), "1.0 GB");
}

TEST(Text, SizesBeyondTheLargestUnitStayInIt) { EXPECT_EQ(sizeText(5e15), "5000.0 TB"); }

TEST(Text, OnlyOneIsSingular) {
  EXPECT_EQ(countText(0, "file"), "0 files");
  EXPECT_EQ(countText(1, "file"), "1 file");
  EXPECT_EQ(countText(2, "file"), "2 files");
  EXPECT_EQ(countText(18446744073709551615U, "byte"), "18446744073709551615 bytes");
}

TEST(Text, TimesHaveADateBesideThem) {
  EXPECT_EQ(timeText(1700000000, 250000), "1700000000.250000 (2023-11-14 22:13:20.250000 UTC)");
  EXPECT_EQ(timeText(1, 7), "1.000007 (1970-01-01 00:00:01.000007 UTC)");
  EXPECT_EQ(timeText(253402300799, 999999), "253402300799.999999 (9999-12-31 23:59:59.999999 UTC)");
}

TEST(Text, TimesOfAnotherEpochHaveNone) {
  EXPECT_EQ(timeText(0, 0), "0.000000");
  EXPECT_EQ(timeText(-7, 1), "-7.000001");
  EXPECT_EQ(timeText(253402300800, 0), "253402300800.000000");
}

TEST(LowerCase, TurnsLettersOfTheAlphabetOnly) {
  EXPECT_EQ(KPF_TOOL::lowerCase("A.KpF-Z@[\xC3\x84"), "a.kpf-z@[\xC3\x84");
}

}  // namespace
