#pragma once

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
class editMesh;
class meshInterface;

namespace ALGO {
namespace SMOOTHING {

// Feature-preserving smoothing in two steps, on a working triangle copy of source
// (polygons as fans; the source is not touched): iterations times, the face normals are
// recomputed, then normalSteps rounds filter each face normal over the faces sharing a
// vertex with it, weighting a neighbour by (c - sigma)^2 where c is the cosine between
// the two normals and sigma = cos(featureAngleDeg), neighbours beyond the feature angle
// left out; then fitSteps rounds move each vertex toward the planes of its faces through
// their centroids. The result replaces target's content (vertices renumbered without the
// deleted ones, triangles). A null source gives an empty target; a null target skips the
// export.
//
// selectedOnly moves only vertices whose faces are all selected. keepBorder then also
// deselects the selected faces that touch the border, so border vertices stay. Without
// selectedOnly, keepBorder only rewrites face selection on the working copy (each face
// ends selected exactly when its edge 2 is not a border), which moves nothing: kept as
// the filter has always behaved. A vertex of no face is divided by a count of 0 and
// becomes not-a-number: pass cleaned meshes. Target normals, where the source had
// normals, are those of the unsmoothed copy. cb (may be null) gets 0, one report a round
// and 100.
void computeTwoStep(const meshInterface* source, meshInterface* target, float featureAngleDeg,
                    int iterations, int normalSteps, int fitSteps, bool keepBorder,
                    bool selectedOnly, SYSTEM::callBack* cb);

// The same between editable meshes (they may be the same mesh); the target's edges, VE
// and unit normals are rebuilt afterwards.
void computeTwoStep(const editMesh* source, editMesh* target, float featureAngleDeg, int iterations,
                    int normalSteps, int fitSteps, bool keepBorder, bool selectedOnly,
                    SYSTEM::callBack* cb);

}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
