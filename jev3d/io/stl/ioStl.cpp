#include "jev3d/io/stl/ioStl.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "jev3d/io/internal/byteOrder.h"
#include "jev3d/io/internal/largeArray.h"
#include "jev3d/io/internal/mappedFile.h"
#include "jev3d/io/internal/outputFile.h"
#include "jev3d/io/internal/progress.h"
#include "jev3d/io/internal/textNumbers.h"
#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace IO {
namespace STL {

using MATH::point3;

namespace {

static_assert(sizeof(point3<float>) == 12, "points are handed on as three packed floats");

constexpr size_t headerBytes = 84;
constexpr size_t facetBytes = 50;

// The form test: an exact size for the count at offset 80, or failing that any byte above
// 127 among the 128 after offset 84.
bool isBinary(const mappedFile& file) {
  const size_t size = file.size();
  if (size >= headerBytes) {
    const long long count = loadLittleEndian<int32_t>(file.data() + 80);
    if ((long long)size == count * (long long)facetBytes + (long long)headerBytes) return true;
  }
  for (size_t i = headerBytes; i < std::min(size, headerBytes + 128); ++i)
    if (file.data()[i] > 127) return true;
  return false;
}

// The facet count of a binary file, or -1 when the file is shorter than it says.
long long binaryFacetCount(const mappedFile& file) {
  if (file.size() < headerBytes) return -1;
  const long long count = loadLittleEndian<uint32_t>(file.data() + 80);
  if (count > (long long)((file.size() - headerBytes) / facetBytes)) return -1;
  return count;
}

// Grows an array of floats or points by `floats` floats and gives where they go.
template <class T>
float* growBy(std::vector<T>& v, size_t floats) {
  const size_t old = v.size();
  v.resize(old + floats * sizeof(float) / sizeof(T));
  return reinterpret_cast<float*>(v.data() + old);
}

template <class T>
bool readBinary(const mappedFile& file, std::vector<T>& positions, std::vector<T>& normals,
                progress& report) {
  const long long count = binaryFacetCount(file);
  if (count < 0) return false;
  const size_t facets = size_t(count);
  reserveLarge(positions, facets * 9 * sizeof(float) / sizeof(T));
  reserveLarge(normals, facets * 3 * sizeof(float) / sizeof(T));
  const unsigned char* p = file.data() + headerBytes;
  for (size_t i = 0; i < facets; i += progress::every) {
    report.step(i, facets, 0.0f, 100.0f);
    const size_t n = std::min(progress::every, facets - i);
    // Grown a run at a time, so that the fresh memory is still in cache when written.
    float* pos = growBy(positions, 9 * n);
    float* nor = growBy(normals, 3 * n);
    for (size_t f = 0; f < n; ++f, p += facetBytes, pos += 9, nor += 3) {
      if constexpr (hostIsBigEndian) {
        for (int k = 0; k < 3; ++k) nor[k] = loadLittleEndian<float>(p + 4 * k);
        for (int k = 0; k < 9; ++k) pos[k] = loadLittleEndian<float>(p + 12 + 4 * k);
      } else {
        std::memcpy(nor, p, 12);
        std::memcpy(pos, p + 12, 36);
      }
    }
  }
  return true;
}

bool isWord(const char* p, const char* end, const char* word) {
  const size_t n = std::strlen(word);
  return size_t(end - p) >= n && std::memcmp(p, word, n) == 0 && TEXT::endsToken(p + n, end);
}

const char* nextLine(const char* p, const char* end) {
  const void* nl = std::memchr(p, '\n', size_t(end - p));
  return nl ? static_cast<const char*>(nl) + 1 : end;
}

// Reads the ASCII form by token positions; `facet` receives each complete record as the
// normal and three corners, with the offset reached. Returns the number of facets, or -1 for a file
// with no line break or a number that does not parse.
template <bool parse, class F>
long long scanAscii(const mappedFile& file, F&& facet) {
  const char* p = reinterpret_cast<const char*>(file.data());
  const char* end = p + file.size();
  const void* nl = std::memchr(p, '\n', file.size());
  if (!nl) return -1;
  p = static_cast<const char*>(nl) + 1;
  long long facets = 0;
  float values[12];
  for (;;) {
    p = TEXT::skipBlanks(p, end);
    if (p == end) return facets;
    if (isWord(p, end, "endsolid")) {
      p = TEXT::skipBlanks(nextLine(p, end), end);
      if (isWord(p, end, "solid")) p = nextLine(p, end);
      continue;
    }
    // Returns false at the end of the file, which drops the record.
    bool bad = false;
    auto words = [&](int n) {
      for (int i = 0; i < n; ++i) {
        p = TEXT::skipBlanks(p, end);
        if (p == end) return false;
        p = TEXT::skipToken(p, end);
      }
      return true;
    };
    auto numbers = [&](float* v) {
      if constexpr (!parse) return words(3);  // counting: the tokens' places are enough
      for (int i = 0; i < 3; ++i) {
        const char* q = TEXT::parseReal(p, end, v[i]);
        if (!q) {
          bad = TEXT::skipBlanks(p, end) != end;
          return false;
        }
        p = q;
      }
      return true;
    };
    const bool complete = words(2) && numbers(values) && words(2) && words(1) &&
                          numbers(values + 3) && words(1) && numbers(values + 6) && words(1) &&
                          numbers(values + 9) && words(2);
    if (bad) return -1;
    if (!complete || p == end) return facets;
    facet(values, size_t(p - reinterpret_cast<const char*>(file.data())));
    ++facets;
  }
}

template <class T>
bool readAscii(const mappedFile& file, std::vector<T>& positions, std::vector<T>& normals,
               progress& report) {
  // One pass counts the facets, so that the arrays are reserved exactly and progress is
  // the facet's index over the count.
  const long long count = scanAscii<false>(file, [](const float*, size_t) {});
  if (count < 0) return false;
  reserveLarge(normals, size_t(count) * 3 * sizeof(float) / sizeof(T));
  reserveLarge(positions, size_t(count) * 9 * sizeof(float) / sizeof(T));
  // Facets gather in a small run and move to the arrays together.
  constexpr size_t run = 512;
  float runNormals[3 * run], runPositions[9 * run];
  size_t inRun = 0, facets = 0;
  auto flush = [&]() {
    if (inRun == 0) return;
    std::memcpy(growBy(normals, 3 * inRun), runNormals, 12 * inRun);
    std::memcpy(growBy(positions, 9 * inRun), runPositions, 36 * inRun);
    inRun = 0;
  };
  const long long read = scanAscii<true>(file, [&](const float* v, size_t) {
    report.step(facets++, size_t(count), 0.0f, 100.0f);
    std::memcpy(runNormals + 3 * inRun, v, 12);
    std::memcpy(runPositions + 9 * inRun, v + 3, 36);
    if (++inRun == run) flush();
  });
  flush();
  return read >= 0;
}

template <class T>
bool readStl(const std::string& name, std::vector<T>& positions, std::vector<T>& normals,
             SYSTEM::callBack* cb) {
  progress report(cb);
  report.open();
  positions.clear();
  normals.clear();
  mappedFile file;
  if (!file.open(name)) return false;
  return isBinary(file) ? readBinary(file, positions, normals, report)
                        : readAscii(file, positions, normals, report);
}

// "%13e" of a float, as printf writes it: the promoted double with six decimals.
char* printE13(char* out, float value) {
  char text[32];
  const char* e =
      std::to_chars(text, text + sizeof text, double(value), std::chars_format::scientific, 6).ptr;
  const size_t n = size_t(e - text);
  for (size_t pad = n; pad < 13; ++pad) *out++ = ' ';
  std::memcpy(out, text, n);
  return out + n;
}

void putAsciiFacet(outputFile& out, const float* normal, const float* a, const float* b,
                   const float* c) {
  char* p = out.reserve(512);
  auto line = [&](const char* lead, size_t leadLength, const float* v) {
    std::memcpy(p, lead, leadLength);
    p += leadLength;
    p = printE13(p, v[0]);
    *p++ = ' ';
    p = printE13(p, v[1]);
    *p++ = ' ';
    p = printE13(p, v[2]);
    *p++ = '\n';
  };
  static const char facet[] = "  facet normal ";
  static const char loop[] = "    outer loop\n";
  static const char vertex[] = "      vertex  ";
  static const char endLoop[] = "    endloop\n  endfacet\n";
  line(facet, sizeof facet - 1, normal);
  std::memcpy(p, loop, sizeof loop - 1);
  p += sizeof loop - 1;
  line(vertex, sizeof vertex - 1, a);
  line(vertex, sizeof vertex - 1, b);
  line(vertex, sizeof vertex - 1, c);
  std::memcpy(p, endLoop, sizeof endLoop - 1);
  out.commit(p + sizeof endLoop - 1);
}

void putBinaryFacet(outputFile& out, const float* normal, const float* a, const float* b,
                    const float* c) {
  unsigned char record[facetBytes] = {};
  const float* parts[4] = {normal, a, b, c};
  for (int k = 0; k < 4; ++k) {
    for (int j = 0; j < 3; ++j) {
      const float v = hostIsBigEndian ? byteSwapped(parts[k][j]) : parts[k][j];
      std::memcpy(record + 12 * k + 4 * j, &v, 4);
    }
  }
  out.put(record, facetBytes);
}

void putBinaryHeader(outputFile& out, unsigned int facets) {
  char header[80];
  std::memset(header, ' ', sizeof header);
  out.put(header, sizeof header);
  const uint32_t count = hostIsBigEndian ? byteSwapped(uint32_t(facets)) : uint32_t(facets);
  out.put(&count, 4);
}

// Facet f's normal and corners: `corner(f, k)` gives corner k's three floats.
template <class Corner>
void putFacets(outputFile& out, size_t facets, const float* normals, Corner&& corner, bool binary,
               progress& report) {
  for (size_t f = 0; f < facets; ++f) {
    report.step(f, facets, 0.0f, 100.0f);
    const float* n = normals + 3 * f;
    if (binary) {
      putBinaryFacet(out, n, corner(f, 0), corner(f, 1), corner(f, 2));
    } else {
      putAsciiFacet(out, n, corner(f, 0), corner(f, 1), corner(f, 2));
    }
  }
}

bool indicesInRange(const std::vector<unsigned int>& triangles, size_t positions) {
  for (const unsigned int i : triangles)
    if (i >= positions) return false;
  return true;
}

bool writeIndexed(outputFile& out, const std::vector<point3<float>>& positions,
                  const std::vector<unsigned int>& triangles,
                  const std::vector<point3<float>>& normals, bool binary, bool header,
                  progress& report) {
  const size_t facets = triangles.size() / 3;
  if (normals.size() < facets || !indicesInRange(triangles, positions.size())) return false;
  if (header && binary) putBinaryHeader(out, unsigned(facets));
  if (header && !binary) out.put("solid\n");
  putFacets(
      out, facets, normals.empty() ? nullptr : normals.data()->data(),
      [&](size_t f, int k) { return positions[triangles[3 * f + size_t(k)]].data(); }, binary,
      report);
  if (header && !binary) out.put("endsolid\n");
  return out.flush();
}

std::string utf8(const std::wstring& name) { return XML::wstringToUtf8(name); }

}  // namespace

ioStl::~ioStl() = default;

bool ioStl::readStlInfoFromFile(const std::string& name, unsigned int& vertices,
                                unsigned int& faces) {
  mappedFile file;
  if (!file.open(name)) return false;
  if (isBinary(file)) {
    const long long count = binaryFacetCount(file);
    if (count < 0) return false;
    faces = unsigned(count);
    vertices = 3 * faces;
    return true;
  }
  const long long count = scanAscii<true>(file, [](const float*, size_t) {});
  if (count < 0) return false;
  faces = unsigned(count);
  vertices = faces / 3;
  return true;
}

bool ioStl::readStlFromFile(const std::string& name, std::vector<float>& positions,
                            std::vector<float>& normals, SYSTEM::callBack* cb) {
  return readStl(name, positions, normals, cb);
}

bool ioStl::readStlFromFile(const std::string& name, std::vector<point3<float>>& positions,
                            std::vector<point3<float>>& normals, SYSTEM::callBack* cb) {
  return readStl(name, positions, normals, cb);
}

bool ioStl::writeStlToFile(const std::string& name, const std::vector<float>& positions,
                           const std::vector<float>& normals, bool binary, SYSTEM::callBack* cb) {
  progress report(cb);
  report.open();
  outputFile out;
  if (!out.open(name)) return false;
  const size_t facets = positions.size() / 9;
  if (normals.size() / 3 < facets) return false;
  if (binary) {
    putBinaryHeader(out, unsigned(facets));
  } else {
    out.put("solid\n");
  }
  putFacets(
      out, facets, normals.data(),
      [&](size_t f, int k) { return positions.data() + 9 * f + 3 * size_t(k); }, binary, report);
  if (!binary) out.put("endsolid\n");
  return out.close();
}

bool ioStl::writeStlToFile(const std::string& name, const std::vector<point3<float>>& positions,
                           const std::vector<unsigned int>& triangles,
                           const std::vector<point3<float>>& normals, bool binary,
                           SYSTEM::callBack* cb) {
  progress report(cb);
  report.open();
  outputFile out;
  if (!out.open(name)) return false;
  const bool ok = writeIndexed(out, positions, triangles, normals, binary, true, report);
  return out.close() && ok;
}

FILE* ioStl::writeStlHeaderToFile(const std::string& name, unsigned int faces) {
  FILE* file = std::fopen(name.c_str(), "wb");
  if (!file) return nullptr;
  outputFile out;
  out.attach(file);
  putBinaryHeader(out, faces);
  if (!out.close()) {
    std::fclose(file);
    return nullptr;
  }
  return file;
}

bool ioStl::addDataToFile(FILE* file, const std::vector<point3<float>>& positions,
                          const std::vector<unsigned int>& triangles,
                          const std::vector<point3<float>>& normals, SYSTEM::callBack* cb) {
  progress report(cb);
  report.open();
  if (!file) return false;
  outputFile out;
  out.attach(file);
  const bool ok = writeIndexed(out, positions, triangles, normals, true, false, report);
  return out.close() && ok;
}

bool ioStl::closeFile(FILE* file) { return file && std::fclose(file) == 0; }

bool ioStl::readStlInfoFromFile(const std::wstring& name, unsigned int& vertices,
                                unsigned int& faces) {
  return readStlInfoFromFile(utf8(name), vertices, faces);
}

bool ioStl::readStlFromFile(const std::wstring& name, std::vector<float>& positions,
                            std::vector<float>& normals, SYSTEM::callBack* cb) {
  return readStlFromFile(utf8(name), positions, normals, cb);
}

bool ioStl::readStlFromFile(const std::wstring& name, std::vector<point3<float>>& positions,
                            std::vector<point3<float>>& normals, SYSTEM::callBack* cb) {
  return readStlFromFile(utf8(name), positions, normals, cb);
}

bool ioStl::writeStlToFile(const std::wstring& name, const std::vector<float>& positions,
                           const std::vector<float>& normals, bool binary, SYSTEM::callBack* cb) {
  return writeStlToFile(utf8(name), positions, normals, binary, cb);
}

bool ioStl::writeStlToFile(const std::wstring& name, const std::vector<point3<float>>& positions,
                           const std::vector<unsigned int>& triangles,
                           const std::vector<point3<float>>& normals, bool binary,
                           SYSTEM::callBack* cb) {
  return writeStlToFile(utf8(name), positions, triangles, normals, binary, cb);
}

FILE* ioStl::writeStlHeaderToFile(const std::wstring& name, unsigned int faces) {
  return writeStlHeaderToFile(utf8(name), faces);
}

}  // namespace STL
}  // namespace IO
}  // namespace JEV
