#pragma once

#include <vector>

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
class editMesh;
class meshInterface;
namespace ALGO {
namespace REMESHING {

// Subdivision and refinement from one mesh into another. Every function returns false,
// leaving the target alone, for a null source or target or the two being one mesh.
// Polygons are taken as fans of triangles; the targets get unit normals. Unless said
// otherwise the work runs on a working triangle copy of the source, vertices renumbered
// without the deleted ones.

// Splits each live triangle of the source (each selected one with selectedOnly) whose
// area is above maxArea into three at its centroid (the sum of its corners times
// 0.33333334); the others are copied. The target keeps every source vertex, deleted ones
// included, so ids match; the centroids follow. faceMap gets the source face of each
// target face.
bool computeSubdiv(const meshInterface* source, meshInterface* target, float maxArea,
                   bool selectedOnly, std::vector<unsigned int>& faceMap);
// One step of Loop subdivision: every triangle becomes four; inner vertices move by
// Loop's weights, border vertices by 3/4 and 1/8 along the border, vertices on
// non-manifold edges stay.
bool computeSubdivLoop(const meshInterface* source, meshInterface* target);
// Up to `iterations` rounds of splitting every side longer than maxLength at its
// midpoint, faces cut by their split sides (two, three or four pieces); rounds stop when
// nothing is split. selectedOnly splits only sides of selected faces (their neighbours
// take the midpoints too, so no crack opens); keepBorder leaves border sides whole. cb
// hears 1 first and 100 last.
bool computeMidpoint(const meshInterface* source, meshInterface* target, float maxLength,
                     unsigned int iterations, bool selectedOnly, bool keepBorder,
                     SYSTEM::callBack* cb = nullptr);
// The same rounds with the points of the modified butterfly scheme: an inner side whose
// eight-point stencil is complete gets 1/2 of its ends, 1/8 of its far corners and
// -1/16 of the four corners beyond; other sides their midpoints. Source vertices stay.
bool computeButterfly(const meshInterface* source, meshInterface* target, float maxLength,
                      unsigned int iterations, bool selectedOnly, SYSTEM::callBack* cb = nullptr);
// `samples` points spread over the live triangles at random, evenly by area (the same
// points on every run), each with its face's unit normal: the target gets vertices only.
bool computeMonteCarlo(const meshInterface* source, meshInterface* target, unsigned int samples,
                       SYSTEM::callBack* cb = nullptr);
// One round of computeMidpoint from an editable mesh into another, finished with edges,
// VE and normals.
bool midpointTriangulate(editMesh& source, float maxLength, editMesh& target, bool selectedOnly);

// Area of a live face of three or more corners (as a fan from corner 0).
float computeAreaFace(const editMesh& mesh, unsigned int f);
// Squared length of edge e.
void elenSqr(editMesh& mesh, unsigned int e, float& squaredLength);

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
