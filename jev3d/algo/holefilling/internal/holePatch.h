#pragma once

#include <cstdint>
#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
namespace ALGO {
namespace HOLEFILLING_INTERNAL {

class holeEdgeSet;

// A patch triangle: three vertex ids and, across the side from corner i to corner i + 1,
// the patch face on the other side or -1 (the rim, or not linked yet).
struct patchFace {
  int v[3];
  int n[3];
};

// A vertex made by a patch. Id vertexCount + k names added[k].
struct newVertex {
  MATH::point3<float> pos;
  MATH::point3<float> nor;
};

// What the patches of one surface read and add: the surface's positions and unit vertex
// normals, its edge set, its feature size (the length scale of the quality and of the
// refinement), and the vertices made so far by all patches.
class holeSurface {
 public:
  holeSurface(const std::vector<MATH::point3<float>>& positions,
              const std::vector<MATH::point3<float>>& normals, const holeEdgeSet& edges,
              float featureSize);

  int vertexCount() const { return int(pos.size()); }
  const MATH::point3<float>& position(int v) const {
    return v < vertexCount() ? pos[size_t(v)] : added[size_t(v - vertexCount())].pos;
  }
  MATH::point3<float>& movablePosition(int v) { return added[size_t(v - vertexCount())].pos; }
  const MATH::point3<float>& normal(int v) const {
    return v < vertexCount() ? nor[size_t(v)] : added[size_t(v - vertexCount())].nor;
  }
  bool isMeshEdge(int a, int b) const;
  const holeEdgeSet& edgeSet() const { return edges; }
  float featureSize() const { return feature; }

  std::vector<newVertex> added;

 private:
  const std::vector<MATH::point3<float>>& pos;
  const std::vector<MATH::point3<float>>& nor;
  const holeEdgeSet& edges;
  float feature;
};

// Penalties of the ear queue: an ear whose closing side is already a mesh edge.
constexpr float EAR_CLOSES_EDGE = -1000.0f;
constexpr float EAR_CLOSES_EDGE_AGAIN = -2000.0f;

// The quality of the ear at corners prev, mid, next of a loop, judged as the face
// (next, mid, prev) it would become: its normal against the vertex normals, the opening
// of its angles (angleOnly picks the one-angle form of the term) and its longest side
// against the feature size. -1000 for repeated ids or a normal against a vertex's.
float earQuality(const holeSurface& s, int prev, int mid, int next, float featureSize,
                 bool angleOnly = false);

// Cuts ears off the loop, best first, until two corners are left; appends the n - 2
// faces, unlinked. Loops of fewer than three corners give nothing.
void triangulateLoop(const holeSurface& s, const std::vector<int>& loop,
                     std::vector<patchFace>& faces);

// Links the faces of one patch across their shared sides.
void linkPatch(std::vector<patchFace>& faces);
// Splits the longest inner side of every face at least length long (see the .cpp).
void splitPass(holeSurface& s, std::vector<patchFace>& faces, float length);
// Flips inner sides where the normals or the ear qualities get better.
void flipPass(const holeSurface& s, std::vector<patchFace>& faces, float featureSize);
// Moves the patch's new vertices (ids from vertexCount + firstNew) towards a fair
// surface: rounds relaxation sweeps of the umbrella operator raised to the exponent.
void fairPatch(holeSurface& s, const std::vector<patchFace>& faces, float step, float exponent,
               unsigned int rounds, int firstNew);
// The whole improvement of a linked-to-be patch: flips, refinement and fairing.
void improvePatch(holeSurface& s, std::vector<patchFace>& faces);
// The same stages in two levels, with the new vertices started on a quadric fitted to
// the rim and its ring and the fairing weighted by inverse side lengths: large patches
// take the curve of the surface around them, which the fixed rounds cannot carry across.
// The patch is refined to the length of the mesh edges leaving its rim, not to the
// feature size, so that its new sides come out near that length.
void improvePatchFitted(holeSurface& s, std::vector<patchFace>& faces);

// Sets the flip pass's generator word (1 when the process starts), so that a fill can
// be repeated exactly.
void seedFlipRandom(uint32_t state);

// What follows the ear queue.
enum class patchFinish { NONE, REFINE_AND_FAIR, REFINE_AND_FIT };

}  // namespace HOLEFILLING_INTERNAL
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
