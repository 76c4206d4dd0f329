#include "jev3d/io/xml/stringConversion.h"

#include <gtest/gtest.h>

#include <string>

using namespace JEV::IO::XML;

TEST(stringConversionTest, EncodesEachUnitByItsRange) {
  EXPECT_EQ(wstringToUtf8(L"A\x7F"), "A\x7F");
  EXPECT_EQ(wstringToUtf8(std::wstring(1, 0x80)), "\xC2\x80");
  EXPECT_EQ(wstringToUtf8(std::wstring(1, 0xE9)), "\xC3\xA9");
  EXPECT_EQ(wstringToUtf8(std::wstring(1, 0x7FF)), "\xDF\xBF");
  EXPECT_EQ(wstringToUtf8(std::wstring(1, 0x800)), "\xE0\xA0\x80");
  EXPECT_EQ(wstringToUtf8(std::wstring(1, 0x4E2D)), "\xE4\xB8\xAD");
  EXPECT_EQ(wstringToUtf8(std::wstring(1, 0xFFFF)), "\xEF\xBF\xBF");
}

TEST(stringConversionTest, SurrogateHalvesAreWrittenAsThreeBytesEach) {
  EXPECT_EQ(wstringToUtf8(std::wstring(1, 0xD800)), "\xED\xA0\x80");
  const std::wstring pair = {wchar_t(0xD83D), wchar_t(0xDE00)};
  EXPECT_EQ(wstringToUtf8(pair), "\xED\xA0\xBD\xED\xB8\x80");
  // Read back unit by unit, not joined.
  EXPECT_EQ(utf8ToWstring("\xED\xA0\x80"), std::wstring(1, 0xD800));
  EXPECT_EQ(utf8ToWstring("\xED\xA0\xBD\xED\xB8\x80"), pair);
}

TEST(stringConversionTest, CodePointsAboveTheBasicPlaneTakeFourBytes) {
  EXPECT_EQ(wstringToUtf8(std::wstring(1, 0x1F600)), "\xF0\x9F\x98\x80");
  EXPECT_EQ(utf8ToWstring("\xF0\x9F\x98\x80"), std::wstring(1, 0x1F600));
  EXPECT_EQ(wstringToUtf8(std::wstring(1, 0x110000)), "\xEF\xBF\xBD");
}

TEST(stringConversionTest, DecodesWhatItEncodes) {
  std::wstring all;
  for (wchar_t c = 1; c < 0x3000; c += 7) all += c;
  all += wchar_t(0xFFFD);
  EXPECT_EQ(utf8ToWstring(wstringToUtf8(all)), all);
  EXPECT_EQ(utf8ToWstring(std::string("\xC3\xA9")), std::wstring(1, 0xE9));
}

TEST(stringConversionTest, TruncatedTextIsWidenedByteByByteAsSignedChars) {
  EXPECT_FALSE(isUtf8Text("ab\xC3"));
  EXPECT_FALSE(isUtf8Text("ab\xE4\xB8"));
  EXPECT_TRUE(isUtf8Text("ab\xE4\xB8\xAD"));
  const std::wstring expected = {L'a', L'b', wchar_t(0xFFE4), wchar_t(0xFFB8)};
  EXPECT_EQ(utf8ToWstring("ab\xE4\xB8"), expected);
}

TEST(stringConversionTest, FollowOnBytesAreNotExamined) {
  // A Latin-1 word passes the scan and decodes to garbage instead of failing.
  const std::wstring latin = utf8ToWstring("caf\xE9 x");
  ASSERT_EQ(latin.size(), 4u);
  EXPECT_EQ(latin.substr(0, 3), L"caf");
  EXPECT_EQ(latin[3], wchar_t(((0xE9 & 0x0F) << 12) | ((' ' & 0x3F) << 6) | ('x' & 0x3F)));
  // A stray follow-on byte is widened by itself.
  EXPECT_EQ(utf8ToWstring("a\x80z"), (std::wstring{L'a', wchar_t(0xFF80), L'z'}));
}
