#pragma once

#include <utility>
#include <vector>

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
class meshInterface;
namespace ALGO {

// The general path of hole filling. The source is copied into an analysis surface (live
// vertices in order, polygons as fans), its border loops are traced from the edge set,
// each loop is triangulated by greedy ear cutting and, unless triangulateOnly, refined,
// flipped and faired towards the surrounding surface; the surface with the patches is
// then written to the target (which may be the source). Loops run the way their faces
// do; a border that passes a vertex twice is cut there into separate loops. Vertex ids
// given or returned here are the source's.

// The vertex counts of all loops, ascending. False when the border cannot be walked
// (faces on it wound against each other), with sizes empty.
bool computeHoleFillingFindHoleDimension(const meshInterface& source,
                                         std::vector<unsigned int>& sizes,
                                         SYSTEM::callBack* cb = nullptr);

// The loops, each restricted to its vertices whose mask byte is 0 when the mask has a
// non-zero byte; endpoints then get, per loop, the last free vertex before the first
// masked one and the first masked vertex after a free one ((0, 0) without such a step).
// An all-zero mask leaves loops whole and endpoints empty. False when tracing fails.
bool computeHoleFillingFindHole(const meshInterface& source, const std::vector<unsigned char>& mask,
                                std::vector<std::vector<unsigned int>>& loops,
                                std::vector<std::pair<unsigned int, unsigned int>>& endpoints);

// Fills every loop of at least three vertices and, unless maxSize is 0, at most maxSize;
// longer loops stay open without a word. A mask restricts the traced loops as
// computeHoleFillingFindHole does; loops given by the caller are used instead of
// tracing. The target receives the surface: vertices in order, then the new ones (with
// the default colour when the source has colours; normals recomputed when the source has
// them), the source's faces as triangles, then the patches. An editable target needs
// its edges and VE rebuilt afterwards. False, leaving the target alone, when tracing
// fails; true otherwise. Progress 0 first, 100 last.
bool computeHoleFilling(const meshInterface& source, unsigned int maxSize, meshInterface& target,
                        bool triangulateOnly, SYSTEM::callBack* cb = nullptr);
bool computeHoleFilling(const meshInterface& source, unsigned int maxSize, meshInterface& target,
                        bool triangulateOnly, const std::vector<unsigned char>& mask,
                        SYSTEM::callBack* cb = nullptr);
bool computeHoleFilling(const meshInterface& source, unsigned int maxSize, meshInterface& target,
                        bool triangulateOnly, const std::vector<std::vector<unsigned int>>& loops,
                        SYSTEM::callBack* cb = nullptr);
bool computeHoleFilling(const meshInterface& source, unsigned int maxSize, meshInterface& target,
                        bool triangulateOnly, const std::vector<unsigned char>& mask,
                        const std::vector<std::vector<unsigned int>>& loops,
                        SYSTEM::callBack* cb = nullptr);

// computeHoleFilling with refinement and fairing made for large holes: the patch is
// refined in two levels to the length of the mesh edges leaving its rim (new sides come
// out near that length), its new vertices start on a quadric fitted to the rim and the
// ring of vertices around it, and the fairing weighs ring members by inverse distance.
// The fixed rounds of computeHoleFilling leave patches of thousands of vertices nearly
// flat; these take the curve of the surface around them. Same loops, rim and output
// layout as computeHoleFilling; loops given by the caller are used instead of tracing.
bool computeHoleFillingFaired(const meshInterface& source, unsigned int maxSize,
                              meshInterface& target,
                              const std::vector<std::vector<unsigned int>>& loops = {},
                              SYSTEM::callBack* cb = nullptr);

// The patches of all loops, triangulated only: computeHoleFilling with no size limit
// and triangulateOnly set.
bool computeTessellateHole(const meshInterface& source, meshInterface& target);

// Cleans the mesh and peels up to five rings of faces off every border, then fills the
// loops whose sizes call for it, passes times at most: a pass that finds a loop of at
// most minSize vertices peels again first, and one that finds no loop of more than
// minSize and at most maxSize stops. The mesh is rewritten as a triangle mesh.
void computeHoleFillingFilter(meshInterface& mesh, unsigned int minSize, unsigned int maxSize,
                              unsigned int passes, SYSTEM::callBack* cb = nullptr);

}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
