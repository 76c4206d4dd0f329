#pragma once

// The working triangle mesh of the algorithms: flat arrays with face-face adjacency
// across each edge, vertex-face lists in compressed rows and a flag byte per element.
// Not installed.

#include <cstddef>
#include <vector>

#include "jev3d/math/point3.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace MESH {

class editMesh;
class meshInterface;

namespace ALGO {

// Triangles over vertices, with deletion by flag. Vertex ids follow the source mesh, so
// a deleted source vertex stays as a deleted vertex here. Adjacency is built on demand
// (updateTopology) and goes stale with any change of the triangles.
//
//   workMesh w;
//   w.fromMesh(source, true);   // faces keep their selection
//   w.updateTopology();          // VF, FF, border flags
//   for (unsigned f = 0; f < w.fn(); ++f)
//     for (unsigned i = 0; i < 3; ++i)
//       if (!w.isBorder(f, i)) use(w.ffFace(f, i));
class workMesh {
 public:
  static constexpr unsigned int NONE = 0xFFFFFFFFu;

  // Bits of the flag bytes. BORDER marks a vertex on a border edge, or a face with a
  // border edge; BORDER0..2 say which edges of a face are border. LOCKED keeps a vertex
  // out of normal updates. VISITED belongs to one running walk, which clears it.
  enum FLAG : unsigned char {
    DELETED = 0x01,
    SELECTED = 0x02,
    VISITED = 0x04,
    BORDER = 0x08,
    LOCKED = 0x10,
    BORDER0 = 0x20,
    BORDER1 = 0x40,
    BORDER2 = 0x80,
  };

  // Per vertex; normals and colours are empty unless the mesh has them.
  std::vector<MATH::point3<float>> pos;
  std::vector<MATH::point3<float>> nor;
  std::vector<CORE::color> col;
  std::vector<unsigned char> vFlag;
  // Per face: three corners, a flag byte, and the source face it came from; a normal once
  // computeFaceNormals ran (fNor is empty before).
  std::vector<unsigned int> tri;
  std::vector<MATH::point3<float>> fNor;
  std::vector<unsigned char> fFlag;
  std::vector<unsigned int> sourceFace;

  unsigned int vn() const { return unsigned(pos.size()); }
  unsigned int fn() const { return unsigned(fFlag.size()); }
  unsigned int V(unsigned int f, unsigned int i) const { return tri[3 * f + i]; }
  const MATH::point3<float>& P(unsigned int f, unsigned int i) const { return pos[tri[3 * f + i]]; }
  bool hasNormals() const { return !nor.empty(); }
  bool hasColors() const { return !col.empty(); }

  bool isVertDeleted(unsigned int v) const { return vFlag[v] & DELETED; }
  bool isFaceDeleted(unsigned int f) const { return fFlag[f] & DELETED; }
  bool isVertSelected(unsigned int v) const { return vFlag[v] & SELECTED; }
  bool isFaceSelected(unsigned int f) const { return fFlag[f] & SELECTED; }
  void deleteFace(unsigned int f) { fFlag[f] |= DELETED; }
  void deleteVertex(unsigned int v) { vFlag[v] |= DELETED; }

  void clear();
  // Room for n vertices in all, with their normals and colours where held.
  void reserveVertices(unsigned int n);
  // New elements have clear flags; a new face names NONE as its source.
  unsigned int addVertex(const MATH::point3<float>& p);
  unsigned int addFace(unsigned int a, unsigned int b, unsigned int c);

  // Vertex-face lists, face-face adjacency and border flags of the live triangles.
  void updateTopology();
  void computeVertexFace();
  void computeFaceFace();
  // Border bits from FF (which must be current): BORDER0..2 and BORDER on faces, BORDER
  // on the vertices of border edges. Other bits are kept.
  void updateBorderFlags();
  bool isTopologyValid() const { return topologyValid; }
  // For callers that rewrite tri in place: the adjacency is stale from now on.
  void invalidateTopology() { topologyValid = false; }

  // The face across edge i of f (corners i and i + 1) and that edge's index in it; NONE
  // on a border. Three or more faces on an edge form a ring through all of them.
  unsigned int ffFace(unsigned int f, unsigned int i) const {
    const unsigned int w = ff[3 * f + i];
    return w == NONE ? NONE : w / 3;
  }
  unsigned int ffEdge(unsigned int f, unsigned int i) const {
    const unsigned int w = ff[3 * f + i];
    return w == NONE ? NONE : w % 3;
  }
  bool isBorder(unsigned int f, unsigned int i) const { return ff[3 * f + i] == NONE; }
  // Live triangles at v: vfNum(v) of them, the k-th is vfFace(v, k) with v at its
  // corner vfCorner(v, k).
  unsigned int vfNum(unsigned int v) const { return vfStart[v + 1] - vfStart[v]; }
  unsigned int vfFace(unsigned int v, unsigned int k) const { return vfWedge[vfStart[v] + k] / 3; }
  unsigned int vfCorner(unsigned int v, unsigned int k) const {
    return vfWedge[vfStart[v] + k] % 3;
  }

  // Face normals of the live triangles: the cross product (1 - 0) x (2 - 0), unit length
  // when normalize (a null product stays null).
  void computeFaceNormals(bool normalize = true);
  // Vertex normals as the sum of the unnormalised face normals around each vertex,
  // normalised; deleted and LOCKED vertices keep theirs. Sizes nor when empty.
  void computeVertexNormals();

  // Drops deleted faces, and deleted or unreferenced vertices when dropVertices, keeping
  // order; a face on a dropped or missing vertex goes with it. Adjacency goes stale.
  void compact(bool dropVertices);

  // From any mesh: every vertex (deleted ones flagged), normals and colours where the
  // source has them, and the live faces of three or more corners as fans from corner 0
  // (faces naming a vertex out of range are left out). With keepSelection, triangles of
  // a selected face are flagged SELECTED.
  void fromMesh(const meshInterface& source, bool keepSelection = false);
  void fromEditMesh(const editMesh& source, bool keepSelection = false);
  // Replaces the target's content with the live vertices (renumbered in order, normals
  // and colours where this mesh has them) and the live triangles on live vertices. An
  // editable target (editMeshInterface or a class derived from it) has its records
  // written directly, with the result its building calls would give, but not through
  // them; an editable source is likewise read directly by fromMesh.
  void toMesh(meshInterface& target) const;
  // toMesh with other triangles: pieces(emit) calls emit(a, b, c) for each triangle to
  // write, on this mesh's vertex ids, at most maxFaces of them. Those on a deleted or
  // missing vertex are left out.
  template <class Pieces>
  void toMeshWith(meshInterface& target, size_t maxFaces, Pieces pieces) const {
    meshWriter out(*this, target, maxFaces);
    pieces([&out](unsigned int a, unsigned int b, unsigned int c) { out.add(a, b, c); });
    out.finish();
  }
  // The same into an editMesh, then edges, VE and unit face normals rebuilt, and unit
  // vertex normals unless this mesh carries its own.
  void toEditMesh(editMesh& target) const;

 private:
  // The target of toMeshWith: the live vertices are written on construction, then the
  // triangles one by one, renumbered.
  class meshWriter {
   public:
    meshWriter(const workMesh& w, meshInterface& target, size_t maxFaces);
    void add(unsigned int a, unsigned int b, unsigned int c);
    void finish();

   private:
    unsigned int id(unsigned int v) const { return v < map.size() ? map[v] : NONE; }
    meshInterface& target;
    editMesh* edit = nullptr;  // an editable target, written through its records
    std::vector<unsigned int> map;
    size_t maxFaces;
    unsigned int faces = 0;  // written so far
  };

  std::vector<unsigned int> ff;
  std::vector<unsigned int> vfStart, vfWedge;
  bool topologyValid = false;
};

}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
