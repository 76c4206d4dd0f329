#pragma once

#include <string>

#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
}  // namespace JEV

namespace JEVMESH {

enum class fileKind { PLY, STL, UNKNOWN };

// The format a path names by its extension, in any letter case.
fileKind kindOfPath(const std::string& path);

// Fills `mesh` (emptied first) from a PLY or STL file and finishes it: edges, VE and
// normals. PLY keeps polygon faces, vertex normals and colours; STL facets are welded on
// exactly equal positions. False, with a one-line reason in `error`, when the file cannot
// be read.
bool loadMesh(const std::string& path, JEV::MESH::editMesh& mesh, std::string& error,
              JEV::SYSTEM::callBack* cb = nullptr);

// Writes the live part of `mesh`. PLY keeps polygons, and writes the vertex normals and
// colours the mesh has; STL takes the faces as triangle fans with their face normals.
// Binary unless `ascii`. False, with a reason in `error`, when the file cannot be written.
bool saveMesh(const std::string& path, const JEV::MESH::editMesh& mesh, bool ascii,
              std::string& error, JEV::SYSTEM::callBack* cb = nullptr);

}  // namespace JEVMESH
