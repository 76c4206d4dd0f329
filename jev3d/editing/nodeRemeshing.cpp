#include "jev3d/editing/nodeRemeshing.h"

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/editing/internal/nodeEdits.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {

using EDITING::editMeshNode;
using EDITING::INTERNAL::meshChanged;

namespace {

// The result node was replaced: it draws anew.
unsigned int remeshed(editMeshNode& result, unsigned int count) {
  meshChanged(result);
  return count;
}

}  // namespace

unsigned int computeIsotropicMeshRefinement(const editMeshNode& node,
                                            const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            editMeshNode& result, attributeList& attributesOut,
                                            float length, SYSTEM::callBack* cb) {
  return remeshed(result,
                  computeIsotropicMeshRefinement(node.getEditMesh(), attributes, faces,
                                                 result.getEditMesh(), attributesOut, length, cb));
}

unsigned int computeIsotropicMeshRefinement(const editMeshNode& node,
                                            const std::vector<unsigned int>& keptVertices,
                                            const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            editMeshNode& result, attributeList& attributesOut,
                                            float length, SYSTEM::callBack* cb) {
  return remeshed(
      result, computeIsotropicMeshRefinement(node.getEditMesh(), keptVertices, attributes, faces,
                                             result.getEditMesh(), attributesOut, length, cb));
}

unsigned int computeIsotropicMeshRefinement(
    const editMeshNode& node, const std::vector<unsigned int>& keptVertices,
    const attributeList& attributes, const std::vector<unsigned int>& faces, editMeshNode& result,
    attributeList& attributesOut, const isotropicMeshParams& params, SYSTEM::callBack* cb) {
  return remeshed(
      result, computeIsotropicMeshRefinement(node.getEditMesh(), keptVertices, attributes, faces,
                                             result.getEditMesh(), attributesOut, params, cb));
}

bool projectGridOnMesh(const editMeshNode& node, const MATH::point3<float>& direction,
                       float spacing, editMeshNode& result) {
  const bool hit = projectGridOnMesh(node.getEditMesh(), direction, spacing, result.getEditMesh());
  meshChanged(result);  // emptied on failure
  return hit;
}

unsigned int intersectionsRemoval(const editMeshNode& a, const editMeshNode& b,
                                  editMeshNode& result) {
  return remeshed(result,
                  intersectionsRemoval(a.getEditMesh(), b.getEditMesh(), result.getEditMesh()));
}

void computeEVEFStressTest(editMeshNode& node, unsigned int rounds) {
  computeEVEFStressTest(node.getEditMesh(), rounds);
  meshChanged(node);
}

void computeEVEFOptiStressTest(editMeshNode& node, unsigned int rounds) {
  computeEVEFOptiStressTest(node.getEditMesh(), rounds);
  meshChanged(node);
}

unsigned int edgeFlip::computeEdgeFlipping(editMeshNode& node,
                                           const std::vector<unsigned int>& edges,
                                           unsigned int passes) {
  const unsigned int flips = computeEdgeFlipping(node.getEditMesh(), edges, passes);
  if (flips) meshChanged(node);
  return flips;
}

unsigned int edgeFlip::computeEdgeFlipping(const editMeshNode& node,
                                           const std::vector<unsigned int>& edges,
                                           unsigned int passes) {
  return computeEdgeFlipping(node.getEditMesh(), edges, passes);
}

void volumeDescriptor::isPointInside(const editMeshNode& node,
                                     std::vector<unsigned char>& inside) const {
  isPointInside(node.getEditMesh(), inside);
}

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
