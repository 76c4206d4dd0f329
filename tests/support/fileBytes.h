#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

// Whole files as byte strings, for tests that write files by hand or damage them.
inline std::string readBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void writeBytes(const std::string& path, const std::string& bytes) {
  // A fresh file rather than a truncated one: rewriting a truncated file makes some file
  // systems flush it to disk on close, which is slow when done by the hundred.
  std::remove(path.c_str());
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), std::streamsize(bytes.size()));
}

// Damaged copies of a valid file: cut at many lengths, then with bytes flipped at random.
// `read` is called with the path of each copy; it must return without crashing.
template <class Read>
void forEachDamagedCopy(const std::string& valid, const std::string& path, unsigned seed, int cuts,
                        int flips, Read&& read) {
  std::mt19937 random(seed);
  for (int i = 0; i < cuts; ++i) {
    const size_t length = valid.empty() ? 0 : size_t(random()) % valid.size();
    writeBytes(path, valid.substr(0, length));
    read(path);
  }
  for (int i = 0; i < flips; ++i) {
    std::string bytes = valid;
    const int changes = 1 + int(random() % 8);
    for (int k = 0; k < changes && !bytes.empty(); ++k) {
      const size_t at = size_t(random()) % bytes.size();
      // Half the changes are digits, blanks or extremes, which hit the parsers hardest.
      static const char special[] = {'9', '-', ' ', '\n', '\0', '\xff', 'e', '.'};
      bytes[at] = random() % 2 ? char(random()) : special[random() % sizeof special];
    }
    writeBytes(path, bytes);
    read(path);
  }
}

// text with the first `from` replaced by `to`; the test fails when `from` is absent.
inline std::string replacedOnce(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}
