#pragma once

#include "jev3d/mesh/editMeshInterface.h"

namespace JEV {
namespace MESH {

// The neutral mesh interface as an editable node carries it, beside its scene-node base:
// the editMesh adapter over the node's embedded mesh.
class meshInterfaceDLL : public editMeshInterface {
 public:
  explicit meshInterfaceDLL(editMesh& m) : editMeshInterface(m) {}
};

}  // namespace MESH
}  // namespace JEV
