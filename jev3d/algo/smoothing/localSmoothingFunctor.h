#pragma once

#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
class editMesh;
namespace EDITING {
class editMeshNode;
}

namespace ALGO {
namespace SMOOTHING {

// Smooths the neighbourhood of brush centres in place, as a sculpting stroke does. The
// neighbourhood of a centre is what lies within ringCount rings of edges; it is relaxed
// ringCount times, each vertex within the radius of the centre's starting position moving
// toward vertexNeighbourAverage by 1 - distance / radius. Moves are in place in ring
// order, so later vertices see earlier moves of the same round. Needs VE (and edges);
// positions only: normals, box and render data are the caller's to refresh from
// `modified`.
class localSmoothingFunctor {
 public:
  explicit localSmoothingFunctor(unsigned int ringCount) : ringCount(ringCount) {}

  // Every vertex may move.
  void localSmoothing(editMesh& mesh, const std::vector<unsigned int>& centres, float radius,
                      std::vector<unsigned char>& modified);
  // Only vertices with a non-zero mask byte move. modified is resized to the vertex count
  // and gets 1 for every vertex that was within reach (even one that did not move, at
  // exactly the radius).
  void localSmoothing(editMesh& mesh, const std::vector<unsigned char>& mask,
                      const std::vector<unsigned int>& centres, float radius,
                      std::vector<unsigned char>& modified);
  // The same with radii[k] for centre k.
  void localSmoothing(editMesh& mesh, const std::vector<unsigned char>& mask,
                      const std::vector<unsigned int>& centres, const std::vector<float>& radii,
                      std::vector<unsigned char>& modified);

  // The three forms on an editable node's mesh: afterwards the normals around the vertices
  // within reach are recomputed and the node's render data goes stale. These live in the
  // jev3d library, beside the node.
  void localSmoothing(EDITING::editMeshNode& node, const std::vector<unsigned int>& centres,
                      float radius, std::vector<unsigned char>& modified);
  void localSmoothing(EDITING::editMeshNode& node, const std::vector<unsigned char>& mask,
                      const std::vector<unsigned int>& centres, float radius,
                      std::vector<unsigned char>& modified);
  void localSmoothing(EDITING::editMeshNode& node, const std::vector<unsigned char>& mask,
                      const std::vector<unsigned int>& centres, const std::vector<float>& radii,
                      std::vector<unsigned char>& modified);

  // The mean of both ends of every live edge at v: v itself weighs half, so the step above
  // is half an umbrella step. With no live edge the result is the null point, not v; a
  // lone centre is therefore pulled to the origin, as sculpting has always done.
  static void vertexNeighbourAverage(const editMesh& mesh, unsigned int vertex,
                                     MATH::point3<float>& result);

  // Both the rings of the neighbourhood and the relaxation rounds.
  unsigned int ringCount;

 private:
  // The three forms meet here; radius(k) is the radius of centre k.
  template <class Radius>
  void smoothAround(editMesh& mesh, const std::vector<unsigned char>& mask,
                    const std::vector<unsigned int>& centres, Radius radius,
                    std::vector<unsigned char>& modified);
};

}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
