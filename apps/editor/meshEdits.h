#pragma once

#include <string>

#include <jev3d/mesh/editMesh.h>

namespace JEV {
namespace SYSTEM {
class callBack;
}
}  // namespace JEV

namespace EDITOR {

// The editor's mesh edits. Each works on the mesh it is given (a copy of the document's,
// on the job thread), and leaves it finished: edges, VE, unit normals, box and selection
// sums agree with the stores. `reference` is the mesh as it was opened. True with the
// status line's text in `message`; false with the reason there, the mesh then being
// thrown away. `progress` may be null.
using meshEdit = bool (*)(JEV::MESH::editMesh& mesh, const JEV::MESH::editMesh& reference,
                          JEV::SYSTEM::callBack* progress, std::string& message);

// Extrudes the selected faces as one region, half an edge length along their mean normal.
bool extrudeSelection(JEV::MESH::editMesh&, const JEV::MESH::editMesh&, JEV::SYSTEM::callBack*,
                      std::string&);
// Cuts the ring of quads through the first selected edge (else the first side of the first
// selected face).
bool loopCutSelection(JEV::MESH::editMesh&, const JEV::MESH::editMesh&, JEV::SYSTEM::callBack*,
                      std::string&);
// One Catmull-Clark step on the selected faces, or on all when none is selected.
bool subdivideMesh(JEV::MESH::editMesh&, const JEV::MESH::editMesh&, JEV::SYSTEM::callBack*,
                   std::string&);
// Every polygon as a fan of triangles.
bool triangulateMesh(JEV::MESH::editMesh&, const JEV::MESH::editMesh&, JEV::SYSTEM::callBack*,
                     std::string&);
// A mirrored copy across the plane through the selected faces, along their mean normal.
bool mirrorAcrossSelection(JEV::MESH::editMesh&, const JEV::MESH::editMesh&, JEV::SYSTEM::callBack*,
                           std::string&);
// Five Laplacian steps on the selected vertices, or on the whole surface (borders kept)
// when nothing is selected.
bool smoothMesh(JEV::MESH::editMesh&, const JEV::MESH::editMesh&, JEV::SYSTEM::callBack*,
                std::string&);
// Closes every boundary loop with a faired patch.
bool fillHoles(JEV::MESH::editMesh&, const JEV::MESH::editMesh&, JEV::SYSTEM::callBack*,
               std::string&);
// Isotropic remeshing of the selected faces (all when none) at their mean edge length.
bool remeshMesh(JEV::MESH::editMesh&, const JEV::MESH::editMesh&, JEV::SYSTEM::callBack*,
                std::string&);
// Quadric decimation to half the triangles.
bool decimateMesh(JEV::MESH::editMesh&, const JEV::MESH::editMesh&, JEV::SYSTEM::callBack*,
                  std::string&);
// Colours each vertex by its signed distance to the reference surface (five bands, blue
// behind it to red in front) and shows the colours.
bool colourByDistance(JEV::MESH::editMesh&, const JEV::MESH::editMesh&, JEV::SYSTEM::callBack*,
                      std::string&);

// Mean length of the live edges; 0 without any.
float meanEdgeLength(const JEV::MESH::editMesh& mesh);

}  // namespace EDITOR
