// triMesh files: the extension dispatch and the PLY, STL and point-list forms.

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>

#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/io/ply/ioPly.h"
#include "jev3d/io/stl/ioStl.h"
#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace POSTPROCESSING {

using MATH::point3;

namespace {

enum class fileFormat { PLY, STL, PTS, NONE };

// The format an extension names, compared upper-cased; ".TMP", ".OCD" and ".M" are PLY
// files under other names.
fileFormat formatOf(const std::string& name) {
  std::string ext = std::filesystem::u8path(name).extension().u8string();
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return char(std::toupper(c)); });
  if (ext == ".STL") return fileFormat::STL;
  if (ext == ".PLY" || ext == ".TMP" || ext == ".OCD" || ext == ".M") return fileFormat::PLY;
  if (ext == ".PTS") return fileFormat::PTS;
  return fileFormat::NONE;
}

}  // namespace

bool triMesh::readFromFile(const std::string& name, SYSTEM::callBack* cb) {
  switch (formatOf(name)) {
    case fileFormat::STL:
      return readStlFromFile(name, true, cb);
    case fileFormat::PLY:
      return readPlyFromFile(name, cb);
    default:
      return false;  // a point list is written, never read
  }
}

bool triMesh::readFromFile(const std::wstring& name, SYSTEM::callBack* cb) {
  return readFromFile(IO::XML::wstringToUtf8(name), cb);
}

bool triMesh::writeToFile(const std::string& name, bool binary, SYSTEM::callBack* cb) const {
  switch (formatOf(name)) {
    case fileFormat::STL:
      return writeStlToFile(name, binary, cb);
    case fileFormat::PLY:
      return writePlyToFile(name, binary, cb);
    case fileFormat::PTS:
      return writePtsToFile(name, cb);
    default:
      return false;
  }
}

bool triMesh::writeToFile(const std::wstring& name, bool binary, SYSTEM::callBack* cb) const {
  return writeToFile(IO::XML::wstringToUtf8(name), binary, cb);
}

bool triMesh::readPlyFromFile(const std::string& name, SYSTEM::callBack* cb) {
  clear();
  IO::PLY::plyPolygonMesh in;
  if (!IO::PLY::ioPly::readPlyPolygonsFromFile(name, in, cb)) return false;
  vertices = std::move(in.positions);
  normals = std::move(in.normals);
  colors = std::move(in.colours);
  // The reader checked every index against the positions; polygons become fans.
  faces.reserve(in.corners.size());
  size_t at = 0;
  for (unsigned int n : in.cornerCounts) {
    addFace(&in.corners[at], n);
    at += n;
  }
  facesChanged();
  return true;
}

bool triMesh::writePlyToFile(const std::string& name, bool binary, SYSTEM::callBack* cb) const {
  static const std::vector<point3<float>> none;
  static const std::vector<CORE::color> noColors;
  static const std::vector<MATH::point2<float>> noCoordinates;
  for (unsigned int i : faces)
    if (i >= vn()) return false;  // the writer would refuse it anyway; say so first
  return IO::PLY::ioPly::writePlyToFile(name, vertices, hasVN() ? normals : none,
                                        hasVC() ? colors : noColors, noCoordinates, faces, binary,
                                        cb);
}

bool triMesh::readStlFromFile(const std::string& name, bool weld, SYSTEM::callBack* cb) {
  clear();
  std::vector<point3<float>> positions, facetNormals;
  if (!IO::STL::ioStl::readStlFromFile(name, positions, facetNormals, cb)) return false;
  if (positions.size() % 3 != 0 || positions.size() / 3 != facetNormals.size()) return false;
  vertices = std::move(positions);
  faces.resize(vertices.size());
  for (size_t i = 0; i < faces.size(); ++i) faces[i] = unsigned(i);
  faceNormals = std::move(facetNormals);
  facesChanged();
  if (weld) removeDuplicateVertices();
  return true;
}

bool triMesh::writeStlToFile(const std::string& name, bool binary, SYSTEM::callBack* cb) const {
  for (unsigned int i : faces)
    if (i >= vn()) return false;
  if (hasFN())
    return IO::STL::ioStl::writeStlToFile(name, vertices, faces, faceNormals, binary, cb);
  std::vector<point3<float>> n(fn());
  for (unsigned int f = 0; f < fn(); ++f)
    n[f] = point3<float>::cross(vPos(f, 1) - vPos(f, 0), vPos(f, 2) - vPos(f, 0)).normalize();
  return IO::STL::ioStl::writeStlToFile(name, vertices, faces, n, binary, cb);
}

bool triMesh::writePtsToFile(const std::string& name, SYSTEM::callBack* cb) const {
  if (cb) cb->setValue(1.f);
  FILE* out = std::fopen(name.c_str(), "w");
  if (!out) return false;
  bool ok = true;
  const bool withNormals = hasVN();
  for (unsigned int v = 0; v < vn() && ok; ++v) {
    const point3<float>& p = vertices[v];
    ok = withNormals
             ? std::fprintf(out, "%.9g %.9g %.9g %.9g %.9g %.9g\n", double(p.x), double(p.y),
                            double(p.z), double(normals[v].x), double(normals[v].y),
                            double(normals[v].z)) > 0
             : std::fprintf(out, "%.9g %.9g %.9g\n", double(p.x), double(p.y), double(p.z)) > 0;
  }
  ok = std::fclose(out) == 0 && ok;
  if (cb) cb->setValue(100.f);
  return ok;
}

bool triMesh::buildFromFiles(const std::vector<std::string>& names, SYSTEM::callBack* cb) {
  std::vector<triMesh> parts(names.size());
  for (size_t i = 0; i < names.size(); ++i) {
    if (!parts[i].readFromFile(names[i])) {
      clear();
      return false;
    }
    if (cb) cb->setValue(1.f + 98.f * float(i + 1) / float(names.size()));
  }
  buildFrom(parts);
  if (cb) cb->setValue(100.f);
  return true;
}

}  // namespace POSTPROCESSING
}  // namespace MESH
}  // namespace JEV
