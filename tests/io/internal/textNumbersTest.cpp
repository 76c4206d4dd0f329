#include "jev3d/io/internal/textNumbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

using namespace JEV::IO::TEXT;

namespace {

uint32_t bitsOf(float f) {
  uint32_t b;
  std::memcpy(&b, &f, 4);
  return b;
}

// The float the standard library reads from the text, or false when it reads none.
bool reference(const std::string& text, float& value) {
  const char* p = text.data();
  if (*p == '+') ++p;
  const auto r = std::from_chars(p, text.data() + text.size(), value);
  return r.ec == std::errc() && r.ptr == text.data() + text.size();
}

TEST(textNumbers, floatsReadExactlyAsTheStandardLibraryReadsThem) {
  std::mt19937 random(3);
  char buffer[64];
  int checked = 0;
  for (int i = 0; i < 60000; ++i) {
    uint32_t bits = random();
    float f;
    std::memcpy(&f, &bits, 4);
    if (!std::isfinite(f)) continue;
    // Shortest, printf forms of several precisions, and short decimals of random digits.
    std::string texts[] = {std::string(buffer, std::to_chars(buffer, buffer + 64, f).ptr), "", "",
                           "", ""};
    std::snprintf(buffer, sizeof buffer, "%e", double(f));
    texts[1] = buffer;
    std::snprintf(buffer, sizeof buffer, "%.9g", double(f * 1e-20f));
    texts[2] = buffer;
    std::snprintf(buffer, sizeof buffer, "%g", double(f));
    texts[3] = buffer;
    std::snprintf(buffer, sizeof buffer, "%u.%05u", unsigned(random() % 100000),
                  unsigned(random() % 100000));
    texts[4] = buffer;
    for (const std::string& text : texts) {
      float expected = 0, got = 0;
      const bool ok = reference(text, expected);
      const char* end = parseReal(text.data(), text.data() + text.size(), got);
      if (!ok) continue;
      ASSERT_NE(end, nullptr) << text;
      ASSERT_EQ(bitsOf(got), bitsOf(expected)) << text;
      ++checked;
    }
  }
  EXPECT_GT(checked, 150000);
}

TEST(textNumbers, tokensMustEndAtABlank) {
  const std::string good = "  +1.5e3\t-2 7.0 3 ";
  const char* p = good.data();
  const char* end = p + good.size();
  float f = 0;
  int64_t i = 0;
  ASSERT_TRUE(p = parseReal(p, end, f));
  EXPECT_EQ(f, 1500.0f);
  ASSERT_TRUE(p = parseInteger(p, end, i));
  EXPECT_EQ(i, -2);
  ASSERT_TRUE(p = parseInteger(p, end, i));
  EXPECT_EQ(i, 7);
  ASSERT_TRUE(p = parseReal(p, end, f));
  EXPECT_EQ(f, 3.0f);
  EXPECT_EQ(parseReal(p, end, f), nullptr);

  for (const char* bad : {"1.5x", "x", "-", "1e", "--1", ".", ""}) {
    const std::string text = bad;
    EXPECT_EQ(parseReal(text.data(), text.data() + text.size(), f), nullptr) << bad;
  }
  const std::string huge = "1e39 -1e39 1e-50";
  p = huge.data();
  end = p + huge.size();
  ASSERT_TRUE(p = parseReal(p, end, f));
  EXPECT_EQ(f, std::numeric_limits<float>::infinity());
  ASSERT_TRUE(p = parseReal(p, end, f));
  EXPECT_EQ(f, -std::numeric_limits<float>::infinity());
  ASSERT_TRUE(p = parseReal(p, end, f));
  EXPECT_EQ(f, 0.0f);
}

}  // namespace
