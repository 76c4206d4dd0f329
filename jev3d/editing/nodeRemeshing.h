#pragma once

#include <vector>

#include "jev3d/algo/remeshing/edgeFlip.h"
#include "jev3d/algo/remeshing/isotropicMeshRefinement.h"
#include "jev3d/algo/remeshing/meshProjection.h"
#include "jev3d/algo/remeshing/volumeDescriptor.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
namespace EDITING {
class editMeshNode;
}
namespace ALGO {
namespace REMESHING {

// Remeshing on editable nodes: the core functions on the nodes' meshes, after which the
// nodes that changed have a stale box and render cache. Results are replaced as the
// core replaces them. (edgeFlip and volumeDescriptor take nodes through members of their
// own, defined beside these.)

unsigned int computeIsotropicMeshRefinement(const EDITING::editMeshNode& node,
                                            const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            EDITING::editMeshNode& result,
                                            attributeList& attributesOut, float length,
                                            SYSTEM::callBack* cb = nullptr);
unsigned int computeIsotropicMeshRefinement(const EDITING::editMeshNode& node,
                                            const std::vector<unsigned int>& keptVertices,
                                            const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            EDITING::editMeshNode& result,
                                            attributeList& attributesOut, float length,
                                            SYSTEM::callBack* cb = nullptr);
unsigned int computeIsotropicMeshRefinement(
    const EDITING::editMeshNode& node, const std::vector<unsigned int>& keptVertices,
    const attributeList& attributes, const std::vector<unsigned int>& faces,
    EDITING::editMeshNode& result, attributeList& attributesOut, const isotropicMeshParams& params,
    SYSTEM::callBack* cb = nullptr);

bool projectGridOnMesh(const EDITING::editMeshNode& node, const MATH::point3<float>& direction,
                       float spacing, EDITING::editMeshNode& result);
unsigned int intersectionsRemoval(const EDITING::editMeshNode& a, const EDITING::editMeshNode& b,
                                  EDITING::editMeshNode& result);
void computeEVEFStressTest(EDITING::editMeshNode& node, unsigned int rounds);
void computeEVEFOptiStressTest(EDITING::editMeshNode& node, unsigned int rounds);

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
