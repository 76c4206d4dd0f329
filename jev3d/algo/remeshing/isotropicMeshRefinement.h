#pragma once

#include <iostream>
#include <vector>

#include "jev3d/algo/remeshing/isotropicMeshParams.h"
#include "jev3d/mesh/xyzw_impl.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
class editMesh;
class meshInterface;
namespace ALGO {
namespace REMESHING {

using attributeList = std::vector<dataExchange::xyzw_impl<float>>;

// Isotropic remeshing of the listed faces of mesh into result (replaced): the region is
// handed to the surface tracker, which runs three rounds of splits of long edges,
// collapses of short ones, valence flips and tangential relaxation projected back onto
// the region; the rest of the mesh is copied as it is, bit for bit, and the seam
// between the two stays put, as do keptVertices. Polygons are taken as fans.
//   length: edges above length split, edges below the smaller of 0.3 and 0.8·length
//           collapse; a flip or collapse may change the volume by 0.5·length³ at most.
//   params: with m the mean edge length of the region, edges above
//           (1 + secondLengthRatio)·m split and edges below (1 - firstLengthRatio)·m
//           collapse; the volume bound is volumeTolerance·m³; firstSwitch keeps the open
//           borders, secondSwitch the sharp edges.
// attributes holds one record per vertex of mesh (or is empty); attributesOut gets one per
// vertex of result, copied for the rest, interpolated on the region at each new vertex's
// closest point. The remeshed faces come last in result and are selected. Returns their
// number, 0 (with result emptied) when no listed face is live or length is not positive.
// log receives a line for each operation the tracker refused, with its reason; standard
// output by default, and nothing is written when it is null.
unsigned int computeIsotropicMeshRefinement(const editMesh& mesh, const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            editMesh& result, attributeList& attributesOut,
                                            float length, SYSTEM::callBack* cb = nullptr,
                                            std::ostream* log = &std::cout);
unsigned int computeIsotropicMeshRefinement(const editMesh& mesh,
                                            const std::vector<unsigned int>& keptVertices,
                                            const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            editMesh& result, attributeList& attributesOut,
                                            float length, SYSTEM::callBack* cb = nullptr,
                                            std::ostream* log = &std::cout);
unsigned int computeIsotropicMeshRefinement(
    const editMesh& mesh, const std::vector<unsigned int>& keptVertices,
    const attributeList& attributes, const std::vector<unsigned int>& faces, editMesh& result,
    attributeList& attributesOut, const isotropicMeshParams& params, SYSTEM::callBack* cb = nullptr,
    std::ostream* log = &std::cout);

// The same over any mesh: vertex and face ids of the source are those of mesh, so the
// face list and the attributes read as above; result is replaced with the result's live
// vertices and faces in order.
unsigned int computeIsotropicMeshRefinement(const meshInterface& mesh,
                                            const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            meshInterface& result, attributeList& attributesOut,
                                            float length, SYSTEM::callBack* cb = nullptr,
                                            std::ostream* log = &std::cout);
unsigned int computeIsotropicMeshRefinement(const meshInterface& mesh,
                                            const std::vector<unsigned int>& keptVertices,
                                            const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            meshInterface& result, attributeList& attributesOut,
                                            float length, SYSTEM::callBack* cb = nullptr,
                                            std::ostream* log = &std::cout);
unsigned int computeIsotropicMeshRefinement(
    const meshInterface& mesh, const std::vector<unsigned int>& keptVertices,
    const attributeList& attributes, const std::vector<unsigned int>& faces, meshInterface& result,
    attributeList& attributesOut, const isotropicMeshParams& params, SYSTEM::callBack* cb = nullptr,
    std::ostream* log = &std::cout);

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
