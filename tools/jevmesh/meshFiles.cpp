#include "meshFiles.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <numeric>

#include "jev3d/io/ply/ioPly.h"
#include "jev3d/io/stl/ioStl.h"

namespace JEVMESH {

using JEV::MESH::editMesh;
using p3 = JEV::MATH::point3<float>;

namespace {

// The finishing sequence after building a mesh from arrays.
void finish(editMesh& m) {
  m.checkMeshState();
  m.computeEdges(true);
  m.computeVE();
  m.computeNormalizedFaceNormals();
}

// Why a file that the reader refused may be bad, from what can be seen without it.
std::string unreadable(const std::string& path, const char* format) {
  std::error_code ec;
  if (!std::filesystem::exists(path, ec)) return "no such file";
  if (std::filesystem::is_directory(path, ec)) return "is a directory";
  return std::string("not a readable ") + format + " mesh (bad header, bad data or truncated)";
}

bool loadPly(const std::string& path, editMesh& m, std::string& error, JEV::SYSTEM::callBack* cb) {
  JEV::IO::PLY::plyPolygonMesh file;
  if (!JEV::IO::PLY::ioPly::readPlyPolygonsFromFile(path, file, cb)) {
    error = unreadable(path, "PLY");
    return false;
  }
  m.allocateVertexArray(unsigned(file.positions.size()));
  for (size_t v = 0; v < file.positions.size(); ++v) {
    const unsigned id = m.addVertex(file.positions[v]);
    if (!file.normals.empty()) m.vNor(id) = file.normals[v];
    if (!file.colours.empty()) m.vCol(id) = file.colours[v];
  }
  m.setHasVC(!file.colours.empty());
  m.allocateFaceArray(unsigned(file.cornerCounts.size()));
  m.allocateFVArray(unsigned(file.corners.size()));
  size_t at = 0;
  for (unsigned n : file.cornerCounts) {
    m.addFace(file.corners.data() + at, n);
    at += n;
  }
  finish(m);
  // A file's own normals are kept; the others are computed.
  if (file.normals.empty()) m.computeNormalizedVertexNormals();
  return true;
}

bool loadStl(const std::string& path, editMesh& m, std::string& error, JEV::SYSTEM::callBack* cb) {
  std::vector<p3> corners, normals;
  if (!JEV::IO::STL::ioStl::readStlFromFile(path, corners, normals, cb)) {
    error = unreadable(path, "STL");
    return false;
  }
  // Weld corners with bit-identical positions: sort their indices by the position's bytes.
  std::vector<unsigned> order(corners.size());
  std::iota(order.begin(), order.end(), 0u);
  auto less = [&](unsigned a, unsigned b) {
    return std::memcmp(&corners[a], &corners[b], sizeof(p3)) < 0;
  };
  std::sort(order.begin(), order.end(), less);
  std::vector<unsigned> vertexOf(corners.size());
  for (size_t i = 0; i < order.size(); ++i) {
    if (i == 0 || less(order[i - 1], order[i])) m.addVertex(corners[order[i]]);
    vertexOf[order[i]] = m.vn() - 1;
  }
  m.allocateFaceArray(unsigned(corners.size() / 3));
  for (size_t f = 0; f + 2 < corners.size(); f += 3)
    m.addTriFace(vertexOf[f], vertexOf[f + 1], vertexOf[f + 2]);
  finish(m);
  m.computeNormalizedVertexNormals();
  return true;
}

}  // namespace

fileKind kindOfPath(const std::string& path) {
  std::string ext = std::filesystem::path(path).extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return char(std::tolower(c)); });
  if (ext == ".ply") return fileKind::PLY;
  if (ext == ".stl") return fileKind::STL;
  return fileKind::UNKNOWN;
}

bool loadMesh(const std::string& path, editMesh& mesh, std::string& error,
              JEV::SYSTEM::callBack* cb) {
  mesh.clear(true);
  switch (kindOfPath(path)) {
    case fileKind::PLY:
      return loadPly(path, mesh, error, cb);
    case fileKind::STL:
      return loadStl(path, mesh, error, cb);
    default:
      error = "unknown file type (expected .ply or .stl)";
      return false;
  }
}

bool saveMesh(const std::string& path, const editMesh& m, bool ascii, std::string& error,
              JEV::SYSTEM::callBack* cb) {
  const fileKind kind = kindOfPath(path);
  if (kind == fileKind::UNKNOWN) {
    error = "unknown file type (expected .ply or .stl)";
    return false;
  }
  // Live vertices renumbered in order; deleted ones dropped.
  std::vector<unsigned> newId(m.vn(), 0);
  JEV::IO::PLY::plyPolygonMesh out;
  const bool withNormals = kind == fileKind::PLY;
  for (unsigned v = 0; v < m.vn(); ++v) {
    if (m.isVertDeleted(v)) continue;
    newId[v] = unsigned(out.positions.size());
    out.positions.push_back(m.vPos(v));
    if (withNormals) out.normals.push_back(m.vNor(v));
    if (m.hasVC()) out.colours.push_back(m.vCol(v));
  }
  std::vector<unsigned> triangles;
  std::vector<p3> faceNormals;
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f) || m.fVNum(f) < 3) continue;
    const unsigned n = m.fVNum(f);
    out.cornerCounts.push_back(n);
    for (unsigned i = 0; i < n; ++i) out.corners.push_back(newId[m.fV(f, i)]);
    for (unsigned t = 0; t + 2 < n; ++t) {
      triangles.insert(triangles.end(),
                       {newId[m.fV(f, 0)], newId[m.fV(f, t + 1)], newId[m.fV(f, t + 2)]});
      faceNormals.push_back(m.fNor(f));
    }
  }
  const bool ok = kind == fileKind::PLY
                      ? JEV::IO::PLY::ioPly::writePlyPolygonsToFile(path, out, !ascii, cb)
                      : JEV::IO::STL::ioStl::writeStlToFile(path, out.positions, triangles,
                                                            faceNormals, !ascii, cb);
  if (!ok) error = "cannot write the file";
  return ok;
}

}  // namespace JEVMESH
