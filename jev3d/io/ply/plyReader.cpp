#include "jev3d/io/ply/plyReader.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

#include "jev3d/io/internal/mappedFile.h"
#include "jev3d/io/internal/textNumbers.h"
#include "jev3d/io/ply/internal/plyConvert.h"

namespace JEV {
namespace IO {
namespace PLY {

using namespace INTERNAL;

namespace {

std::vector<std::string> splitWords(const char* p, const char* end) {
  std::vector<std::string> words;
  for (;;) {
    p = TEXT::skipBlanks(p, end);
    if (p == end) return words;
    const char* e = TEXT::skipToken(p, end);
    words.emplace_back(p, e);
    p = e;
  }
}

// The rest of a header line after its keyword and the blanks that follow it.
std::string restOfLine(const char* p, const char* end, size_t keywordLength) {
  p = TEXT::skipBlanks(p, end) + keywordLength;
  if (p > end) p = end;
  p = TEXT::skipBlanks(p, end);
  while (end > p && TEXT::isBlank(end[-1])) --end;
  return std::string(p, end);
}

bool parseCount(const std::string& word, long long& count) {
  int64_t v = 0;
  const char* p = TEXT::parseInteger(word.data(), word.data() + word.size(), v);
  if (!p || v < 0 || v > 0x7fffffffLL) return false;
  count = v;
  return true;
}

double loadAsDouble(const unsigned char* p, int type, bool swap) {
  double v = 0;
  withType(type, "get_binary_item", [&](auto t) {
    using T = decltype(t);
    v = double(swap ? load<T, true>(p) : load<T, false>(p));
  });
  return v;
}

void storeDouble(unsigned char* dst, int recordType, double v, bool fromReal) {
  withType(recordType, "store_item", [&](auto t) {
    using R = decltype(t);
    R r;
    if (fromReal || std::is_floating_point_v<R>) {
      r = convert<R>(v);
    } else {
      // Integers in a double are exact here (at most 32 bits), so no fraction rule.
      r = convert<R>((long long)(v));
    }
    std::memcpy(dst, &r, sizeof r);
  });
}

template <class F, bool Swap, class R>
void copyColumn(const unsigned char* src, size_t srcStride, unsigned char* dst, size_t dstStride,
                size_t n) {
  for (size_t i = 0; i < n; ++i, src += srcStride, dst += dstStride) {
    const R r = convert<R>(load<F, Swap>(src));
    std::memcpy(dst, &r, sizeof r);
  }
}

// The common face list: a count of 3 and three 32-bit indices. Counts are checked once per
// run rather than per face, so the loop has no branch; a run with a bad count fails whole.
template <class CountT, class ItemT, bool Swap>
bool copyTriangles(const unsigned char*& p, size_t n, unsigned* out, long long& lo, long long& hi) {
  constexpr size_t step = sizeof(CountT) + 3 * sizeof(ItemT);
  ItemT mn = std::numeric_limits<ItemT>::max(), mx = std::numeric_limits<ItemT>::min();
  unsigned bad = 0;
  const unsigned char* q = p;
  for (size_t i = 0; i < n; ++i, q += step, out += 3) {
    bad |= unsigned(load<CountT, Swap>(q) != CountT(3));
    const ItemT a = load<ItemT, Swap>(q + sizeof(CountT));
    const ItemT b = load<ItemT, Swap>(q + sizeof(CountT) + sizeof(ItemT));
    const ItemT c = load<ItemT, Swap>(q + sizeof(CountT) + 2 * sizeof(ItemT));
    out[0] = unsigned(a), out[1] = unsigned(b), out[2] = unsigned(c);
    mn = std::min(mn, std::min(a, std::min(b, c)));
    mx = std::max(mx, std::max(a, std::max(b, c)));
  }
  if (bad) return false;
  p = q;
  if (n) lo = std::min(lo, (long long)mn), hi = std::max(hi, (long long)mx);
  return true;
}

}  // namespace

struct plyReader::scalarBinding {
  int recordType = 0;
  unsigned char* dst = nullptr;
  size_t stride = 0;
};

struct plyReader::listBinding {
  std::vector<unsigned>* items = nullptr;
  std::vector<unsigned>* counts = nullptr;
  unsigned required = 0;
};

struct plyReader::dataState {
  mappedFile file;
  const unsigned char* pos = nullptr;
  const unsigned char* end = nullptr;
  // Per property of the current element: index into the bindings, or -1.
  std::vector<int> bindingOf;
  std::vector<scalarBinding> scalars;
  std::vector<listBinding> lists;
  bool hasLists = false;
  size_t fixedSize = 0;  // bytes of a binary element without lists
  std::vector<size_t> fixedOffset;
};

plyReader::plyReader() = default;
plyReader::~plyReader() = default;

bool plyReader::open(const std::string& path) {
  close();
  data = std::make_unique<dataState>();
  if (!data->file.open(path) || !parseHeader()) {
    close();
    return false;
  }
  return true;
}

void plyReader::close() {
  data.reset();
  fileType = 0;
  version = 0;
  elements.clear();
  comments.clear();
  objInfo.clear();
  current = -1;
  left = 0;
  itemMin = std::numeric_limits<long long>::max();
  itemMax = std::numeric_limits<long long>::min();
  hasFailed = false;
}

bool plyReader::parseHeader() {
  const char* p = reinterpret_cast<const char*>(data->file.data());
  const char* end = p + data->file.size();
  bool first = true;
  for (;;) {
    const char* nl = static_cast<const char*>(std::memchr(p, '\n', size_t(end - p)));
    if (!nl) return false;
    const std::vector<std::string> words = splitWords(p, nl);
    const char* line = p;
    p = nl + 1;
    if (first) {
      if (words.empty() || words[0] != "ply") return false;
      first = false;
      continue;
    }
    if (words.empty()) continue;
    const std::string& key = words[0];
    if (key == "format") {
      if (words.size() < 3) return false;
      if (words[1] == "ascii") {
        fileType = PLY_ASCII;
      } else if (words[1] == "binary_big_endian") {
        fileType = PLY_BINARY_BE;
      } else if (words[1] == "binary_little_endian") {
        fileType = PLY_BINARY_LE;
      } else {
        return false;
      }
      if (!TEXT::parseReal(words[2].data(), words[2].data() + words[2].size(), version))
        return false;
    } else if (key == "element") {
      plyElement element;
      if (words.size() < 3 || !parseCount(words[2], element.count)) return false;
      element.name = words[1];
      elements.push_back(std::move(element));
    } else if (key == "property") {
      if (elements.empty()) return false;
      plyProperty property;
      if (words.size() >= 5 && words[1] == "list") {
        property.isList = true;
        property.countType = plyTypeFromName(words[2]);
        property.type = plyTypeFromName(words[3]);
        property.name = words[4];
        if (!property.countType || !property.type || isRealType(property.countType)) return false;
      } else if (words.size() >= 3 && words[1] != "list") {
        property.type = plyTypeFromName(words[1]);
        property.name = words[2];
        if (!property.type) return false;
      } else {
        return false;
      }
      elements.back().properties.push_back(std::move(property));
    } else if (key == "comment") {
      comments.push_back(restOfLine(line, nl, 7));
    } else if (key == "obj_info") {
      objInfo.push_back(restOfLine(line, nl, 8));
    } else if (key == "end_header") {
      if (!fileType) return false;
      data->pos = reinterpret_cast<const unsigned char*>(p);
      data->end = data->file.end();
      return true;
    }
  }
}

const plyElement* plyReader::findElement(const std::string& name) const {
  for (const plyElement& e : elements)
    if (e.name == name) return &e;
  return nullptr;
}

size_t plyReader::dataBytesLeft() const { return data ? size_t(data->end - data->pos) : 0; }

bool plyReader::fail() {
  hasFailed = true;
  left = 0;
  return false;
}

const plyElement* plyReader::nextElement() {
  if (!data || hasFailed) return nullptr;
  if (current >= 0 && left > 0) {
    data->scalars.clear();
    data->lists.clear();
    std::fill(data->bindingOf.begin(), data->bindingOf.end(), -1);
    if (!getElements(left)) return nullptr;
  }
  if (current + 1 >= int(elements.size())) {
    current = int(elements.size());
    left = 0;
    return nullptr;
  }
  ++current;
  plyElement& e = elements[size_t(current)];
  left = size_t(e.count);
  data->scalars.clear();
  data->lists.clear();
  data->bindingOf.assign(e.properties.size(), -1);
  data->hasLists = false;
  data->fixedOffset.clear();
  size_t minimum = 0;  // bytes each element needs at least
  for (plyProperty& prop : e.properties) {
    prop.store = false;
    data->fixedOffset.push_back(minimum);
    if (fileType == PLY_ASCII) {
      minimum += 2;
    } else {
      minimum += size_t(plyTypeSize(prop.isList ? prop.countType : prop.type));
    }
    data->hasLists |= prop.isList;
  }
  data->fixedSize = minimum;
  const size_t available = size_t(data->end - data->pos) + (fileType == PLY_ASCII ? 1 : 0);
  if (minimum && left > available / minimum) {
    std::fprintf(stderr, "ply_get_element: unexpected end of file\n");
    fail();
    return nullptr;
  }
  return &e;
}

bool plyReader::storeProperty(const plyPropertyDescription& desc, void* base, size_t stride) {
  if (current < 0 || current >= int(elements.size())) return false;
  plyElement& e = elements[size_t(current)];
  const int k = e.findProperty(desc.name);
  if (k < 0 || e.properties[size_t(k)].isList) return false;
  if (!plyTypeSize(desc.recordType)) badType("store_item", desc.recordType);
  e.properties[size_t(k)].store = true;
  scalarBinding b;
  b.recordType = desc.recordType;
  b.dst = static_cast<unsigned char*>(base) + desc.fieldOffset;
  b.stride = stride;
  data->bindingOf[size_t(k)] = int(data->scalars.size());
  data->scalars.push_back(b);
  return true;
}

bool plyReader::storeList(const plyPropertyDescription& desc, std::vector<unsigned>& items,
                          std::vector<unsigned>* counts, unsigned requiredCount) {
  if (current < 0 || current >= int(elements.size())) return false;
  plyElement& e = elements[size_t(current)];
  const int k = e.findProperty(desc.name);
  if (k < 0 || !e.properties[size_t(k)].isList) return false;
  if (desc.recordType != PLY_INT && desc.recordType != PLY_UINT)
    badType("store_item", desc.recordType);
  e.properties[size_t(k)].store = true;
  listBinding b;
  b.items = &items;
  b.counts = counts;
  b.required = requiredCount;
  data->bindingOf[size_t(k)] = int(data->lists.size());
  data->lists.push_back(b);
  return true;
}

bool plyReader::getElements(size_t n) {
  if (!data || hasFailed || current < 0 || current >= int(elements.size())) return false;
  n = std::min(n, left);
  if (n == 0) return true;
  const plyElement& e = elements[size_t(current)];
  if (e.properties.empty()) {
    left -= n;
    return true;
  }
  bool ok;
  if (fileType == PLY_ASCII) {
    ok = readAscii(n);
  } else if (!data->hasLists) {
    ok = readFixedBinary(n);
  } else if (e.properties.size() == 1 && data->lists.size() == 1 && data->lists[0].required == 3 &&
             !data->lists[0].counts &&
             (e.properties[0].type == PLY_INT || e.properties[0].type == PLY_UINT) &&
             size_t(data->end - data->pos) >= n * (plyTypeSize(e.properties[0].countType) + 12)) {
    ok = readTriangleLists(n);
  } else {
    ok = readGeneric(n);
  }
  if (!ok) return fail();
  left -= n;
  return true;
}

bool plyReader::readFixedBinary(size_t n) {
  dataState& d = *data;
  if (size_t(d.end - d.pos) / d.fixedSize < n) return endOfFile();
  const bool swap = (fileType == PLY_BINARY_BE) != hostIsBigEndian;
  const plyElement& e = elements[size_t(current)];
  for (size_t k = 0; k < e.properties.size(); ++k) {
    const int bi = d.bindingOf[k];
    if (bi < 0) continue;
    scalarBinding& b = d.scalars[size_t(bi)];
    const unsigned char* src = d.pos + d.fixedOffset[k];
    withType(e.properties[k].type, "get_binary_item", [&](auto f) {
      using F = decltype(f);
      withType(b.recordType, "store_item", [&](auto r) {
        using R = decltype(r);
        if (swap) {
          copyColumn<F, true, R>(src, d.fixedSize, b.dst, b.stride, n);
        } else {
          copyColumn<F, false, R>(src, d.fixedSize, b.dst, b.stride, n);
        }
      });
    });
    b.dst += b.stride * n;
  }
  d.pos += d.fixedSize * n;
  return true;
}

bool plyReader::readTriangleLists(size_t n) {
  dataState& d = *data;
  const plyProperty& prop = elements[size_t(current)].properties[0];
  std::vector<unsigned>& items = *d.lists[0].items;
  const size_t old = items.size();
  items.resize(old + 3 * n);
  const bool swap = (fileType == PLY_BINARY_BE) != hostIsBigEndian;
  bool ok = false;
  withType(prop.countType, "get_binary_item", [&](auto c) {
    using C = decltype(c);
    if constexpr (std::is_integral_v<C>) {
      if (prop.type == PLY_INT) {
        ok = swap ? copyTriangles<C, int32_t, true>(d.pos, n, &items[old], itemMin, itemMax)
                  : copyTriangles<C, int32_t, false>(d.pos, n, &items[old], itemMin, itemMax);
      } else {
        ok = swap ? copyTriangles<C, uint32_t, true>(d.pos, n, &items[old], itemMin, itemMax)
                  : copyTriangles<C, uint32_t, false>(d.pos, n, &items[old], itemMin, itemMax);
      }
    }
  });
  if (!ok) items.resize(old);
  return ok;
}

namespace {

// Plain decimal digits ending at a blank or the end; anything else (a sign, a point, a
// letter) is left to the general parser.
inline const char* parseDigits(const char* p, const char* end, uint32_t& value) {
  while (p != end && TEXT::isBlank(*p)) ++p;
  const char* start = p;
  uint64_t v = 0;
  while (p != end && unsigned(*p - '0') < 10u && p - start < 10) v = v * 10 + unsigned(*p++ - '0');
  if (p == start || v > 0xffffffffu || !TEXT::endsToken(p, end)) return nullptr;
  value = uint32_t(v);
  return p;
}

}  // namespace

// The common face list in text, "3 a b c": the digits of a run are taken straight into the
// items. False, with nothing consumed, at the first face that needs the general path.
bool plyReader::readAsciiTriangles(const char*& p, const char* end, size_t n,
                                   std::vector<unsigned>& items) {
  const size_t old = items.size();
  items.resize(old + 3 * n);
  unsigned* out = items.data() + old;
  const char* q = p;
  uint32_t mn = 0xffffffffu, mx = 0;
  for (size_t i = 0; i < n; ++i, out += 3) {
    uint32_t count = 0;
    if (!(q = parseDigits(q, end, count)) || count != 3 || !(q = parseDigits(q, end, out[0])) ||
        !(q = parseDigits(q, end, out[1])) || !(q = parseDigits(q, end, out[2]))) {
      items.resize(old);
      return false;
    }
    mn = std::min(mn, std::min(out[0], std::min(out[1], out[2])));
    mx = std::max(mx, std::max(out[0], std::max(out[1], out[2])));
  }
  p = q;
  if (n) itemMin = std::min(itemMin, (long long)mn), itemMax = std::max(itemMax, (long long)mx);
  return true;
}

inline void plyReader::storeItem(listBinding& b, long long item) {
  itemMin = std::min(itemMin, item);
  itemMax = std::max(itemMax, item);
  b.items->push_back(unsigned(item));
}

bool plyReader::readGeneric(size_t n) {
  dataState& d = *data;
  const plyElement& e = elements[size_t(current)];
  const bool swap = (fileType == PLY_BINARY_BE) != hostIsBigEndian;
  const unsigned char* bp = d.pos;
  // One value of a type code, as a double (exact for every type of the format).
  auto readValue = [&](int type, double& v) {
    const size_t size = size_t(plyTypeSize(type));
    if (size_t(d.end - bp) < size) return endOfFile();
    v = loadAsDouble(bp, type, swap);
    bp += size;
    return true;
  };
  for (size_t i = 0; i < n; ++i) {
    for (size_t k = 0; k < e.properties.size(); ++k) {
      const plyProperty& prop = e.properties[k];
      const int bi = d.bindingOf[k];
      if (!prop.isList) {
        if (bi < 0) {
          const size_t size = size_t(plyTypeSize(prop.type));
          if (size_t(d.end - bp) < size) return endOfFile();
          bp += size;
          continue;
        }
        double v = 0;
        if (!readValue(prop.type, v)) return false;
        scalarBinding& b = d.scalars[size_t(bi)];
        storeDouble(b.dst, b.recordType, v, isRealType(prop.type));
        continue;
      }
      double cv = 0;
      if (!readValue(prop.countType, cv)) return false;
      if (cv < 0) return badListCount(e);
      const size_t count = size_t(cv);
      const size_t itemBytes = size_t(plyTypeSize(prop.type));
      // A count the rest of the file cannot hold ends here, before anything grows.
      if (count > size_t(d.end - bp) / itemBytes) return endOfFile();
      if (bi < 0) {
        bp += count * itemBytes;
        continue;
      }
      listBinding& b = d.lists[size_t(bi)];
      if (b.required && count != b.required) return false;
      if (b.counts) b.counts->push_back(unsigned(count));
      for (size_t j = 0; j < count; ++j) {
        double v = 0;
        if (!readValue(prop.type, v)) return false;
        storeItem(b, convert<long long>(v));
      }
    }
    for (scalarBinding& b : d.scalars) b.dst += b.stride;
  }
  d.pos = bp;
  return true;
}

bool plyReader::readAscii(size_t n) {
  dataState& d = *data;
  const plyElement& e = elements[size_t(current)];
  const char* p = reinterpret_cast<const char*>(d.pos);
  const char* const end = reinterpret_cast<const char*>(d.end);
  if (e.properties.size() == 1 && d.lists.size() == 1 && d.lists[0].required == 3 &&
      !d.lists[0].counts && !isRealType(e.properties[0].type) &&
      readAsciiTriangles(p, end, n, *d.lists[0].items)) {
    d.pos = reinterpret_cast<const unsigned char*>(p);
    return true;
  }
  auto badValue = [&]() {
    if (TEXT::skipBlanks(p, end) == end) return endOfFile();
    std::fprintf(stderr, "ply_get_element: bad value in element '%s'\n", e.name.c_str());
    return false;
  };
  auto skipTokens = [&](size_t count) {
    for (size_t j = 0; j < count; ++j) {
      p = TEXT::skipBlanks(p, end);
      if (p == end) return endOfFile();
      p = TEXT::skipToken(p, end);
    }
    return true;
  };
  // Index lists are most of a mesh file: their items take the integer path directly.
  auto readInteger = [&](int64_t& v) {
    const char* q = TEXT::parseInteger(p, end, v);
    if (!q) return badValue();
    p = q;
    return true;
  };

  for (size_t i = 0; i < n; ++i) {
    for (size_t k = 0; k < e.properties.size(); ++k) {
      const plyProperty& prop = e.properties[k];
      const int bi = d.bindingOf[k];
      if (!prop.isList) {
        if (bi < 0) {
          // Skipped values are not checked: only their token is passed over.
          if (!skipTokens(1)) return false;
          continue;
        }
        scalarBinding& b = d.scalars[size_t(bi)];
        if (prop.type == PLY_FLOAT && b.recordType == PLY_FLOAT) {
          float f = 0;
          const char* q = TEXT::parseReal(p, end, f);
          if (!q) return badValue();
          p = q;
          std::memcpy(b.dst, &f, sizeof f);
        } else if (isRealType(prop.type)) {
          double v = 0;
          const char* q = TEXT::parseReal(p, end, v);
          if (!q) return badValue();
          p = q;
          // A float-typed value keeps float rounding before any conversion.
          storeDouble(b.dst, b.recordType, prop.type == PLY_FLOAT ? double(float(v)) : v, true);
        } else {
          int64_t v = 0;
          if (!readInteger(v)) return false;
          storeDouble(b.dst, b.recordType, double(v), false);
        }
        continue;
      }
      int64_t count = 0;
      if (!readInteger(count)) return false;
      if (count < 0) return badListCount(e);
      // Each item needs a character and a blank: a longer count cannot be in the file.
      if (size_t(count) > (size_t(end - p) + 1) / 2) return endOfFile();
      if (bi < 0) {
        if (!skipTokens(size_t(count))) return false;
        continue;
      }
      listBinding& b = d.lists[size_t(bi)];
      if (b.required && size_t(count) != b.required) return false;
      if (b.counts) b.counts->push_back(unsigned(count));
      for (int64_t j = 0; j < count; ++j) {
        int64_t v = 0;
        if (isRealType(prop.type)) {
          double r = 0;
          const char* q = TEXT::parseReal(p, end, r);
          if (!q) return badValue();
          p = q;
          v = convert<long long>(r);
        } else if (!readInteger(v)) {
          return false;
        }
        storeItem(b, v);
      }
    }
    for (scalarBinding& b : d.scalars) b.dst += b.stride;
  }
  d.pos = reinterpret_cast<const unsigned char*>(p);
  return true;
}

bool plyReader::endOfFile() {
  std::fprintf(stderr, "ply_get_element: unexpected end of file\n");
  return false;
}

bool plyReader::badListCount(const plyElement& e) {
  std::fprintf(stderr, "ply_get_element: bad list count in element '%s'\n", e.name.c_str());
  return false;
}

}  // namespace PLY
}  // namespace IO
}  // namespace JEV
