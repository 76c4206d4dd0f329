#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace JEV {
namespace MESH {
namespace ALGO {
namespace HOLEFILLING_INTERNAL {

// The edge set of a surface: for each vertex the sorted vertices joined to it by an edge,
// and the border edges (used by one face side only) in the direction their face walks
// them. Rows are kept in compressed form; each row is sorted, so walking the rows gives
// the order of an ordered map from vertex to neighbour set.
class holeEdgeSet {
 public:
  // Faces are given as corner lists: face f has corners[faceStart[f]] up to
  // corners[faceStart[f + 1]]. Corner ids not below vertexCount and negative ids are
  // ignored together with the sides that use them.
  void build(unsigned int vertexCount, const std::vector<int>& corners,
             const std::vector<unsigned int>& faceStart);
  // The same for triangles, three corners each.
  void buildTriangles(unsigned int vertexCount, const std::vector<std::array<int, 3>>& triangles);

  // Only the rows of the vertices whose byte in wanted is set (in full, as build gives
  // them); every other row is empty and no border edge is kept, so nothing traces. For
  // loops known beforehand, whose fill reads the rows of their own corners alone: one
  // pass over the triangles instead of the whole set.
  void buildRowsOf(unsigned int vertexCount, const std::vector<std::array<int, 3>>& triangles,
                   const std::vector<unsigned char>& wanted);

  unsigned int vertexCount() const { return unsigned(rowStart.size()) - 1; }
  // Whether a and b share an edge; after buildRowsOf, known when one of them is wanted.
  bool hasEdge(int a, int b) const;
  // Neighbours of v in ascending order.
  const int* neighbours(int v) const { return row.data() + rowStart[size_t(v)]; }
  unsigned int neighbourCount(int v) const { return rowStart[size_t(v) + 1] - rowStart[size_t(v)]; }

  // The border loops, each in the direction of its faces. Tracing starts at the lowest
  // vertex with an unwalked border edge and follows border edges until it returns; a
  // border that passes a vertex twice (a pinch) is cut there into separate loops, so that
  // no loop repeats a vertex. A walk that meets a vertex with no border edge left to
  // leave by writes the tracer's message and fails: false, loops cleared.
  bool traceLoops(std::vector<std::vector<int>>& loops) const;

 private:
  // forEachSide(visit) calls visit(a, b) for every face side a -> b to count, both ids in
  // range and apart; it is called twice and must give the same sides both times.
  template <class ForEachSide>
  void buildFromSides(unsigned int vertexCount, ForEachSide forEachSide);

  std::vector<unsigned int> rowStart;
  std::vector<int> row;
  std::vector<unsigned int> borderStart;  // outgoing border edges per vertex
  std::vector<int> borderTarget;
};

}  // namespace HOLEFILLING_INTERNAL
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
