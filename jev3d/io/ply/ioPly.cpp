#include "jev3d/io/ply/ioPly.h"

#include <cstdio>
#include <filesystem>
#include <limits>

#include "jev3d/io/internal/largeArray.h"
#include "jev3d/io/internal/progress.h"
#include "jev3d/io/ply/plyReader.h"
#include "jev3d/io/ply/plyWriter.h"
#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace IO {
namespace PLY {

using MATH::point2;
using MATH::point3;

namespace {

static_assert(sizeof(point3<float>) == 12 && sizeof(point2<float>) == 8 && sizeof(CORE::color) == 4,
              "vertex arrays are handed to the element layer as packed records");

// The recognised vertex properties, in the order of the record. Each group is read into
// its own array, so offsets count from the start of that array's entry.
enum VERTEX_PROPERTY {
  V_X,
  V_Y,
  V_Z,
  V_NX,
  V_NY,
  V_NZ,
  V_RED,
  V_GREEN,
  V_BLUE,
  V_ALPHA,
  V_TEXTURE_U,
  V_TEXTURE_V,
  V_INTENSITY,
  V_STD_DEV,
  V_CONFIDENCE,
  V_COUNT
};
const plyPropertyDescription vertexTable[V_COUNT] = {
    {"x", PLY_FLOAT, PLY_FLOAT, 0, 0, 0, 0, 0},
    {"y", PLY_FLOAT, PLY_FLOAT, 4, 0, 0, 0, 0},
    {"z", PLY_FLOAT, PLY_FLOAT, 8, 0, 0, 0, 0},
    {"nx", PLY_FLOAT, PLY_FLOAT, 0, 0, 0, 0, 0},
    {"ny", PLY_FLOAT, PLY_FLOAT, 4, 0, 0, 0, 0},
    {"nz", PLY_FLOAT, PLY_FLOAT, 8, 0, 0, 0, 0},
    {"red", PLY_UCHAR, PLY_UCHAR, 0, 0, 0, 0, 0},
    {"green", PLY_UCHAR, PLY_UCHAR, 1, 0, 0, 0, 0},
    {"blue", PLY_UCHAR, PLY_UCHAR, 2, 0, 0, 0, 0},
    {"alpha", PLY_UCHAR, PLY_UCHAR, 3, 0, 0, 0, 0},
    {"texture_u", PLY_FLOAT, PLY_FLOAT, 0, 0, 0, 0, 0},
    {"texture_v", PLY_FLOAT, PLY_FLOAT, 4, 0, 0, 0, 0},
    {"intensity", PLY_FLOAT, PLY_FLOAT, 0, 0, 0, 0, 0},
    {"std_dev", PLY_FLOAT, PLY_FLOAT, 0, 0, 0, 0, 0},
    {"confidence", PLY_FLOAT, PLY_FLOAT, 0, 0, 0, 0, 0},
};

// Face lists: a "uchar" count, and a second description for files that write an "int"
// one. "vertex_index" is a common spelling of the same list.
const plyPropertyDescription faceUcharList = {"vertex_indices", PLY_INT,   PLY_INT, 0, 1,
                                              PLY_UCHAR,        PLY_UCHAR, 0};
const plyPropertyDescription faceIntList = {"vertex_indices", PLY_INT, PLY_INT, 0, 1,
                                            PLY_INT,          PLY_INT, 0};
const char* const faceListNames[] = {"vertex_indices", "vertex_index"};

void warnMissing(const char* property, const std::string& element) {
  std::fprintf(stderr, "Warning:  Can't find property '%s' in element '%s'\n", property,
               element.c_str());
}

bool hasScalar(const plyElement* e, const char* name) {
  if (!e) return false;
  const int k = e->findProperty(name);
  return k >= 0 && !e->properties[size_t(k)].isList;
}

bool fileExists(const std::string& name) {
  if (FILE* f = std::fopen(name.c_str(), "r")) {
    std::fclose(f);
    return true;
  }
  return false;
}

// The name of a "texture_file" comment whose file exists, as given or beside the mesh.
std::string findTextureName(const plyReader& reader, const std::string& meshPath) {
  for (const std::string& c : reader.getComments()) {
    if (c.find("texture_file") == std::string::npos) continue;
    char first[256], name[4096];
    if (std::sscanf(c.c_str(), "%255s%4095s", first, name) != 2) continue;
    const std::filesystem::path beside = std::filesystem::path(meshPath).parent_path() / name;
    if (fileExists(name) || fileExists(beside.string())) return name;
  }
  return std::string();
}

// Entries of an array of T that one vertex takes (3 floats or 1 point for a position).
template <class T, size_t bytesPerVertex>
constexpr size_t perVertex() {
  static_assert(bytesPerVertex % sizeof(T) == 0, "entries must tile a vertex");
  return bytesPerVertex / sizeof(T);
}

template <class P3, class C, class P2>
struct meshArrays {
  std::vector<P3>* positions = nullptr;
  std::vector<P3>* normals = nullptr;
  std::vector<C>* colours = nullptr;
  std::vector<P2>* texture = nullptr;
  std::vector<unsigned>* corners = nullptr;
  std::vector<unsigned>* cornerCounts = nullptr;  // polygons; null for triangles
  std::string* textureName = nullptr;
  bool lean = false;
};

// One array bound to a group of vertex properties of the current element.
template <class T, size_t bytes>
struct vertexColumn {
  std::vector<T>* array = nullptr;
  bool bound = false;

  void begin(plyReader& reader, size_t first, size_t count, const VERTEX_PROPERTY* props,
             int nprops) {
    if (!array) return;
    constexpr size_t m = perVertex<T, bytes>();
    reserveLarge(*array, (first + count) * m);
    unsigned char* base = reinterpret_cast<unsigned char*>(array->data() + first * m);
    for (int i = 0; i < nprops; ++i) reader.storeProperty(vertexTable[props[i]], base, bytes);
    bound = true;
  }
  void grow(size_t vertices) {
    if (array) array->resize(vertices * perVertex<T, bytes>());
  }
};

template <class P3, class C, class P2>
bool readMesh(const std::string& path, const meshArrays<P3, C, P2>& out, SYSTEM::callBack* cb) {
  progress report(cb);
  report.open();
  out.positions->clear();
  if (out.normals) out.normals->clear();
  if (out.colours) out.colours->clear();
  if (out.texture) out.texture->clear();
  out.corners->clear();
  if (out.cornerCounts) out.cornerCounts->clear();
  if (out.textureName) out.textureName->clear();

  plyReader reader;
  if (!reader.open(path)) return false;
  if (out.textureName) *out.textureName = findTextureName(reader, path);

  // What the file offers is decided on its first vertex element.
  const plyElement* firstVertex = reader.findElement("vertex");
  const bool hasNormals = out.normals && hasScalar(firstVertex, "nx") &&
                          hasScalar(firstVertex, "ny") && hasScalar(firstVertex, "nz");
  const bool hasColours = out.colours && hasScalar(firstVertex, "red") &&
                          hasScalar(firstVertex, "green") && hasScalar(firstVertex, "blue");
  const bool hasTexture =
      out.texture && hasScalar(firstVertex, "texture_u") && hasScalar(firstVertex, "texture_v");
  // The polygon read serves tools that print their own diagnostics: it keeps quiet about
  // optional properties a file lacks.
  if (firstVertex && !out.cornerCounts) {
    const int first = out.lean ? V_INTENSITY : V_NX;
    const int last = out.lean ? V_STD_DEV : V_CONFIDENCE;
    for (int p = first; p <= last; ++p)
      if (!hasScalar(firstVertex, vertexTable[p].name))
        warnMissing(vertexTable[p].name, firstVertex->name);
  }

  static const VERTEX_PROPERTY xyz[] = {V_X, V_Y, V_Z};
  static const VERTEX_PROPERTY nxyz[] = {V_NX, V_NY, V_NZ};
  static const VERTEX_PROPERTY rgba[] = {V_RED, V_GREEN, V_BLUE, V_ALPHA};
  static const VERTEX_PROPERTY uv[] = {V_TEXTURE_U, V_TEXTURE_V};
  size_t vertices = 0;
  // Faces number the vertices of the vertex element before them: they start here.
  size_t indexBase = 0;
  bool shifted = false;

  while (const plyElement* e = reader.nextElement()) {
    const size_t count = size_t(e->count);
    if (e->name == "vertex" && count > 0) {
      for (const VERTEX_PROPERTY p : xyz) {
        if (!hasScalar(e, vertexTable[p].name)) {
          warnMissing(vertexTable[p].name, e->name);
          return false;
        }
      }
      indexBase = vertices;
      vertexColumn<P3, 12> pos{out.positions};
      vertexColumn<P3, 12> nor{hasNormals ? out.normals : nullptr};
      vertexColumn<C, 4> col{hasColours ? out.colours : nullptr};
      vertexColumn<P2, 8> tex{hasTexture ? out.texture : nullptr};
      pos.begin(reader, vertices, count, xyz, 3);
      nor.begin(reader, vertices, count, nxyz, 3);
      col.begin(reader, vertices, count, rgba, 4);
      tex.begin(reader, vertices, count, uv, 2);
      const bool opaque = hasColours && !hasScalar(e, "alpha");
      for (size_t i = 0; i < count; i += progress::every) {
        report.step(i, count, 0.0f, 50.0f);
        const size_t n = std::min(progress::every, count - i);
        const size_t total = vertices + i + n;
        pos.grow(total), nor.grow(total), col.grow(total), tex.grow(total);
        if (!reader.getElements(n)) return false;
        if (opaque) {
          unsigned char* c = reinterpret_cast<unsigned char*>(out.colours->data());
          for (size_t v = vertices + i; v < total; ++v) c[4 * v + 3] = 255;
        }
      }
      vertices += count;
    } else if (e->name == "face" && count > 0) {
      bool found = false;
      for (const char* listName : faceListNames) {
        const int k = e->findProperty(listName);
        if (k < 0 || !e->properties[size_t(k)].isList) continue;
        plyPropertyDescription desc =
            e->properties[size_t(k)].countType == PLY_UCHAR ? faceUcharList : faceIntList;
        desc.name = listName;
        found = reader.storeList(desc, *out.corners, out.cornerCounts, out.cornerCounts ? 0 : 3);
        break;
      }
      if (!found) {
        warnMissing("vertex_indices", e->name);
        continue;
      }
      const size_t first = out.corners->size();
      // Reserve only what the rest of the file can really hold.
      const size_t least = reader.getFileType() == PLY_ASCII ? 8 : 13;
      if (reader.dataBytesLeft() / least >= count) reserveLarge(*out.corners, first + 3 * count);
      for (size_t i = 0; i < count; i += progress::every) {
        report.step(i, count, 50.0f, 50.0f);
        if (!reader.getElements(std::min(progress::every, count - i))) return false;
      }
      if (indexBase > 0) {
        for (size_t i = first; i < out.corners->size(); ++i)
          (*out.corners)[i] += unsigned(indexBase);
        shifted = true;
      }
    }
  }
  if (reader.failed()) return false;

  // Indices must name vertices that were read: the mesh code trusts them.
  bool inRange = true;
  if (!shifted) {
    inRange = out.corners->empty() ||
              (reader.getListItemMin() >= 0 && reader.getListItemMax() < (long long)vertices);
  } else {
    for (const unsigned i : *out.corners) inRange &= i < vertices;
    inRange &= reader.getListItemMin() >= 0;
  }
  if (!inRange) {
    std::fprintf(stderr, "ply: face vertex index out of range in '%s'\n", path.c_str());
    return false;
  }
  if (out.cornerCounts) {
    for (const unsigned n : *out.cornerCounts) {
      if (n < 3) {
        std::fprintf(stderr, "ply: face with fewer than three corners in '%s'\n", path.c_str());
        return false;
      }
    }
  }
  return true;
}

template <class P3, class C, class P2>
bool writeMesh(const std::string& path, const std::vector<P3>& positions,
               const std::vector<P3>& normals, const std::vector<C>& colours,
               const std::vector<P2>& texture, const std::vector<unsigned>& corners,
               const std::vector<unsigned>* cornerCounts, bool binary, SYSTEM::callBack* cb) {
  progress report(cb);
  report.open();
  const size_t vertices = positions.size() / perVertex<P3, 12>();
  const auto fits = [&](size_t size, size_t m) { return size == 0 || size == vertices * m; };
  if (!fits(normals.size(), perVertex<P3, 12>()) || !fits(colours.size(), perVertex<C, 4>()) ||
      !fits(texture.size(), perVertex<P2, 8>()))
    return false;
  for (const unsigned i : corners)
    if (i >= vertices) return false;
  size_t faces = corners.size() / 3;
  unsigned largest = 3;
  if (cornerCounts) {
    size_t sum = 0;
    for (const unsigned n : *cornerCounts) sum += n, largest = std::max(largest, n);
    if (sum != corners.size()) return false;
    faces = cornerCounts->size();
  }

  plyWriter writer;
  if (!writer.open(path, binary ? PLY_BINARY_BE : PLY_ASCII, {"vertex", "face"})) return false;
  writer.describeElement("vertex", (long long)vertices);
  for (int p = V_X; p <= V_Z; ++p) writer.describeProperty(vertexTable[p]);
  if (!normals.empty())
    for (int p = V_NX; p <= V_NZ; ++p) writer.describeProperty(vertexTable[p]);
  if (!colours.empty())
    for (int p = V_RED; p <= V_ALPHA; ++p) writer.describeProperty(vertexTable[p]);
  if (!texture.empty())
    for (int p = V_TEXTURE_U; p <= V_TEXTURE_V; ++p) writer.describeProperty(vertexTable[p]);
  writer.describeElement("face", (long long)faces);
  const plyPropertyDescription& list = largest <= 255 ? faceUcharList : faceIntList;
  writer.describeProperty(list);
  if (!writer.headerComplete()) return false;

  writer.putElementSetup("vertex");
  for (int p = V_X; p <= V_Z; ++p) writer.setSource(vertexTable[p], positions.data(), 12);
  for (int p = V_NX; p <= V_NZ; ++p) writer.setSource(vertexTable[p], normals.data(), 12);
  for (int p = V_RED; p <= V_ALPHA; ++p) writer.setSource(vertexTable[p], colours.data(), 4);
  for (int p = V_TEXTURE_U; p <= V_TEXTURE_V; ++p)
    writer.setSource(vertexTable[p], texture.data(), 8);
  for (size_t i = 0; i < vertices; i += progress::every) {
    report.step(i, vertices, 0.0f, 50.0f);
    writer.putElements(std::min(progress::every, vertices - i));
  }
  writer.putElementSetup("face");
  writer.setListSource(list, corners.data(), cornerCounts ? cornerCounts->data() : nullptr, 3);
  for (size_t i = 0; i < faces; i += progress::every) {
    report.step(i, faces, 50.0f, 50.0f);
    writer.putElements(std::min(progress::every, faces - i));
  }
  return writer.close();
}

std::string utf8(const std::wstring& name) { return XML::wstringToUtf8(name); }

}  // namespace

bool ioPly::readPlyInfoFromFile(const std::string& name, unsigned int& vertices,
                                unsigned int& faces, bool& hasNormals, bool& hasColours,
                                bool& reserved, bool& hasTextureCoordinates) {
  hasNormals = hasColours = reserved = hasTextureCoordinates = false;
  plyReader reader;
  if (!reader.open(name)) return false;
  unsigned long long v = 0, f = 0;
  for (const plyElement& e : reader.getElements()) {
    if (e.name == "vertex") v += (unsigned long long)e.count;
    if (e.name == "face") f += (unsigned long long)e.count;
  }
  const unsigned long long most = std::numeric_limits<unsigned int>::max();
  vertices = unsigned(std::min(v, most));
  faces = unsigned(std::min(f, most));
  const plyElement* e = reader.findElement("vertex");
  hasNormals = hasScalar(e, "nx") && hasScalar(e, "ny") && hasScalar(e, "nz");
  hasColours = hasScalar(e, "red") && hasScalar(e, "green") && hasScalar(e, "blue");
  hasTextureCoordinates = hasScalar(e, "texture_u") && hasScalar(e, "texture_v");
  return true;
}

bool ioPly::readPlyFromFile(const std::string& name, std::vector<point3<float>>& positions,
                            unsigned int& vertexCount, std::vector<unsigned int>& triangles,
                            unsigned int& triangleCount, SYSTEM::callBack* cb) {
  meshArrays<point3<float>, CORE::color, point2<float>> out;
  out.positions = &positions;
  out.corners = &triangles;
  out.lean = true;
  const bool ok = readMesh(name, out, cb);
  vertexCount = unsigned(positions.size());
  triangleCount = unsigned(triangles.size() / 3);
  return ok;
}

bool ioPly::readPlyFromFile(const std::string& name, std::vector<point3<float>>& positions,
                            std::vector<point3<float>>& normals, std::vector<CORE::color>& colours,
                            std::vector<point2<float>>& textureCoordinates,
                            std::vector<unsigned int>& triangles, std::string& textureName,
                            SYSTEM::callBack* cb) {
  meshArrays<point3<float>, CORE::color, point2<float>> out;
  out.positions = &positions;
  out.normals = &normals;
  out.colours = &colours;
  out.texture = &textureCoordinates;
  out.corners = &triangles;
  out.textureName = &textureName;
  return readMesh(name, out, cb);
}

bool ioPly::readPlyFromFile(const std::string& name, std::vector<float>& positions,
                            std::vector<float>& normals, std::vector<unsigned char>& colours,
                            std::vector<float>& textureCoordinates,
                            std::vector<unsigned int>& triangles, std::string& textureName,
                            SYSTEM::callBack* cb) {
  meshArrays<float, unsigned char, float> out;
  out.positions = &positions;
  out.normals = &normals;
  out.colours = &colours;
  out.texture = &textureCoordinates;
  out.corners = &triangles;
  out.textureName = &textureName;
  return readMesh(name, out, cb);
}

bool ioPly::writePlyToFile(const std::string& name, const std::vector<point3<float>>& positions,
                           const std::vector<point3<float>>& normals,
                           const std::vector<CORE::color>& colours,
                           const std::vector<point2<float>>& textureCoordinates,
                           const std::vector<unsigned int>& triangles, bool binary,
                           SYSTEM::callBack* cb) {
  return writeMesh(name, positions, normals, colours, textureCoordinates, triangles, nullptr,
                   binary, cb);
}

bool ioPly::writePlyToFile(const std::string& name, const std::vector<float>& positions,
                           const std::vector<float>& normals,
                           const std::vector<unsigned char>& colours,
                           const std::vector<float>& textureCoordinates,
                           const std::vector<unsigned int>& triangles, bool binary,
                           SYSTEM::callBack* cb) {
  return writeMesh(name, positions, normals, colours, textureCoordinates, triangles, nullptr,
                   binary, cb);
}

bool ioPly::readPlyPolygonsFromFile(const std::string& name, plyPolygonMesh& mesh,
                                    SYSTEM::callBack* cb) {
  meshArrays<point3<float>, CORE::color, point2<float>> out;
  out.positions = &mesh.positions;
  out.normals = &mesh.normals;
  out.colours = &mesh.colours;
  out.corners = &mesh.corners;
  out.cornerCounts = &mesh.cornerCounts;
  out.textureName = &mesh.textureName;
  return readMesh(name, out, cb);
}

bool ioPly::writePlyPolygonsToFile(const std::string& name, const plyPolygonMesh& mesh, bool binary,
                                   SYSTEM::callBack* cb) {
  const std::vector<point2<float>> noTexture;
  return writeMesh(name, mesh.positions, mesh.normals, mesh.colours, noTexture, mesh.corners,
                   &mesh.cornerCounts, binary, cb);
}

bool ioPly::readPlyInfoFromFile(const std::wstring& name, unsigned int& vertices,
                                unsigned int& faces, bool& hasNormals, bool& hasColours,
                                bool& reserved, bool& hasTextureCoordinates) {
  return readPlyInfoFromFile(utf8(name), vertices, faces, hasNormals, hasColours, reserved,
                             hasTextureCoordinates);
}

bool ioPly::readPlyFromFile(const std::wstring& name, std::vector<point3<float>>& positions,
                            unsigned int& vertexCount, std::vector<unsigned int>& triangles,
                            unsigned int& triangleCount, SYSTEM::callBack* cb) {
  return readPlyFromFile(utf8(name), positions, vertexCount, triangles, triangleCount, cb);
}

bool ioPly::readPlyFromFile(const std::wstring& name, std::vector<point3<float>>& positions,
                            std::vector<point3<float>>& normals, std::vector<CORE::color>& colours,
                            std::vector<point2<float>>& textureCoordinates,
                            std::vector<unsigned int>& triangles, std::string& textureName,
                            SYSTEM::callBack* cb) {
  return readPlyFromFile(utf8(name), positions, normals, colours, textureCoordinates, triangles,
                         textureName, cb);
}

bool ioPly::readPlyFromFile(const std::wstring& name, std::vector<float>& positions,
                            std::vector<float>& normals, std::vector<unsigned char>& colours,
                            std::vector<float>& textureCoordinates,
                            std::vector<unsigned int>& triangles, std::string& textureName,
                            SYSTEM::callBack* cb) {
  return readPlyFromFile(utf8(name), positions, normals, colours, textureCoordinates, triangles,
                         textureName, cb);
}

bool ioPly::writePlyToFile(const std::wstring& name, const std::vector<point3<float>>& positions,
                           const std::vector<point3<float>>& normals,
                           const std::vector<CORE::color>& colours,
                           const std::vector<point2<float>>& textureCoordinates,
                           const std::vector<unsigned int>& triangles, bool binary,
                           SYSTEM::callBack* cb) {
  return writePlyToFile(utf8(name), positions, normals, colours, textureCoordinates, triangles,
                        binary, cb);
}

bool ioPly::writePlyToFile(const std::wstring& name, const std::vector<float>& positions,
                           const std::vector<float>& normals,
                           const std::vector<unsigned char>& colours,
                           const std::vector<float>& textureCoordinates,
                           const std::vector<unsigned int>& triangles, bool binary,
                           SYSTEM::callBack* cb) {
  return writePlyToFile(utf8(name), positions, normals, colours, textureCoordinates, triangles,
                        binary, cb);
}

bool ioPly::readPlyPolygonsFromFile(const std::wstring& name, plyPolygonMesh& mesh,
                                    SYSTEM::callBack* cb) {
  return readPlyPolygonsFromFile(utf8(name), mesh, cb);
}

bool ioPly::writePlyPolygonsToFile(const std::wstring& name, const plyPolygonMesh& mesh,
                                   bool binary, SYSTEM::callBack* cb) {
  return writePlyPolygonsToFile(utf8(name), mesh, binary, cb);
}

}  // namespace PLY
}  // namespace IO
}  // namespace JEV
