#pragma once

#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
class editMesh;
class meshInterface;

namespace ALGO {
namespace SMOOTHING {

// What one accumulation pass of the umbrella Laplacian leaves per vertex.
struct laplacianDescriptor {
  // Sum of the neighbour positions met along face sides.
  std::vector<MATH::point3<float>> sum;
  // Samples: 1 for the vertex itself (its position is added only at the end, which is
  // what keeps its weight in its own average), plus one per neighbour added.
  std::vector<unsigned int> count;

  // n null sums and n counts of 1.
  void resize(unsigned int n) {
    sum.assign(n, MATH::point3<float>());
    count.assign(n, 1u);
  }
  // Frees both vectors.
  void clear() {
    std::vector<MATH::point3<float>>().swap(sum);
    std::vector<unsigned int>().swap(count);
  }
};

// One accumulation pass over the live faces: each side a-b of a face adds b to a's sum
// and a to b's, and counts one at each end. An interior edge is seen from both of its
// faces and so counts twice, border edges once: border neighbours weigh half. Polygons
// are walked by their sides. The mesh is not moved; face flags are made if it has none.
// cb (may be null) gets 0, the face percentage as it grows, and 100.
void computeLaplacianSmooth(meshInterface& mesh, laplacianDescriptor& descriptor,
                            SYSTEM::callBack* cb);
void computeLaplacianSmooth(editMesh& mesh, laplacianDescriptor& descriptor, SYSTEM::callBack* cb);

// iterations simultaneous (Jacobi) steps: each vertex becomes (position + sum) / count
// of a fresh pass over the previous positions. Unless smoothBorder is set, the vertices
// of border edges are pinned; they still pull on their neighbours. At the end, whatever
// the count, the boxes, the normals and the spatial indexes are dropped. cb (may be
// null) gets 0 first and 100 last.
void computeLaplacianSmooth(meshInterface& mesh, unsigned int iterations, bool smoothBorder,
                            SYSTEM::callBack* cb);
// The same on an editable mesh, whose normals are stored data: they are recomputed (unit
// length) instead of being left cleared, and its render data is marked stale.
void computeLaplacianSmooth(editMesh& mesh, unsigned int iterations, bool smoothBorder,
                            SYSTEM::callBack* cb);

}  // namespace SMOOTHING

// The same Laplacian under the algorithm namespace.
inline void computeLaplacianSmooth(meshInterface& mesh, unsigned int iterations, bool smoothBorder,
                                   SYSTEM::callBack* cb) {
  SMOOTHING::computeLaplacianSmooth(mesh, iterations, smoothBorder, cb);
}
inline void computeLaplacianSmooth(editMesh& mesh, unsigned int iterations, bool smoothBorder,
                                   SYSTEM::callBack* cb) {
  SMOOTHING::computeLaplacianSmooth(mesh, iterations, smoothBorder, cb);
}

}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
