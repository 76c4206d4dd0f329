// The editable node's files, factories and cleaning forms.
#include <cstdio>
#include <cstring>
#include <cwctype>
#include <fstream>
#include <iterator>
#include <unordered_map>

#include "jev3d/algo/holefilling/computeHoleFilling.h"
#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/algo/smoothing/laplacianSmooth.h"
#include "jev3d/editing/editMeshNode.h"
#include "jev3d/io/ply/ioPly.h"
#include "jev3d/io/stl/ioStl.h"
#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace EDITING {

using p3 = MATH::point3<float>;

namespace {

// Em2: "JEM2", version, vertex, face and corner counts (u32, little-endian), then per
// vertex position, normal (floats), two colours and a selection byte; per face its corner
// count; the corners; per face a selection byte; the colour display state (u32) and the
// vertex-colour byte. Only live elements are written, vertices renumbered.
constexpr char EM2_MAGIC[4] = {'J', 'E', 'M', '2'};
constexpr uint32_t EM2_VERSION = 1;
constexpr size_t EM2_VERTEX_BYTES = 6 * 4 + 8 + 1;

class byteReader {
 public:
  explicit byteReader(const std::vector<char>& b) : bytes(b) {}
  template <class T>
  bool get(T& out) {
    if (bytes.size() - at < sizeof(T)) return false;
    std::memcpy(&out, bytes.data() + at, sizeof(T));
    at += sizeof(T);
    return true;
  }
  size_t left() const { return bytes.size() - at; }

 private:
  const std::vector<char>& bytes;
  size_t at = 0;
};

template <class T>
void put(std::string& out, const T& v) {
  out.append(reinterpret_cast<const char*>(&v), sizeof(T));
}

bool readWholeFile(const std::wstring& name, std::vector<char>& bytes) {
  std::ifstream in(IO::XML::wstringToUtf8(name), std::ios::binary);
  if (!in) return false;
  bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return !in.bad();
}

bool hasSuffix(const std::wstring& name, const wchar_t* suffix) {
  const size_t n = std::wcslen(suffix);
  if (name.size() < n) return false;
  for (size_t i = 0; i < n; ++i)
    if (wchar_t(std::towlower(wint_t(name[name.size() - n + i]))) != suffix[i]) return false;
  return true;
}

}  // namespace

bool editMeshNode::readEm2FromFile(const std::wstring& name) {
  std::vector<char> bytes;
  if (!readWholeFile(name, bytes)) return false;
  byteReader in(bytes);
  char magic[4];
  uint32_t version = 0, vn = 0, fn = 0, fvn = 0;
  if (!in.get(magic) || std::memcmp(magic, EM2_MAGIC, 4) != 0 || !in.get(version) ||
      version != EM2_VERSION || !in.get(vn) || !in.get(fn) || !in.get(fvn))
    return false;
  // Sizes are checked against the file before anything is allocated.
  const unsigned long long need =
      (unsigned long long)vn * EM2_VERTEX_BYTES + 4ull * fn + 4ull * fvn + fn + 4 + 1;
  if (need != in.left()) return false;
  editMesh built;
  built.allocateVertexArray(vn);
  std::vector<unsigned int> selectedVerts, selectedFaces;
  for (uint32_t v = 0; v < vn; ++v) {
    editMesh::vert r;
    uint8_t selected = 0;
    in.get(r.pos);
    in.get(r.normal);
    in.get(r.col);
    in.get(selected);
    built.addVertex(r);
    if (selected) selectedVerts.push_back(v);
  }
  std::vector<uint32_t> counts(fn);
  unsigned long long total = 0;
  for (uint32_t& c : counts) {
    in.get(c);
    if (c < 3) return false;
    total += c;
  }
  if (total != fvn) return false;
  std::vector<unsigned int> corners(fvn);
  for (unsigned int& c : corners) {
    in.get(c);
    if (c >= vn) return false;
  }
  built.allocateFaceArray(fn);
  built.allocateFVArray(fvn);
  size_t at = 0;
  for (uint32_t f = 0; f < fn; ++f) {
    built.addFace(corners.data() + at, counts[f]);
    at += counts[f];
  }
  for (uint32_t f = 0; f < fn; ++f) {
    uint8_t selected = 0;
    in.get(selected);
    if (selected) selectedFaces.push_back(f);
  }
  uint32_t colorState = 0;
  uint8_t hasColors = 0;
  in.get(colorState);
  in.get(hasColors);
  if (colorState > MESH_COLOR_FACE) return false;
  built.colorDisplayState = MESH_COLOR_DISPLAY_STATE(colorState);
  built.setHasVC(hasColors != 0);
  built.checkMeshState();
  built.computeEdges(true);
  built.computeVE();
  for (unsigned int f : selectedFaces) built.selectFace(f);
  for (unsigned int v : selectedVerts) built.selectVert(v);
  built.computeNormalizedFaceNormals();
  built.computeBBox();
  adoptMesh(built);
  return true;
}

bool editMeshNode::writeEm2ToFile(const std::wstring& name) const {
  std::vector<unsigned int> newId(mesh.vn(), ~0u);
  uint32_t vn = 0, fn = 0, fvn = 0;
  for (unsigned int v = 0; v < mesh.vn(); ++v)
    if (!mesh.isVertDeleted(v)) newId[v] = vn++;
  std::string faces, corners, faceFlags;
  for (unsigned int f = 0; f < mesh.fn(); ++f) {
    if (mesh.isFaceDeleted(f) || mesh.fVNum(f) < 3) continue;
    bool ok = true;
    for (unsigned int i = 0; i < mesh.fVNum(f); ++i) ok = ok && newId[mesh.fV(f, i)] != ~0u;
    if (!ok) continue;
    put(faces, uint32_t(mesh.fVNum(f)));
    for (unsigned int i = 0; i < mesh.fVNum(f); ++i) put(corners, uint32_t(newId[mesh.fV(f, i)]));
    put(faceFlags, uint8_t(mesh.isFaceSelected(f)));
    ++fn;
    fvn += mesh.fVNum(f);
  }
  std::string out(EM2_MAGIC, 4);
  put(out, EM2_VERSION);
  put(out, vn);
  put(out, fn);
  put(out, fvn);
  for (unsigned int v = 0; v < mesh.vn(); ++v) {
    if (newId[v] == ~0u) continue;
    const editMesh::vert& r = mesh.V(v);
    put(out, r.pos);
    put(out, r.normal);
    put(out, r.col);
    put(out, uint8_t(mesh.isVertSelected(v)));
  }
  out += faces + corners + faceFlags;
  put(out, uint32_t(mesh.colorDisplayState));
  put(out, uint8_t(mesh.hasVC()));
  std::ofstream file(IO::XML::wstringToUtf8(name), std::ios::binary);
  return file && file.write(out.data(), std::streamsize(out.size())) && file.flush();
}

bool editMeshNode::readPlyFromFile(const std::wstring& name, SYSTEM::callBack* cb) {
  IO::PLY::plyPolygonMesh ply;
  if (!IO::PLY::ioPly::readPlyPolygonsFromFile(name, ply, cb)) return false;
  editMesh built;
  built.allocateVertexArray(unsigned(ply.positions.size()));
  for (size_t v = 0; v < ply.positions.size(); ++v) {
    const unsigned int id = built.addVertex(ply.positions[v]);
    if (!ply.normals.empty()) built.vNor(id) = ply.normals[v];
    if (!ply.colours.empty()) built.vCol(id) = ply.colours[v];
  }
  built.setHasVC(!ply.colours.empty());
  size_t at = 0;
  for (unsigned int n : ply.cornerCounts) {
    built.addFace(ply.corners.data() + at, n);
    at += n;
  }
  adoptMesh(built);
  if (!ply.normals.empty()) {
    for (size_t v = 0; v < ply.normals.size(); ++v) mesh.vNor(unsigned(v)) = ply.normals[v];
  }
  return true;
}

bool editMeshNode::writePlyToFile(const std::wstring& name, bool binary,
                                  SYSTEM::callBack* cb) const {
  return mesh.saveMeshToPly(name, binary, cb);
}

bool editMeshNode::readStlFromFile(const std::wstring& name, SYSTEM::callBack* cb) {
  std::vector<p3> positions, normals;
  if (!IO::STL::ioStl::readStlFromFile(name, positions, normals, cb)) return false;
  // Corners at bit-identical positions are one vertex.
  struct key {
    uint32_t b[3];
    bool operator==(const key& o) const { return std::memcmp(b, o.b, sizeof b) == 0; }
  };
  struct keyHash {
    size_t operator()(const key& k) const {
      return (size_t(k.b[0]) * 73856093u) ^ (size_t(k.b[1]) * 19349663u) ^
             (size_t(k.b[2]) * 83492791u);
    }
  };
  std::unordered_map<key, unsigned int, keyHash> ids;
  editMesh built;
  unsigned int corner[3];
  for (size_t i = 0; i + 2 < positions.size(); i += 3) {
    for (unsigned int k = 0; k < 3; ++k) {
      key kk;
      std::memcpy(kk.b, &positions[i + k], sizeof kk.b);
      auto it = ids.find(kk);
      if (it == ids.end()) it = ids.emplace(kk, built.addVertex(positions[i + k])).first;
      corner[k] = it->second;
    }
    // Facets collapsed by the weld carry nothing.
    if (corner[0] == corner[1] || corner[1] == corner[2] || corner[0] == corner[2]) continue;
    built.addTriFace(corner[0], corner[1], corner[2]);
  }
  adoptMesh(built);
  return true;
}

bool editMeshNode::writeStlToFile(const std::wstring& name, bool binary,
                                  SYSTEM::callBack* cb) const {
  std::vector<p3> positions;
  std::vector<unsigned int> triangles;
  std::vector<p3> normals;
  positions.reserve(mesh.vn());
  for (unsigned int v = 0; v < mesh.vn(); ++v) positions.push_back(mesh.vPos(v));
  for (unsigned int f = 0; f < mesh.fn(); ++f) {
    if (mesh.isFaceDeleted(f)) continue;
    for (unsigned int t = 0; t < mesh.getTriangleNumFace(f); ++t) {
      unsigned int a, b, c;
      mesh.getTriangle(f, t, a, b, c);
      triangles.insert(triangles.end(), {a, b, c});
      normals.push_back(mesh.fNor(f));
    }
  }
  return IO::STL::ioStl::writeStlToFile(name, positions, triangles, normals, binary, cb);
}

bool editMeshNode::load(const std::wstring& name, SYSTEM::callBack* cb) {
  if (hasSuffix(name, L".ply")) return readPlyFromFile(name, cb);
  if (hasSuffix(name, L".stl")) return readStlFromFile(name, cb);
  return readEm2FromFile(name);
}

bool editMeshNode::save(const std::wstring& name, SYSTEM::callBack* cb) const {
  if (hasSuffix(name, L".ply")) return writePlyToFile(name, true, cb);
  if (hasSuffix(name, L".stl")) return writeStlToFile(name, true, cb);
  return writeEm2ToFile(name);
}

bool editMeshNode::load(const std::string& name, SYSTEM::callBack* cb) {
  return load(IO::XML::utf8ToWstring(name), cb);
}

bool editMeshNode::save(const std::string& name, SYSTEM::callBack* cb) const {
  return save(IO::XML::utf8ToWstring(name), cb);
}

// Factories

bool editMeshNode::makeMeshFromPolyline(const std::vector<p3>& points) {
  if (points.size() < 3) return false;
  editMesh built;
  std::vector<unsigned int> ids;
  for (const p3& p : points) ids.push_back(built.addVertex(p));
  built.addPolyFace(ids);
  adoptMesh(built);
  return true;
}

bool editMeshNode::makeMeshFromPoints(const std::vector<p3>& points) {
  if (points.empty()) return false;
  editMesh built;
  for (const p3& p : points) built.addVertex(p);
  adoptMesh(built);
  return true;
}

bool editMeshNode::makeMeshFromSelectedVertex(const editMeshNode& src) {
  const editMesh& s = src.mesh;
  std::vector<unsigned int> faces, verts;
  for (unsigned int f = 0; f < s.fn(); ++f) {
    if (s.isFaceDeleted(f)) continue;
    bool all = s.fVNum(f) >= 3;
    for (unsigned int i = 0; all && i < s.fVNum(f); ++i) all = s.isVertSelected(s.fV(f, i));
    if (all) faces.push_back(f);
  }
  for (unsigned int v = 0; v < s.vn(); ++v)
    if (!s.isVertDeleted(v) && s.isVertSelected(v)) verts.push_back(v);
  if (verts.empty()) return false;
  editMesh built;
  if (!s.subset(&built, faces, verts)) return false;
  adoptMesh(built);
  return true;
}

bool editMeshNode::makeMeshFromAxisAlignedBox3f(const p3& low, const p3& high) {
  if (!(low.x < high.x && low.y < high.y && low.z < high.z)) return false;
  editMesh built;
  built.makeCube();
  const p3 half = (high - low) * 0.5f, centre = (high + low) * 0.5f;
  for (unsigned int v = 0; v < built.vn(); ++v) {
    const p3 p = built.vPos(v);
    built.vPos(v) = p3(centre.x + p.x * half.x, centre.y + p.y * half.y, centre.z + p.z * half.z);
  }
  adoptMesh(built);
  return true;
}

// Cleaning and measures

unsigned int editMeshNode::removeDegenerateFace() {
  unsigned int removed = 0;
  for (unsigned int f = 0; f < mesh.fn(); ++f) {
    if (mesh.isFaceDeleted(f)) continue;
    bool degenerate = mesh.fVNum(f) < 3;
    for (unsigned int i = 0; !degenerate && i < mesh.fVNum(f); ++i)
      for (unsigned int j = i + 1; !degenerate && j < mesh.fVNum(f); ++j)
        degenerate = mesh.fV(f, i) == mesh.fV(f, j);
    if (!degenerate) continue;
    if (mesh.isFaceSelected(f)) mesh.deselectFace(f);
    mesh.deleteFace(f);
    ++removed;
  }
  if (removed) {
    editMesh built = mesh;
    adoptMesh(built);
  }
  return removed;
}

unsigned int editMeshNode::removeIsolatePieces(unsigned int minFaces, SYSTEM::callBack* cb) {
  if (cb) cb->setValue(1.f);
  if (!mesh.isEVEFValid()) {
    mesh.computeEdges(true);
    mesh.computeVE();
  }
  // Pieces by a flood over shared edges.
  std::vector<unsigned int> piece(mesh.fn(), ~0u), sizes, stack;
  for (unsigned int seed = 0; seed < mesh.fn(); ++seed) {
    if (mesh.isFaceDeleted(seed) || piece[seed] != ~0u) continue;
    const unsigned int id = unsigned(sizes.size());
    sizes.push_back(0);
    piece[seed] = id;
    stack.assign(1, seed);
    while (!stack.empty()) {
      const unsigned int f = stack.back();
      stack.pop_back();
      ++sizes[id];
      for (unsigned int i = 0; i < mesh.fVNum(f); ++i) {
        const unsigned int e =
            mesh.findSharedEdgeFromVertices(mesh.fV(f, i), mesh.fV(f, (i + 1) % mesh.fVNum(f)));
        if (e == mesh.getMaxValue()) continue;
        for (unsigned int k = 0; k < mesh.eFNum(e); ++k) {
          const unsigned int g = mesh.eF(e, k);
          if (g < mesh.fn() && !mesh.isFaceDeleted(g) && piece[g] == ~0u) {
            piece[g] = id;
            stack.push_back(g);
          }
        }
      }
    }
  }
  unsigned int removed = 0;
  for (unsigned int f = 0; f < mesh.fn(); ++f) {
    if (piece[f] == ~0u || sizes[piece[f]] >= minFaces) continue;
    if (mesh.isFaceSelected(f)) mesh.deselectFace(f);
    mesh.deleteFace(f);
    ++removed;
  }
  if (removed) {
    editMesh built;
    std::vector<unsigned int> live;
    for (unsigned int f = 0; f < mesh.fn(); ++f)
      if (!mesh.isFaceDeleted(f)) live.push_back(f);
    mesh.subset(&built, live);
    adoptMesh(built);
  }
  if (cb) cb->setValue(100.f);
  return removed;
}

unsigned int editMeshNode::decimate(unsigned int targetFaces, SYSTEM::callBack* cb) {
  POSTPROCESSING::triMesh work;
  std::vector<meshInterface*> parts{static_cast<meshInterfaceDLL*>(this)};
  work.buildFrom(parts);
  const unsigned int removed = work.decimate(targetFaces, cb);
  editMesh built;
  editMeshInterface target(built);
  work.copyTo(target);
  adoptMesh(built);
  return removed;
}

bool editMeshNode::holeFilling(unsigned int maxSize, bool triangulateOnly, SYSTEM::callBack* cb) {
  editMesh built;
  editMeshInterface target(built);
  const meshInterface& source = *this;
  if (!ALGO::computeHoleFilling(source, maxSize, target, triangulateOnly, cb)) return false;
  adoptMesh(built);
  return true;
}

void editMeshNode::laplacianSmoothing(unsigned int iterations, bool smoothBorder,
                                      SYSTEM::callBack* cb) {
  ALGO::SMOOTHING::computeLaplacianSmooth(mesh, iterations, smoothBorder, cb);
  mesh.computeNormalizedNormals();
  mesh.updateBBox();
  invalidateRenderData();
}

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
