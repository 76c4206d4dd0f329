#pragma once

#include <vector>

#include "jev3d/math/point3.h"

// The brush relaxation of one centre, shared by the sculpting functor and the local
// smoothing of remeshing, which differ only in their ring and round counts and mask.
namespace JEV {
namespace MESH {
class editMesh;
namespace ALGO {
namespace SMOOTHING {
namespace INTERNAL {

// Replaces queue with the centre and the vertices within rings rings of edges of it, ring
// by ring, each marked in visited (one entry a vertex); the caller clears the marks.
void gatherRings(const editMesh& mesh, unsigned int centre, unsigned int rings,
                 std::vector<int>& visited, std::vector<unsigned int>& queue);

// rounds rounds over queue, in place and in queue order: each vertex within radius r of
// reference (and with its mask byte set, when a mask is given) moves toward
// localSmoothingFunctor::vertexNeighbourAverage by 1 - distance / r (by 1 at r = 0) and is
// flagged in modified, when given.
void relaxNeighbourhood(editMesh& mesh, const std::vector<unsigned int>& queue,
                        const MATH::point3<float>& reference, float r, unsigned int rounds,
                        const std::vector<unsigned char>* mask,
                        std::vector<unsigned char>* modified);

}  // namespace INTERNAL
}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
