#include "jev3d/algo/postprocessing/geodesicModel.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace JEV {
namespace MESH {
namespace POSTPROCESSING {

namespace {

const char* const FAIL_TO_READ = "Fail to read file!";

[[noreturn]] void failToRead() { throw std::runtime_error(FAIL_TO_READ); }

// A header problem: named on the error stream, then the read fails.
[[noreturn]] void headerProblem(const char* what) {
  std::cerr << what << "\n";
  failToRead();
}

bool readWhole(const std::string& name, std::string& bytes) {
  std::ifstream in(name, std::ios::binary);
  if (!in) return false;
  bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return !in.bad();
}

// Appends the fan of a polygon; corners must index the vertices.
void addPolygon(geodesicModel& m, const std::vector<long long>& ids) {
  for (long long id : ids)
    if (id < 0 || size_t(id) >= m.vertices.size()) failToRead();
  for (size_t t = 1; t + 1 < ids.size(); ++t)
    m.faces.push_back({unsigned(ids[0]), unsigned(ids[t]), unsigned(ids[t + 1])});
}

void loadObj(geodesicModel& m, const std::string& bytes) {
  std::istringstream in(bytes);
  std::vector<long long> ids;
  for (std::string line; std::getline(in, line);) {
    std::istringstream words(line);
    std::string key;
    words >> key;
    if (key == "v") {
      double x, y, z;
      if (!(words >> x >> y >> z)) failToRead();
      m.vertices.emplace_back(x, y, z);
    } else if (key == "f") {
      ids.clear();
      for (std::string corner; words >> corner;) {
        // "i", "i/t", "i//n" or "i/t/n"; negative indices count back from the end.
        long long id = 0;
        try {
          id = std::stoll(corner.substr(0, corner.find('/')));
        } catch (const std::exception&) {
          failToRead();
        }
        ids.push_back(id < 0 ? (long long)m.vertices.size() + id : id - 1);
      }
      addPolygon(m, ids);
    }
  }
}

// PLY
enum class plyType { INT8, UINT8, INT16, UINT16, INT32, UINT32, FLOAT32, FLOAT64 };

bool typeOf(const std::string& word, plyType& t) {
  static const std::pair<const char*, plyType> names[] = {
      {"char", plyType::INT8},      {"uchar", plyType::UINT8},     {"short", plyType::INT16},
      {"ushort", plyType::UINT16},  {"uint", plyType::UINT32},     {"float", plyType::FLOAT32},
      {"double", plyType::FLOAT64}, {"int8", plyType::INT8},       {"int16", plyType::INT16},
      {"int32", plyType::INT32},    {"uint8", plyType::UINT8},     {"uint16", plyType::UINT16},
      {"uint32", plyType::UINT32},  {"float32", plyType::FLOAT32}, {"float64", plyType::FLOAT64}};
  for (const auto& n : names)
    if (word == n.first) return t = n.second, true;
  return false;
}

size_t sizeOf(plyType t) {
  switch (t) {
    case plyType::INT8:
    case plyType::UINT8:
      return 1;
    case plyType::INT16:
    case plyType::UINT16:
      return 2;
    case plyType::FLOAT64:
      return 8;
    default:
      return 4;
  }
}

struct plyProperty {
  std::string name;
  bool list = false;
  plyType countType = plyType::UINT8, type = plyType::FLOAT32;
};

struct plyElement {
  std::string name;
  size_t count = 0;
  std::vector<plyProperty> properties;
};

// Reads values from the body: text tokens, or binary in either byte order. Every read is
// checked against the end of the data.
class plyBody {
 public:
  plyBody(const std::string& data, size_t start, bool ascii, bool bigEndian)
      : bytes(data), at(start), text(ascii), big(bigEndian) {}

  double read(plyType t) {
    if (text) return readToken();
    const size_t n = sizeOf(t);
    if (bytes.size() - at < n) failToRead();
    unsigned char raw[8];
    std::memcpy(raw, bytes.data() + at, n);
    at += n;
    if (big) std::reverse(raw, raw + n);  // the machine is little-endian
    switch (t) {
      case plyType::INT8:
        return double(int8_t(raw[0]));
      case plyType::UINT8:
        return double(raw[0]);
      case plyType::INT16: {
        int16_t v;
        std::memcpy(&v, raw, 2);
        return v;
      }
      case plyType::UINT16: {
        uint16_t v;
        std::memcpy(&v, raw, 2);
        return v;
      }
      case plyType::INT32: {
        int32_t v;
        std::memcpy(&v, raw, 4);
        return v;
      }
      case plyType::UINT32: {
        uint32_t v;
        std::memcpy(&v, raw, 4);
        return v;
      }
      case plyType::FLOAT32: {
        float v;
        std::memcpy(&v, raw, 4);
        return double(v);
      }
      case plyType::FLOAT64: {
        double v;
        std::memcpy(&v, raw, 8);
        return v;
      }
    }
    return 0.0;
  }
  // Bytes or tokens left, a bound on how many values can still come.
  size_t left() const { return bytes.size() - at; }

 private:
  double readToken() {
    while (at < bytes.size() && std::isspace(static_cast<unsigned char>(bytes[at]))) ++at;
    const size_t begin = at;
    while (at < bytes.size() && !std::isspace(static_cast<unsigned char>(bytes[at]))) ++at;
    if (begin == at) failToRead();
    try {
      return std::stod(bytes.substr(begin, at - begin));
    } catch (const std::exception&) {
      failToRead();
    }
  }

  const std::string& bytes;
  size_t at;
  bool text, big;
};

void loadPly(geodesicModel& m, const std::string& bytes) {
  const size_t headerEnd = bytes.find("end_header");
  if (headerEnd == std::string::npos) headerProblem("fail to read file");
  std::istringstream header(bytes.substr(0, headerEnd));
  std::string line, word;
  std::getline(header, line);
  if (line.compare(0, 3, "ply") != 0) headerProblem("error model");
  bool ascii = false, big = false, formatSeen = false;
  std::vector<plyElement> elements;
  while (std::getline(header, line)) {
    std::istringstream words(line);
    if (!(words >> word)) continue;
    if (word == "format") {
      words >> word;
      if (word.find("ascii") != std::string::npos) {
        ascii = true;
      } else if (word.find("binary") != std::string::npos &&
                 (word.find("little") != std::string::npos ||
                  word.find("big") != std::string::npos)) {
        big = word.find("big") != std::string::npos;
      } else {
        headerProblem("error model format");
      }
      formatSeen = true;
    } else if (word == "element") {
      plyElement e;
      long long count = -1;
      if (!(words >> e.name >> count) || count < 0) headerProblem("error model");
      e.count = size_t(count);
      elements.push_back(e);
    } else if (word == "property") {
      if (elements.empty()) headerProblem("error model");
      plyProperty p;
      if (!(words >> word)) headerProblem("error model");
      if (word == "list") {
        p.list = true;
        std::string countWord, typeWord;
        if (!(words >> countWord >> typeWord) || !typeOf(countWord, p.countType) ||
            !typeOf(typeWord, p.type))
          headerProblem("error model format");
      } else if (!typeOf(word, p.type)) {
        headerProblem("error model format");
      }
      words >> p.name;
      elements.back().properties.push_back(p);
    }
  }
  if (!formatSeen) headerProblem("error model format");
  size_t start = headerEnd + std::strlen("end_header");
  while (start < bytes.size() && bytes[start] != '\n') ++start;
  plyBody body(bytes, start + 1 > bytes.size() ? bytes.size() : start + 1, ascii, big);

  std::vector<long long> ids;
  for (const plyElement& e : elements) {
    // Each item takes at least one byte (or token character): a count beyond what is left
    // cannot be honest, and must not size anything.
    if (e.count > body.left() && !e.properties.empty()) failToRead();
    const bool isVertex = e.name == "vertex", isFace = e.name == "face",
               isStrips = e.name == "tristrips";
    if (isVertex) m.vertices.reserve(m.vertices.size() + e.count);
    for (size_t k = 0; k < e.count; ++k) {
      double xyz[3] = {0, 0, 0};
      bool listDone = false;
      for (const plyProperty& p : e.properties) {
        if (!p.list) {
          const double v = body.read(p.type);
          if (p.name == "x") xyz[0] = v;
          if (p.name == "y") xyz[1] = v;
          if (p.name == "z") xyz[2] = v;
          continue;
        }
        const double n = body.read(p.countType);
        if (!(n >= 0) || n > double(body.left())) failToRead();
        ids.resize(size_t(n));
        for (long long& id : ids) id = (long long)body.read(p.type);
        if (listDone || !(isFace || isStrips)) continue;  // the first list is the one
        listDone = true;
        if (isFace) {
          addPolygon(m, ids);
          continue;
        }
        // Strips restart after each -1; odd triangles turn the other way.
        size_t begin = 0;
        for (size_t i = 0; i <= ids.size(); ++i) {
          if (i < ids.size() && ids[i] != -1) continue;
          for (size_t t = begin; t + 2 < i; ++t) {
            const bool odd = (t - begin) % 2 == 1;
            const long long a = ids[odd ? t + 1 : t], b = ids[odd ? t : t + 1], c = ids[t + 2];
            if (a == b || b == c || a == c) continue;
            addPolygon(m, {a, b, c});
          }
          begin = i + 1;
        }
      }
      if (isVertex) m.vertices.emplace_back(xyz[0], xyz[1], xyz[2]);
    }
  }
}

}  // namespace

void geodesicModel::load(const std::string& name) {
  vertices.clear();
  faces.clear();
  const size_t dot = name.rfind('.');
  if (dot == std::string::npos) throw std::runtime_error("File name doesn't contain a dot!");
  std::string ext = name.substr(dot + 1);
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return char(std::tolower(c)); });
  if (ext != "obj" && ext != "ply") throw std::runtime_error("This format can't be handled!");
  std::string bytes;
  if (!readWhole(name, bytes)) failToRead();
  if (ext == "obj")
    loadObj(*this, bytes);
  else
    loadPly(*this, bytes);
}

}  // namespace POSTPROCESSING
}  // namespace MESH
}  // namespace JEV
