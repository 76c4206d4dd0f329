#pragma once

#include <utility>
#include <vector>

#include "jev3d/algo/holefilling/computeHoleFilling.h"
#include "jev3d/algo/holefilling/holeFilling.h"

namespace JEV {
namespace MESH {
namespace EDITING {
class editMeshNode;
}
namespace ALGO {

// Hole filling on editable nodes. Each form runs the core function on the node's mesh
// and then tells the node what changed; forms that only read leave the render data as it
// is. Include this header where nodes are filled: without it a node passes as a plain
// mesh interface and its edges, VE and render cache go stale unnoticed.

// The general path into a node. The node's connectivity and unit normals are rebuilt
// and its render data marked stale when the call succeeds; false leaves the node as it
// was.
bool computeHoleFilling(const meshInterface& source, unsigned int maxSize,
                        EDITING::editMeshNode& target, bool triangulateOnly,
                        SYSTEM::callBack* cb = nullptr);
bool computeHoleFilling(const meshInterface& source, unsigned int maxSize,
                        EDITING::editMeshNode& target, bool triangulateOnly,
                        const std::vector<unsigned char>& mask, SYSTEM::callBack* cb = nullptr);
bool computeHoleFilling(const meshInterface& source, unsigned int maxSize,
                        EDITING::editMeshNode& target, bool triangulateOnly,
                        const std::vector<std::vector<unsigned int>>& loops,
                        SYSTEM::callBack* cb = nullptr);
bool computeHoleFilling(const meshInterface& source, unsigned int maxSize,
                        EDITING::editMeshNode& target, bool triangulateOnly,
                        const std::vector<unsigned char>& mask,
                        const std::vector<std::vector<unsigned int>>& loops,
                        SYSTEM::callBack* cb = nullptr);
bool computeTessellateHole(const meshInterface& source, EDITING::editMeshNode& target);
void computeHoleFillingFilter(EDITING::editMeshNode& node, unsigned int minSize,
                              unsigned int maxSize, unsigned int passes,
                              SYSTEM::callBack* cb = nullptr);

namespace HOLEFILLING {

// The editing path on a node: the same calls as on its mesh, followed by a stale render
// cache wherever faces were added or the connectivity rebuilt.
HOLE_FILLING_ERROR computeTriangulateHole(EDITING::editMeshNode& node,
                                          computeHoleFillingParams& params);
bool trivialHoleFilling(EDITING::editMeshNode& node, loopList& loops);
HOLE_FILLING_ERROR checkStartingLoopOrientation(EDITING::editMeshNode& node,
                                                std::vector<unsigned int>& loop);
unsigned int addPolyFaces(EDITING::editMeshNode& node, const loopList& loops);
unsigned int addPolyFacesContaining(EDITING::editMeshNode& node, const loopList& loops,
                                    const std::vector<unsigned int>& vertices);
unsigned int addPolyFacesNotContaining(EDITING::editMeshNode& node, const loopList& loops,
                                       const std::vector<unsigned int>& vertices);

}  // namespace HOLEFILLING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
