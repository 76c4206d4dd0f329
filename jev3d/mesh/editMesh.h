#pragma once

#include <cassert>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/point2.h"
#include "jev3d/math/point3.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {

// Built by the spatial index; the kernel only owns and releases them.
template <class T>
class aabbtreeEditMeshFaceWrap;
template <class T>
class aabbtreeEditMeshVertWrap;
// Render-side vertex caches; the renderer owns and discards them.
class renderChunk;

// Bits of vFlag. Selected and deleted sit the other way round from edges and faces.
enum class VERT_STATE_T : unsigned char {
  MARK = 0x01,
  SELECTED = 0x02,
  DELETED = 0x04,
  MARK_HIGH = 0x80,
};
// Bits of eFlag.
enum class EDGE_STATE_T : unsigned char {
  MARK = 0x01,
  DELETED = 0x02,
  SELECTED = 0x04,
  PINNED = 0x08,
  MARK_HIGH = 0x80,
};
// Bits of fFlag. The marks belong to one running operation each and are cleared by it.
enum class FACE_STATE_T : unsigned char {
  MARK = 0x01,
  DELETED = 0x02,
  SELECTED = 0x04,
  MARK_10 = 0x10,
  MARK_40 = 0x40,
  MARK_HIGH = 0x80,
};

enum MESH_COLOR_DISPLAY_STATE : unsigned int {
  MESH_COLOR_NONE = 0,
  MESH_COLOR_VERTEX = 1,
  MESH_COLOR_FACE = 2,
};

// A polygon mesh held as flat stores of plain records with index adjacency:
//   V, E, F     vertices, edges, faces;
//   FV          the corners of each face (F[f].fvBase, fvNum);
//   EF          the faces around each edge (packed efBase/efNum in the edge);
//   VE          the edges around each vertex (V[v].veBase, veNum).
// Edits flag elements deleted instead of removing them; compaction squeezes them out.
// EF and VE are derived: rebuilt in bulk by computeEVEF then computeVE, and marked
// stale in between. Ids are unsigned int; maxValue (16000000 by default) is "none".
//
// Walking the live faces and their corners:
//   for (unsigned f = 0; f < m.fn(); ++f) {
//     if (m.isFaceDeleted(f)) continue;
//     for (unsigned i = 0; i < m.fVNum(f); ++i) use(m.fV(f, i));
//   }
// After an edit, checkInvariants() returns "" or the list of what is inconsistent.
class editMesh {
 public:
  // 40 bytes: normal, position, one colour per vertex colour layer, and the VE range.
  struct vert {
    MATH::point3<float> normal;
    MATH::point3<float> pos;
    CORE::color col[2];
    uint32_t veBase = 0;
    uint32_t veNum = 0;
  };

  // Two ends and the EF range packed in one word: efBase in the low 26 bits, efNum in the
  // high 6. At most 63 faces on an edge; a 64th wraps efNum to 0.
  struct edge {
    uint32_t v[2] = {0, 0};
    uint32_t efBase : 26;
    uint32_t efNum : 6;
    edge() : efBase(0), efNum(0) {}
    edge(uint32_t a, uint32_t b) : v{a, b}, efBase(0), efNum(0) {}
  };

  struct face {
    MATH::point3<float> normal;
    uint32_t fvBase = 0;
    uint32_t fvNum = 0;
    uint16_t chunkId = 0;
    uint16_t spare = 0;
  };

  // One face on an edge: the face id in the low 26 bits, and in the high 6 the corner
  // index of the second end of the walk along the edge, (corner + 1) % fvNum.
  struct edgeFaceRecord {
    uint32_t faceId : 26;
    uint32_t corner : 6;
    edgeFaceRecord() : faceId(0), corner(0) {}
    edgeFaceRecord(uint32_t f, uint32_t c) : faceId(f), corner(c) {}
    uint32_t word() const { return faceId | uint32_t(corner) << 26; }
  };

  // One face corner.
  struct faceWEdgeRecord {
    uint32_t faceId;
    uint32_t vertId;
    uint32_t user;  // 0 from the face makers; free for an operation's own use
    uint16_t localIndex;
    uint16_t zero;
  };

  static constexpr uint32_t EF_LIMIT = 1u << 26;  // EF entries and face ids
  static constexpr uint32_t MAX_FACES_ON_EDGE = 63;

  editMesh() = default;
  // Deep copies; spatial trees and render chunks are not carried over.
  editMesh(const editMesh&) = default;
  editMesh& operator=(const editMesh&) = default;
  virtual ~editMesh() = default;

  virtual unsigned int getMaxValue() const { return maxValue; }
  virtual unsigned int getChunkVertexLimit() const { return chunkVertexLimit; }
  void setMaxValue(unsigned int v) { maxValue = v; }

  // Counts (array sizes, deleted elements included)
  unsigned int vn() const { return unsigned(vStore.size()); }
  unsigned int en() const { return unsigned(eStore.size()); }
  unsigned int fn() const { return unsigned(fStore.size()); }
  unsigned int fvn() const { return unsigned(fvStore.size()); }
  unsigned int ven() const { return unsigned(veStore.size()); }
  unsigned int efn() const { return unsigned(efStore.size()); }
  unsigned int uvn() const { return unsigned(uvStore.size()); }
  unsigned int getDelVn() const { return delVn; }
  unsigned int getDelEn() const { return delEn; }
  unsigned int getDelFn() const { return delFn; }
  unsigned int getDelFvn() const { return delFvn; }
  unsigned int getDelVen() const { return delVen; }
  unsigned int getDelEfn() const { return delEfn; }
  void setDelVn(unsigned int n) { delVn = n; }
  void setDelEn(unsigned int n) { delEn = n; }
  void setDelFn(unsigned int n) { delFn = n; }
  void setDelFvn(unsigned int n) { delFvn = n; }
  void setDelVen(unsigned int n) { delVen = n; }
  void setDelEfn(unsigned int n) { delEfn = n; }

  // Records, unchecked
  vert& V(unsigned int v) { return vStore[v]; }
  const vert& V(unsigned int v) const { return vStore[v]; }
  edge& E(unsigned int e) { return eStore[e]; }
  const edge& E(unsigned int e) const { return eStore[e]; }
  face& F(unsigned int f) { return fStore[f]; }
  const face& F(unsigned int f) const { return fStore[f]; }
  MATH::point3<float>& vPos(unsigned int v) { return vStore[v].pos; }
  const MATH::point3<float>& vPos(unsigned int v) const { return vStore[v].pos; }
  MATH::point3<float>& vNor(unsigned int v) { return vStore[v].normal; }
  const MATH::point3<float>& vNor(unsigned int v) const { return vStore[v].normal; }
  MATH::point3<float>& fNor(unsigned int f) { return fStore[f].normal; }
  const MATH::point3<float>& fNor(unsigned int f) const { return fStore[f].normal; }
  // The colour of the layer vertexColorLayer selects.
  CORE::color& vCol(unsigned int v) { return vStore[v].col[vertexColorLayer ? 1 : 0]; }
  const CORE::color& vCol(unsigned int v) const { return vStore[v].col[vertexColorLayer ? 1 : 0]; }
  // Per-face and per-edge colours; sized by resizeFaceColorData / resizeEdgeColorData.
  CORE::color& fCol(unsigned int f) { return faceColors[f]; }
  CORE::color& eCol(unsigned int e) { return edgeColors[e]; }
  void resizeFaceColorData(unsigned int n) { faceColors.resize(n, faceColor); }
  void resizeEdgeColorData(unsigned int n) { edgeColors.resize(n, edgeColor); }
  std::vector<MATH::point2<float>>& UV() { return uvStore; }

  // Adjacency, unchecked
  unsigned int fV(unsigned int f, unsigned int i) const {
    return fvStore[fStore[f].fvBase + i].vertId;
  }
  // Index in FV of corner i of f.
  unsigned int f2vi(unsigned int f, unsigned int i) const { return fStore[f].fvBase + i; }
  unsigned int fVNum(unsigned int f) const { return fStore[f].fvNum; }
  faceWEdgeRecord& F2W(unsigned int f, unsigned int i) { return fvStore[fStore[f].fvBase + i]; }
  const faceWEdgeRecord& F2W(unsigned int f, unsigned int i) const {
    return fvStore[fStore[f].fvBase + i];
  }
  unsigned int F2FVBASE(unsigned int f) const { return fStore[f].fvBase; }
  const MATH::point3<float>& F2VPOS(unsigned int f, unsigned int i) const {
    return vStore[fV(f, i)].pos;
  }
  unsigned int FV(unsigned int k) const { return fvStore[k].vertId; }
  faceWEdgeRecord& FW(unsigned int k) { return fvStore[k]; }
  const faceWEdgeRecord& FW(unsigned int k) const { return fvStore[k]; }

  unsigned int eV(unsigned int e, unsigned int i) const { return eStore[e].v[i]; }
  static constexpr unsigned int E2VNUM(unsigned int = 0) { return 2; }
  unsigned int eF(unsigned int e, unsigned int i) const {
    return efStore[eStore[e].efBase + i].faceId;
  }
  unsigned int eFNum(unsigned int e) const { return eStore[e].efNum; }
  edgeFaceRecord& E2F(unsigned int e, unsigned int i) { return efStore[eStore[e].efBase + i]; }
  const edgeFaceRecord& E2F(unsigned int e, unsigned int i) const {
    return efStore[eStore[e].efBase + i];
  }
  unsigned int E2EFBASE(unsigned int e) const { return eStore[e].efBase; }
  edgeFaceRecord& EF(unsigned int k) { return efStore[k]; }
  const edgeFaceRecord& EF(unsigned int k) const { return efStore[k]; }

  unsigned int vE(unsigned int v, unsigned int i) const { return veStore[vStore[v].veBase + i]; }
  unsigned int vENum(unsigned int v) const { return vStore[v].veNum; }
  unsigned int V2VEBASE(unsigned int v) const { return vStore[v].veBase; }
  unsigned int& VE(unsigned int k) { return veStore[k]; }
  unsigned int VE(unsigned int k) const { return veStore[k]; }

  // Copy a face's corners, an edge's face ids or a vertex's edges into out (room for
  // the whole list); the three-argument forms read entry i.
  void getFV(unsigned int f, unsigned int* out) const;
  void getFV(unsigned int f, unsigned int i, unsigned int& v) const { v = fV(f, i); }
  void getEF(unsigned int e, unsigned int* out) const;
  void getEF(unsigned int e, unsigned int i, unsigned int& f) const { f = eF(e, i); }
  void getVE(unsigned int v, unsigned int* out) const;
  void getVE(unsigned int v, unsigned int i, unsigned int& e) const { e = vE(v, i); }

  // Triangles of the fan from corner 0: fvNum - 2, or 0 below 3 corners.
  unsigned int getTriangleNumFace(unsigned int f) const {
    const unsigned int n = fStore[f].fvNum;
    return n < 2 ? 0 : n - 2;
  }
  // Triangle t of that fan: corners 0, t + 1, t + 2.
  void getTriangle(unsigned int f, unsigned int t, unsigned int& a, unsigned int& b,
                   unsigned int& c) const {
    a = fV(f, 0), b = fV(f, t + 1), c = fV(f, t + 2);
  }

  // Checked validity: in range and not deleted
  bool isVertexValid(unsigned int v) const {
    return v < vn() && v < vFlag.size() && !isVertDeleted(v);
  }
  bool isEdgeValid(unsigned int e) const {
    return e < en() && e < eFlag.size() && !edgeIsDeleted(e);
  }
  bool isFaceValid(unsigned int f) const {
    return f < fn() && f < fFlag.size() && !isFaceDeleted(f);
  }

  // Flags: the enum forms test or change one bit, the byte forms a whole mask
  void setVertFlag(unsigned int v, VERT_STATE_T b) { vFlag[v] |= uint8_t(b); }
  void unsetVertFlag(unsigned int v, VERT_STATE_T b) { vFlag[v] &= uint8_t(~uint8_t(b)); }
  bool getVertFlag(unsigned int v, VERT_STATE_T b) const { return vFlag[v] & uint8_t(b); }
  void setVertFlag(unsigned int v, unsigned char mask) { vFlag[v] |= mask; }
  void unsetVertFlag(unsigned int v, unsigned char mask) { vFlag[v] &= uint8_t(~mask); }
  unsigned char getVertFlag(unsigned int v) const { return vFlag[v]; }
  void setEdgeFlag(unsigned int e, EDGE_STATE_T b) { eFlag[e] |= uint8_t(b); }
  void unsetEdgeFlag(unsigned int e, EDGE_STATE_T b) { eFlag[e] &= uint8_t(~uint8_t(b)); }
  bool getEdgeFlag(unsigned int e, EDGE_STATE_T b) const { return eFlag[e] & uint8_t(b); }
  void setEdgeFlag(unsigned int e, unsigned char mask) { eFlag[e] |= mask; }
  void unsetEdgeFlag(unsigned int e, unsigned char mask) { eFlag[e] &= uint8_t(~mask); }
  unsigned char getEdgeFlag(unsigned int e) const { return eFlag[e]; }
  void setFaceFlag(unsigned int f, FACE_STATE_T b) { fFlag[f] |= uint8_t(b); }
  void unsetFaceFlag(unsigned int f, FACE_STATE_T b) { fFlag[f] &= uint8_t(~uint8_t(b)); }
  bool getFaceFlag(unsigned int f, FACE_STATE_T b) const { return fFlag[f] & uint8_t(b); }
  void setFaceFlag(unsigned int f, unsigned char mask) { fFlag[f] |= mask; }
  void unsetFaceFlag(unsigned int f, unsigned char mask) { fFlag[f] &= uint8_t(~mask); }
  unsigned char getFaceFlag(unsigned int f) const { return fFlag[f]; }

  bool isVertDeleted(unsigned int v) const { return vFlag[v] & uint8_t(VERT_STATE_T::DELETED); }
  bool edgeIsDeleted(unsigned int e) const { return eFlag[e] & uint8_t(EDGE_STATE_T::DELETED); }
  bool isFaceDeleted(unsigned int f) const { return fFlag[f] & uint8_t(FACE_STATE_T::DELETED); }
  bool isVertSelected(unsigned int v) const { return vFlag[v] & uint8_t(VERT_STATE_T::SELECTED); }
  bool isEdgeSelected(unsigned int e) const { return eFlag[e] & uint8_t(EDGE_STATE_T::SELECTED); }
  bool isFaceSelected(unsigned int f) const { return fFlag[f] & uint8_t(FACE_STATE_T::SELECTED); }
  void pinEdge(unsigned int e) { setEdgeFlag(e, EDGE_STATE_T::PINNED); }
  void unpinEdge(unsigned int e) { unsetEdgeFlag(e, EDGE_STATE_T::PINNED); }
  bool isEdgePinned(unsigned int e) const { return getEdgeFlag(e, EDGE_STATE_T::PINNED); }
  // Fewer than two faces: a border (or wire) edge.
  bool isEdgeBorder(unsigned int e) const { return eStore[e].efNum < 2; }
  bool isAWireEdge(unsigned int e) const { return eStore[e].efNum == 0; }

  std::vector<unsigned char>& vertFlags() { return vFlag; }
  std::vector<unsigned char>& edgeFlags() { return eFlag; }
  std::vector<unsigned char>& faceFlags() { return fFlag; }

  // Construction. Adds grow the flag stores with the element; the new element is
  // neither selected nor deleted. A vertex's VE range means nothing until computeVE.
  unsigned int addVertex();
  unsigned int addVertex(const MATH::point3<float>& pos);
  unsigned int addVertex(const MATH::point3<float>& pos, const MATH::point3<float>& normal);
  unsigned int addVertex(float x, float y, float z);
  unsigned int addVertex(const vert& v);
  // An edge with no faces, or a wire edge a-b as given.
  unsigned int addEdge();
  unsigned int addEdge(unsigned int a, unsigned int b);
  // An edge a-b on faces f0 and f1 (efNum 2), its two EF records appended at the end of
  // EF: f0 with the corner of a in f0, f1 with the corner of b in f1 (maxValue, truncated
  // to 6 bits, where the vertex is not in the face).
  unsigned int addEdge(unsigned int a, unsigned int b, unsigned int f0, unsigned int f1);
  // A face with no corners, or one with the n corners of ids appended to FV. reserve asks
  // to grow FV first by exactly what is needed.
  unsigned int addFace();
  unsigned int addFace(const unsigned int* ids, unsigned int n, bool reserve = false);
  unsigned int addTriFace(unsigned int a, unsigned int b, unsigned int c, bool reserve = false);
  unsigned int addQuadFace(unsigned int a, unsigned int b, unsigned int c, unsigned int d,
                           bool reserve = false);
  // Ignored for an empty list, returning the last face id (maxValue when there is none).
  unsigned int addPolyFace(const std::vector<unsigned int>& ids, bool reserve = false);
  // Point face f at new corners appended to FV; its old corners stay behind as dead
  // entries counted in delFvn.
  void makeTriFace(unsigned int f, unsigned int a, unsigned int b, unsigned int c);
  void makeQuadFace(unsigned int f, unsigned int a, unsigned int b, unsigned int c, unsigned int d);
  void makePolyFace(unsigned int f, const std::vector<unsigned int>& ids);
  // Replace the corners of f: in place when they fit in its old range, else appended.
  void modifyFace(unsigned int f, const unsigned int* ids, unsigned int n, bool reserve = false);
  // A new face with a copy of f's corners and normal; returns its id.
  unsigned int cloneFace(unsigned int f, bool reserve = false);

  // Store sizing. allocate reserves n; expand reserves size + n and returns the old
  // size; resize sets the size.
  void allocateVertexArray(unsigned int n) { vStore.reserve(n); }
  void allocateEdgeArray(unsigned int n) { eStore.reserve(n); }
  void allocateFaceArray(unsigned int n) { fStore.reserve(n); }
  void allocateFVArray(unsigned int n) { fvStore.reserve(n); }
  void allocateVEArray(unsigned int n) { veStore.reserve(n); }
  void allocateEFArray(unsigned int n) { efStore.reserve(n); }
  unsigned int expandVertexArray(unsigned int n) { return expandStore(vStore, n); }
  unsigned int expandEdgeArray(unsigned int n) { return expandStore(eStore, n); }
  unsigned int expandFaceArray(unsigned int n) { return expandStore(fStore, n); }
  unsigned int expandFVArray(unsigned int n) { return expandStore(fvStore, n); }
  unsigned int expandVEArray(unsigned int n) { return expandStore(veStore, n); }
  unsigned int expandEFArray(unsigned int n) { return expandStore(efStore, n); }
  void resizeVertexData(unsigned int n) { vStore.resize(n); }
  void resizeEdgeData(unsigned int n) { eStore.resize(n); }
  void resizeFaceData(unsigned int n) { fStore.resize(n); }
  void resizeFVData(unsigned int n) { fvStore.resize(n); }
  void resizeVEData(unsigned int n) { veStore.resize(n); }
  void resizeEFData(unsigned int n) { efStore.resize(n); }
  // Copy count records starting at first into out (clamped to the store).
  void cloneVertexData(unsigned int first, unsigned int count, std::vector<vert>& out) const;
  void cloneEdgeData(unsigned int first, unsigned int count, std::vector<edge>& out) const;
  void cloneFaceData(unsigned int first, unsigned int count, std::vector<face>& out) const;
  void cloneFVData(unsigned int first, unsigned int count, std::vector<faceWEdgeRecord>& out) const;

  // Direct access to the stores, for bulk builders (file readers, topology operations).
  std::vector<vert>& vertStore() { return vStore; }
  std::vector<edge>& edgeStore() { return eStore; }
  std::vector<face>& faceStore() { return fStore; }
  std::vector<faceWEdgeRecord>& fvRecords() { return fvStore; }
  std::vector<edgeFaceRecord>& efRecords() { return efStore; }
  std::vector<unsigned int>& veRecords() { return veStore; }
  const std::vector<vert>& vertStore() const { return vStore; }
  const std::vector<edge>& edgeStore() const { return eStore; }
  const std::vector<face>& faceStore() const { return fStore; }
  const std::vector<faceWEdgeRecord>& fvRecords() const { return fvStore; }
  const std::vector<edgeFaceRecord>& efRecords() const { return efStore; }
  const std::vector<unsigned int>& veRecords() const { return veStore; }

  // Size the three flag stores (or one) to the element counts, new bytes 0; a store
  // longer than its elements loses its tail.
  void checkMeshState();
  void computeVertexFlags() { vFlag.resize(vn(), 0); }
  void computeEdgeFlags() { eFlag.resize(en(), 0); }
  void computeFaceFlags() { fFlag.resize(fn(), 0); }

  // release true frees the memory; false sets the sizes to 0 and keeps capacity.
  void clearVertexBuffers(bool release);
  void clearEdgeBuffers(bool release);
  void clearFaceBuffers(bool release);
  void clearAllFlags(bool release);
  // All of the above, plus the aux stores; hasVC goes back to false.
  void clear(bool release);
  // Release every store and zero every counter; trees are destroyed.
  void nullify();

  // Bulk rebuilds
  // Edges from the live faces, edge ids in order of first appearance (face order, then
  // corner order), smaller vertex id first; EF filled in the same order. Edge flags are
  // reset (selection, pins and deletion marks are lost) and VE is marked stale. Nothing
  // happens without faces or vertices. Returns false, leaving no edges, when the mesh
  // exceeds the packing limits (2^26 face ids or EF entries). Does not touch evefInvalid.
  bool computeEVEF();
  // computeEVEF reporting progress: progress grows by 100 / steps per step (truncated);
  // cb, when set, receives it. Clears evefInvalid at the end.
  bool computeEdgesOpt(int& progress, SYSTEM::callBack* cb = nullptr);
  // Rebuild edges; with keepWire, edges without faces survive, appended after the rest.
  // Clears evefInvalid.
  bool computeEdges(bool keepWire);
  // VE from the edges, in edge order; with skipDeleted, deleted edges are left out.
  // Clears veInvalid.
  void computeVE(bool skipDeleted = false);
  // Append each listed vertex's VE range, old entries followed by lists[i], at the end of
  // VE; the old range becomes dead space counted in delVen.
  void addEdgesToVE(const std::vector<unsigned int>& vertices,
                    const std::vector<std::vector<unsigned int>>& lists);
  // Remove face f from the EF list of edge e (nothing for a deleted edge).
  void removeIdFromEF(unsigned int f, unsigned int e);
  unsigned int countWireEdges() const;
  void getWireEdges(std::vector<edge>& out) const;
  // Append edges with no faces (flags 0).
  void addWireEdges(const std::vector<edge>& wires);

  // Compaction. map receives old id -> new id, 0xFFFFFFFF for dropped elements.
  // Deleted counters stay as they are: reset them with setDelVn and kin.
  // Vertices: FV of live faces and, with valid edges, the ends of live edges rewritten;
  // VE needs no change. Deleted edges keep their stale vertex ids.
  bool compactVertices(std::vector<unsigned int>& map);
  bool compactVertices();
  // Faces: EF face ids rewritten when edges are valid; FV itself is not compacted.
  bool compactFaces(std::vector<unsigned int>& map);
  bool compactFaces();
  // Edges: false unless edges exist and are valid. Only the first VE entry of each vertex
  // is renamed and the VE flag is left as it was: VE cannot be trusted until the caller
  // rebuilds it with computeVE.
  bool compactEdges(std::vector<unsigned int>& map);
  bool compactEdges();

  // Deletion. Elements keep their records and ids; flags and counters change.
  void deleteFace(unsigned int f);
  // Also removes f from the EF list of each of its edges (faces of 3 or more corners).
  void deleteFaceUpdatingEdges(unsigned int f);
  // Deletes the edge and, updating edges, each live face on it.
  void deleteEdge(unsigned int e);
  // Flags the edge and its faces without touching EF; keepFaces stops after the edge.
  void deleteEdgeGuarded(unsigned int e, bool keepFaces = false);
  // Deletes the vertex and each edge in its VE list (deleteEdge / deleteEdgeGuarded).
  void deleteVertex(unsigned int v);
  void deleteVertexGuarded(unsigned int v);
  // Delete all (or the selected) faces; delFvn grows but delFn does not (kept on
  // purpose). All selection is cleared. rebuild rebuilds edges keeping wire edges.
  void deleteFaces(bool selectedOnly, bool rebuild);
  // The same, removing each face from the EF lists of its edges; delFn grows.
  void deleteFacesUpdatingEdges(bool selectedOnly, bool rebuild);
  void deleteEdges(bool selectedOnly);
  void deleteWireEdges();
  // Also edges whose faces are all deleted; flags only.
  void deleteWireEdgesGuarded();
  // Vertices with veNum 0, and vertices whose edges are all deleted; both need VE.
  unsigned int deleteIsolatedVertices();
  unsigned int deleteUnreferencedVertices();

  // Normals
  // Unnormalised (1 - 0) x (2 - 1) of the first three corners of each live face; a face
  // with a corner out of range or fewer than 3 corners keeps its normal.
  void computeFaceNormals();
  // Sum of the stored face normals at each corner.
  void computeVertexNormals();
  // computeVertexNormals divided by the number of faces at each vertex.
  void computeWeightedVertexNormals();
  void computeNormalizedFaceNormals();
  void computeNormalizedVertexNormals();
  void computeNormalizedNormals();
  void computeNormalizedFaceNormal(unsigned int f);
  // From the faces around v through VE and EF.
  void computeNormalizedVertexNormal(unsigned int v);
  void flipNormals();
  // Unit length through the fast inverse square root (0x5F3759D5) refined by two Newton
  // steps in double; a zero vector stays zero.
  static void normalizeFast(MATH::point3<float>& p) {
    const double len2 = double(p.x) * p.x + double(p.y) * p.y + double(p.z) * p.z;
    if (len2 == 0.0) return;
    double y;
    if (len2 >= double(std::numeric_limits<float>::min()) &&
        len2 <= double(std::numeric_limits<float>::max())) {
      const float f = float(len2);
      int32_t bits;
      std::memcpy(&bits, &f, 4);
      bits = 0x5F3759D5 - (bits >> 1);
      float guess;
      std::memcpy(&guess, &bits, 4);
      y = guess;
      const double half = 0.5 * len2;
      y = y * (1.5 - half * y * y);
      y = y * (1.5 - half * y * y);
    } else {
      // The bit trick needs a normal float; tiny and huge vectors take the exact way.
      y = 1.0 / std::sqrt(len2);
    }
    p.x = float(p.x * y), p.y = float(p.y * y), p.z = float(p.z * y);
  }

  // Whole-mesh and selected-vertex motions (editMeshTransform.cpp). Positions are row
  // vectors, p · m; normals go through the inverse transpose of m's linear part and are
  // renormalised (a singular m leaves them null). The box and the spatial indexes are
  // marked stale and the selection sums recomputed. The selected forms move the live
  // selected vertices and their normals only; face normals are the caller's to redo.
  void translate(const MATH::point3<float>& d);
  void transform(const MATH::matrix4<float>& m);
  void translateSelectedVertices(const MATH::point3<float>& d);
  void transformSelectedVertices(const MATH::matrix4<float>& m);
  // Reverses the corner order of every live face, so that each faces the other way, and
  // negates face and vertex normals. The EF records are renamed in place, so edge ids,
  // flags and VE stay valid.
  void reverseFaceOrder();
  // Replaces the face flag bytes wholesale (an undo of the selection); a list shorter
  // than the faces leaves 0 bytes at the end, a longer one is cut. The selection counters
  // are the caller's to restore.
  void replaceAllFaceFlags(const std::vector<unsigned char>& flags);
  // The live faces that share a vertex with a listed face (those included), sorted.
  void computeRegionOneRing(const std::vector<unsigned int>& faces,
                            std::vector<unsigned int>& ring) const;
  // Grows the face selection by that ring.
  void selectRegionOneRing();
  // Whether edge e can be collapsed without tearing or pinching the surface: live,
  // two distinct live ends, and the vertices joined to both ends are exactly the third
  // corners of the triangles on e; an interior edge between two border vertices is
  // refused. Needs edges and VE as computeEVEF and computeVE leave them.
  bool canCollapseEdge(unsigned int e) const;
  // Collapses e when canCollapseEdge allows it: its second end joins the first, which
  // moves to pos; triangles on e are deleted, larger faces lose that corner. Edges, EF
  // and VE are left describing the mesh before the call (the edge is only flagged), so
  // collapses before the next computeEVEF / computeVE must touch disjoint faces. Returns
  // false, changing nothing, when refused.
  bool collapseEdge(unsigned int e, const MATH::point3<float>& pos);

  // Selection. Selecting a face or an edge selects its vertices; deselecting one
  // deselects a vertex only when no edge at it has a selected face (needs VE and EF).
  void selectFace(unsigned int f);
  void deselectFace(unsigned int f);
  void selectEdge(unsigned int e);
  void deselectEdge(unsigned int e);
  // Selects every live edge joining vertices a and b, found through a's VE list.
  void selectSharedEdges(unsigned int a, unsigned int b);
  void selectVert(unsigned int v);
  void deselectVert(unsigned int v);
  void selectAllFaces();
  void deselectAllFaces();
  void invertFaceSelection();
  // Clear every selection bit, counter and sum.
  void clearGeomSelectionState();
  unsigned int getSelFn() const { return selFn; }
  unsigned int getSelEn() const { return selEn; }
  unsigned int getSelVn() const { return selVn; }
  unsigned int getSelFvn() const { return selFvn; }
  void setSelFn(unsigned int n) { selFn = n; }
  void setSelEn(unsigned int n) { selEn = n; }
  void setSelVn(unsigned int n) { selVn = n; }
  void setSelFvn(unsigned int n) { selFvn = n; }
  unsigned int getMaxSelFaceSize() const { return maxSelFaceSize; }
  const MATH::point3<float>& getSelVertSum() const { return selVertSum; }
  const MATH::point3<float>& getSelVertNor() const { return selVertNor; }
  // Mean position of the selected vertices; zero with none.
  MATH::point3<float> getSelVertBarycenter() const;
  // Recompute the sums from the selected live vertices after they moved.
  void updateSelVertPosSum();
  void updateSelVertNorSum();
  void updateSelVertPosNorSum();

  // Stale flags
  void invalidateVE() { veInvalid = true; }
  void invalidateEVEF() { evefInvalid = true; }
  void setNeedUpdateEVEF() { evefInvalid = true; }
  bool isVEValid() const { return !veStore.empty() && !veInvalid; }
  bool isEVEFValid() const { return !eStore.empty() && !evefInvalid; }
  bool hasVE() const { return !veStore.empty(); }
  void clearEVEF(bool release);
  void clearVE(bool release);
  bool hasVC() const { return hasVertexColors; }
  void setHasVC(bool b) { hasVertexColors = b; }

  // Render state, read by the render cache
  void hideSelectedFaces();
  void hideUnselectedFaces();
  void showAllFaces();
  void invalidateSelectedVertFlags();
  void invalidateSelectedEdgeFlags();
  void invalidateSelectedFaceFlags();
  void invalidateRenderData();
  // Ask the drawing thread to discard the render chunks (free their device data and
  // build them again) or to delete them, at its next frame; safe from another thread.
  // Nothing is asked while discardGuard reads true.
  void needDiscardRenderChunks() {
    if (!discardGuard.cV()) renderChunksDiscardPending = true;
  }
  void needDeleteRenderChunks() {
    if (!discardGuard.cV()) renderChunksDeletePending = true;
  }
  // Read by needDiscardRenderChunks and needDeleteRenderChunks. Linkable, initially false.
  SYSTEM::fieldBase<bool> discardGuard;
  // While it reads true, the hide calls, deleteFaces and the invalidate...Flags family
  // leave render validity as it is. Linkable, initially false.
  SYSTEM::fieldBase<bool> invalidationGuard;

  // Bounding box over live vertices
  void computeBBox();
  // Also tells the spatial indexes that positions moved.
  void updateBBox() {
    bboxDirty = true;
    ++geometryRevision;
  }
  bool isBBoxDirty() const { return bboxDirty; }
  const MATH::point3<float>& getBBoxMin() const { return bboxMin; }
  const MATH::point3<float>& getBBoxMax() const { return bboxMax; }

  // Lookups, maxValue when nothing is found
  // The edge joining a and b (either order), through a's VE list.
  unsigned int findSharedEdgeFromVertices(unsigned int a, unsigned int b) const;
  // Corner index of v in f.
  unsigned int findCornerInFace(unsigned int f, unsigned int v) const;
  // The edge after e along f's corners, and the one after that (needs VE).
  unsigned int nextEdge(unsigned int f, unsigned int e) const;
  unsigned int nextNextEdge(unsigned int f, unsigned int e) const;
  // The edges of f entering and leaving its corner at v; false when v is not in f.
  bool findEdgePairSharingVertInFace(unsigned int f, unsigned int v, unsigned int& eIn,
                                     unsigned int& eOut) const;
  // The first face of e other than f.
  unsigned int otherFaceOfEdge(unsigned int e, unsigned int f) const;
  // Live faces around v (each once), through VE and EF; the result is kept in the mesh.
  const std::vector<unsigned int>& getAdiacentFaces(unsigned int v);

  // Topology operations (editMeshExtrude.cpp, editMeshCut.cpp, editMeshSubdivide.cpp,
  // editMeshPrimitives.cpp). Face lists name live faces; an empty list means the selected
  // faces, and the forms taking a non-const list fill an empty one with them. Extrusion
  // and extraction leave out faces of fewer than three corners. Unless
  // said otherwise an operation ends by rebuilding edges (edge ids change,
  // edge selection and pins are lost, wire edges are kept), VE and unit normals.

  // Extrudes the faces as one region: each border edge of the region is doubled, the
  // region moves onto copies of its border vertices and a quad wall joins the two
  // loops. Nothing moves; the caller offsets the selected vertices. Edges are patched in
  // place, so edge ids, selection and pins survive; the doubled edges start unpinned. A
  // region covering a closed part has no walls. The faces keep their ids and selection.
  // The selected bit moves from the region's old corners to its new ones directly:
  // selVn and the sums are not touched (they stay right when the region is the face
  // selection) and no normal is computed; the walls' normals are zero until the caller
  // computes them.
  void extrudeRegion();
  void extrudeRegion(std::vector<unsigned int>& faces);
  // The same with every face extruded on its own: each face gets its own walls, even
  // against a neighbour in the list. The selection is recounted and the walls get unit
  // normals.
  void extrudeFaces();
  void extrudeFaces(std::vector<unsigned int>& faces);
  // Each listed edge gets a quad that continues the surface across it, joining the edge
  // to a copy of it on new vertices (shared along a chain of listed edges). The copies
  // coincide with the originals and become the vertex selection.
  void extrudeEdges(const std::vector<unsigned int>& edges);
  // Each listed vertex becomes the apex of a pyramid: a ring of new vertices a third of
  // the way along its edges cuts its corners off the faces around it, and triangles join
  // the ring to the vertex, which keeps its position and selection.
  void extrudeVertices(const std::vector<unsigned int>& verts);
  // Detaches the faces from the rest of the mesh: they move onto copies of their border
  // vertices and become a separate open piece. Edge ids and flags survive as in
  // extrudeRegion; a border edge left without faces is deleted.
  void extractRegion();
  void extractRegion(std::vector<unsigned int>& faces);
  // extractRegion closing both sides: each border loop of the piece gets a polygon cap,
  // and each loop that cut through the mesh closes the hole left behind with another.
  // Returns the number of cap faces made.
  unsigned int extractCappedRegion();
  unsigned int extractCappedRegion(std::vector<unsigned int>& faces);

  // Cuts face f along the diagonal from vertex a to vertex b: f keeps the corners from
  // the lower corner index to the higher in its own FV range, a new face at the end of
  // the store takes the rest (FV grows by fvNum, delFvn by fvNum - 2). Valid edges and VE
  // are patched (the diagonal is a new edge at the end), so flags survive; a selected f
  // leaves both halves selected. Returns the new face, or maxValue when a or b is not a
  // corner of f or the two are neighbours.
  unsigned int splitFace(unsigned int f, unsigned int a, unsigned int b);
  // Cuts the listed faces across their listed edges: vertex vn + i is the midpoint of
  // edges[i] (deleted for an id that names no live edge or repeats one), each listed face
  // is written anew with the midpoints of its sides, and one with exactly two of them is
  // split between them (splitFace) and the edges joining them selected. Faces outside
  // the list keep their corners. Ends with the closing rebuild, so the loop's edge
  // selection goes with it and its vertices stay selected; face selection is kept.
  void loopCut(std::vector<unsigned int>& faces, std::vector<unsigned int>& edges);
  // The loop cut across the ring of quads through edge e (both ways until a face is not
  // a quad, the mesh ends, or the ring closes); the faces where the ring stops are listed
  // too, so they take the midpoint and no crack opens.
  void loopCut(unsigned int e);
  // The same through the edge joining vertices a and b; nothing when there is none.
  void loopCut(unsigned int a, unsigned int b);

  // One Catmull-Clark step over all live faces: each face of k corners becomes k quads,
  // written with makeQuadFace: the first keeps the face's id, the others are new faces
  // at the end; FV keeps the old corners as dead entries (delFvn grows by k). Every
  // border vertex takes 0.75 of itself and 0.125 of each border neighbour. Old vertices
  // keep their ids and move; edge points follow (in edge order), then face points (in
  // face order). Selection is cleared, then the quads of selected faces are selected.
  // keepWire keeps edges without faces. The same holds for the forms below.
  void catmullClarkSubdivideVE(bool keepWire = true, SYSTEM::callBack* cb = nullptr);
  // The step on the selected faces only: vertices on the selection border stay, edge
  // points there are midpoints, and unselected faces on those edges take them as
  // corners.
  void catmullClarkSubdivideSelected(bool keepWire = true, SYSTEM::callBack* cb = nullptr);
  // Catmull-Clark topology without smoothing: edge midpoints and face centroids, the
  // old vertices unmoved.
  void refine(bool keepWire = true, SYSTEM::callBack* cb = nullptr);
  void refineSelected(bool keepWire = true, SYSTEM::callBack* cb = nullptr);
  // Splits each face (or each selected face) by its edge midpoints: a triangle becomes
  // four, a polygon of k corners k corner triangles around the polygon of its midpoints,
  // which is fanned from a centre vertex (centreVertex) or from its first midpoint.
  // Triangles are written with makeTriFace, as the quads of the steps above. Unselected
  // faces on split edges take the midpoints as corners (makePolyFace).
  void midpointTriangulate(bool selectedOnly = false, bool centreVertex = true,
                           SYSTEM::callBack* cb = nullptr);
  // Every live face as the fan of triangles from its corner 0; faces of fewer than 3
  // corners and deleted faces are dropped, so face ids change. Triangles keep their
  // polygon's normal and selection. Edges (wire edges are lost), VE and the box are
  // rebuilt; vertex normals are not.
  void triangulate(SYSTEM::callBack* cb = nullptr);
  // Moves the vertices of this mesh, a catmullClarkSubdivideVE of base, to the points of
  // one step over base's current positions. Nothing happens unless base has valid
  // edges and this mesh has as many vertices as that step makes.
  void updateCatmullClarkFromMesh(const editMesh* base);

  // Adds a mirrored copy of the mesh across the plane through the centroid of face f
  // with normal n (normalised here): every vertex v gets a reflected copy vn + v (normal
  // negated) and every face f a copy fn + f on the copies, running the other way round so
  // that both halves face outward. Copies of deleted elements stay deleted; the copies
  // are not selected. Nothing is welded: vertices on the plane are doubled, and faces in
  // the plane are doubled too (weld and drop them as a separate step when wanted).
  void mirrorMesh(unsigned int f, const MATH::point3<float>& n);
  // The same with the plane through the mean of the listed faces' centroids.
  void mirrorMesh(const std::vector<unsigned int>& faces, const MATH::point3<float>& n);
  // Projects the corners of the listed faces onto the plane through the mean of their
  // centroids with normal n (the mean of their face normals when n is zero), and
  // updates the normals of what moved.
  void flatten(const std::vector<unsigned int>& faces, const MATH::point3<float>& n);
  // Turns the surface into a solid shell: an offset copy, facing the other way, lies
  // thickness behind each vertex along its normal (scaled so that flat faces move by the
  // full thickness), and rims of rimSegments rows of quads join them along open borders.
  // centered splits the thickness to both sides; selectNew selects the offset faces.
  void makeSolid(float thickness, unsigned int rimSegments = 1, bool centered = false,
                 bool selectNew = false);
  // The same with a thickness per vertex (missing entries count as 0).
  void makeSolid(const std::vector<float>& thickness, unsigned int rimSegments = 1,
                 bool centered = false, bool selectNew = false);

  // Replaces target's content with a copy of the listed live faces and their vertices,
  // renumbered in order of first use; the vertex list adds vertices used by no listed
  // face. Edges, VE and normals are built. False for a null target or this mesh.
  bool subset(editMesh* target, const std::vector<unsigned int>& faces) const;
  bool subset(editMesh* target, const std::vector<unsigned int>& faces,
              const std::vector<unsigned int>& verts) const;
  // Makes this mesh a deep copy of src (spatial trees and render chunks excepted).
  // False for a null src or this mesh.
  bool clone(const editMesh* src);

  // Primitive makers replace the mesh's elements, centred on the origin, wound outward.
  // They size the stores in place rather than clearing the mesh: capacity, the aux
  // stores, UV (except for the dodecahedron) and the vertex colour flag stay. makeCube
  // reuses the first 8 vertex and 6 face records and writes its quads with makeQuadFace,
  // so FV keeps what it held and delFvn counts the corners the reused faces had; the
  // others start from empty vertex, face and corner stores.
  // Cube [-1, 1]^3; tetrahedron, octahedron and dodecahedron on the unit sphere.
  void makeCube();
  void makeTetrahedron();
  void makeOctahedron();
  void makeDodecahedron();
  // Square [-1, 1]^2 at z = 0 facing +z, or the quad p0 p1 p2 p3.
  void makeQuad();
  void makeQuad(const MATH::point3<float>& p0, const MATH::point3<float>& p1,
                const MATH::point3<float>& p2, const MATH::point3<float>& p3);
  // Closed cone along z from z = -height / 2 (radius) to z = height / 2 (topRadius, an
  // apex when 0), polygon caps; at least 3 segments.
  void makeCone(unsigned int segments, float radius, float height, float topRadius = 0.f);
  // Radius 1, height 2, apex on top; the side in stacks rows, the base in capRings rings
  // of quads around a fan of triangles.
  void makeCone(int segments, int stacks, int capRings);
  // Torus around z: rings around the axis, segments around the tube, major and minor
  // radius. triangles splits each quad; append keeps what the mesh held; selectNew
  // selects the torus's faces.
  void makeTorus(unsigned int rings, unsigned int segments, float majorRadius, float minorRadius);
  void makeTorus(bool triangles, bool append, bool selectNew, unsigned int rings,
                 unsigned int segments, float majorRadius, float minorRadius);
  // The torus around the axis through centre.
  void makeTorus(const MATH::point3<float>& centre, const MATH::point3<float>& axis,
                 unsigned int rings, unsigned int segments, float majorRadius, float minorRadius);
  // Closed cylinder of radius 1 from z = -1 to 1: segments around, stacks rows, polygon
  // caps.
  void makeCylinder(unsigned int segments, unsigned int stacks);
  // Unit sphere: rings latitude bands, segments around, triangles at the poles.
  void makeSphere(unsigned int rings, unsigned int segments);
  // Circle of segments vertices around centre in the plane of normal: one polygon facing
  // along normal when filled, else a loop of wire edges.
  void makeCircle(const MATH::point3<float>& centre, const MATH::point3<float>& normal,
                  float radius, unsigned int segments, bool filled = true);

  // Aux stores: named per-vertex (or any) arrays owned by the mesh
  unsigned int addAuxFloatData(const std::string& name);
  unsigned int addAuxUintData(const std::string& name);
  unsigned int addAuxUcharData(const std::string& name);
  std::vector<float>& auxFloatData(unsigned int i) { return auxFloat.items[i]->data; }
  std::vector<unsigned int>& auxUintData(unsigned int i) { return auxUint.items[i]->data; }
  std::vector<unsigned char>& auxUcharData(unsigned int i) { return auxUchar.items[i]->data; }
  const std::string& auxFloatDataName(unsigned int i) const { return auxFloat.items[i]->name; }
  const std::string& auxUintDataName(unsigned int i) const { return auxUint.items[i]->name; }
  const std::string& auxUcharDataName(unsigned int i) const { return auxUchar.items[i]->name; }
  unsigned int auxFloatDataNum() const { return unsigned(auxFloat.items.size()); }
  unsigned int auxUintDataNum() const { return unsigned(auxUint.items.size()); }
  unsigned int auxUcharDataNum() const { return unsigned(auxUchar.items.size()); }

  // Writes the live faces of three or more corners as polygons, with the live vertices
  // renumbered in order, their normals, and their colours when the mesh has them; binary
  // (big-endian) or ASCII PLY. False when the file cannot be written.
  bool saveMeshToPly(const std::wstring& name, bool binary = true,
                     SYSTEM::callBack* cb = nullptr) const;
  bool saveMeshToPly(const std::string& name, bool binary = true,
                     SYSTEM::callBack* cb = nullptr) const;

  // Diagnostics
  // Counts of every store, one per line.
  void printStats(std::ostream& out) const;
  void printStats() const;
  // The invariants of a finished edit. Returns "" when they hold, else one line per
  // violation (at most maxReports): flag stores as long as the elements; every live face
  // has fvNum live corners inside FV; every live edge has live ends, an EF range inside
  // EF whose records name the side they sit on, and the live faces on its EF lists are
  // exactly the live faces using each side; with VE valid, each live vertex's VE lists
  // edges at it and every live edge is listed at both ends; selection counters equal the
  // bits of live elements and selVertSum the sum of their positions.
  std::string checkInvariants(unsigned int maxReports = 20) const;
  // Bytes held by the stores (capacity), for memory reports.
  size_t memoryUsage() const;

  // Spatial index (built by the spatial-index code)
  // Build the face index (live faces, polygons as fans from corner 0) or the vertex index
  // (live vertices), destroying the old one first. leafSize is the most triangles or
  // vertices in a leaf, clamped to [1, 16].
  void computeFABBTree(unsigned int leafSize);
  void computeVABBTree(unsigned int leafSize);
  // True when both indexes are built and still match the mesh.
  bool isSpatialIndexingValid() const;
  // The index, or null when it was never built or has gone stale: faces or vertices
  // added, deleted or compacted since, or positions moved and reported by updateBBox.
  const aabbtreeEditMeshFaceWrap<float>* getFABBTree() const;
  const aabbtreeEditMeshVertWrap<float>* getVABBTree() const;

  // Colours (as u32 words, red lowest)
  CORE::color faceColor = CORE::color::fromU32(0xFFFFFFFFu);
  CORE::color faceSelectionColor = CORE::color::fromU32(0x4679ACE4u);
  CORE::color edgeColor = CORE::color::fromU32(0xFF7FFF7Fu);
  CORE::color edgeSelectionColor = CORE::color::fromU32(0xFFFF7FFFu);
  CORE::color vertexColor = CORE::color::fromU32(0xFFFF0000u);
  CORE::color vertexSelectionColor = CORE::color::fromU32(0xFF7FFFFFu);
  CORE::color ghostColor = CORE::color::fromU32(0xFFC87FC8u);
  CORE::color greyColor0 = CORE::color::fromU32(0xFF7F7F7Fu);
  CORE::color greyColor1 = CORE::color::fromU32(0xFF7F7F7Fu);
  CORE::color currentEdgeColor = edgeColor;
  CORE::color currentVertexColor = vertexColor;
  void colorEdgesWithGhostColor() { currentEdgeColor = ghostColor; }
  void colorEdgesWithDefaultColor() { currentEdgeColor = edgeColor; }
  bool edgesAreColoredWithGhostColor() const { return currentEdgeColor == ghostColor; }
  bool edgesAreColoredWithDefaultColor() const { return currentEdgeColor == edgeColor; }
  void setFaceSelectionColor(const CORE::color& c) { faceSelectionColor = c; }

  unsigned int vertexColorLayer = 0;  // 0 or 1: the layer vCol addresses
  MESH_COLOR_DISPLAY_STATE colorDisplayState = MESH_COLOR_NONE;

  // Render cache state (GL-free bookkeeping; the renderer owns the chunks)
  bool renderFlag = true;
  // Chunk lists belong to the renderer that filled them: a copy starts without chunks.
  struct chunkList : std::vector<renderChunk*> {
    chunkList() = default;
    chunkList(const chunkList&) : std::vector<renderChunk*>() {}
    chunkList& operator=(const chunkList&) { return *this; }
  };
  chunkList renderChunks, edgeChunks, selectedFaceChunks, vertChunks;
  unsigned int chunkCounters[12] = {};  // chunks, vertices in the last chunk, limit used, ...
  bool vertexRenderStateValid = false;
  bool edgeRenderStateValid = false;
  bool flatFaceRenderStateValid = false;
  bool smoothFaceRenderStateValid = false;
  bool selectionRenderStateValid = false;
  bool smoothShadingDrawing = true;
  bool wireframeDrawing = false;
  bool surfaceDrawing = true;
  bool hideUnselected = false;
  bool hideSelected = false;
  bool faceSelectionChanged = false;
  bool selectedFacesDrawing = true;
  bool vertIndexInvalid = true;
  bool faceIndexInvalid = true;
  bool faceSelectionRenderStateDirty = true;
  bool faceSelectionAlwaysOnTop = false;
  bool pointDrawing = false;
  bool renderChunksDiscardPending = false;
  bool renderChunksDeletePending = false;
  unsigned int chunkVertexLimit = 20000;

  template <class T>
  struct auxStore {
    std::string name;
    std::vector<T> data;
  };

 protected:
  template <class S>
  static unsigned int expandStore(S& s, unsigned int n) {
    const unsigned int old = unsigned(s.size());
    s.reserve(s.size() + n);
    return old;
  }
  static void growFlags(std::vector<unsigned char>& flags, unsigned int n) {
    if (flags.size() < n) flags.resize(n, 0);
  }
  // Appends corners for face f at the end of FV and points f at them.
  void appendCorners(unsigned int f, const unsigned int* ids, unsigned int n, bool reserve);
  unsigned int newFace();
  // A deselected vertex stays selected while an edge at it has a selected face.
  bool vertexHeldByFaceSelection(unsigned int v) const;
  void dropVertexFromSelection(unsigned int v);
  void clearRenderValidity();
  void deleteVertexAndEdges(unsigned int v, bool guarded);
  void deleteFaceSet(bool selectedOnly, bool rebuild, bool updateEdges);
  bool rebuildEdges(int* progress, SYSTEM::callBack* cb);

  // The trees are dropped, not shared, when a mesh is copied.
  struct faceTreeDeleter {
    void operator()(aabbtreeEditMeshFaceWrap<float>* t) const;
  };
  struct vertTreeDeleter {
    void operator()(aabbtreeEditMeshVertWrap<float>* t) const;
  };
  struct ownedTrees {
    std::unique_ptr<aabbtreeEditMeshFaceWrap<float>, faceTreeDeleter> faceTree;
    std::unique_ptr<aabbtreeEditMeshVertWrap<float>, vertTreeDeleter> vertexTree;
    ownedTrees() = default;
    ownedTrees(const ownedTrees&) {}
    ownedTrees& operator=(const ownedTrees&) {
      faceTree.reset();
      vertexTree.reset();
      return *this;
    }
  };
  // Aux arrays are owned one by one, so references to them survive adding another;
  // copies are deep.
  template <class T>
  struct auxList {
    std::vector<std::unique_ptr<auxStore<T>>> items;
    auxList() = default;
    auxList(const auxList& o) { *this = o; }
    auxList& operator=(const auxList& o) {
      if (this == &o) return *this;
      items.clear();
      for (const auto& a : o.items) items.push_back(std::make_unique<auxStore<T>>(*a));
      return *this;
    }
  };

  ownedTrees trees;
  unsigned int spatialIndexKind = 1;
  MATH::point3<float> bboxMin{1.f, 1.f, 1.f};
  MATH::point3<float> bboxMax{-1.f, -1.f, -1.f};
  bool bboxDirty = true;
  unsigned int geometryRevision = 0;  // raised by updateBBox

  std::vector<face> fStore;
  std::vector<edge> eStore;
  std::vector<vert> vStore;
  std::vector<MATH::point2<float>> uvStore;

  unsigned int maxValue = 16000000;
  unsigned int selFn = 0, selEn = 0, selVn = 0, selFvn = 0;
  MATH::point3<float> selVertSum, selVertNor;
  unsigned int maxSelFaceSize = 0;

  std::vector<unsigned char> vFlag, fFlag, eFlag;
  std::vector<unsigned int> veStore;
  std::vector<edgeFaceRecord> efStore;
  std::vector<faceWEdgeRecord> fvStore;
  unsigned int delFvn = 0, delVen = 0, delEfn = 0;
  unsigned int delVn = 0, delEn = 0, delFn = 0;

  std::vector<unsigned int> adjacentFaces;
  std::vector<CORE::color> faceColors, edgeColors;
  auxList<float> auxFloat;
  auxList<unsigned int> auxUint;
  auxList<unsigned char> auxUchar;

  bool veInvalid = true;
  bool evefInvalid = true;
  bool hasVertexColors = false;
};

}  // namespace MESH
}  // namespace JEV
