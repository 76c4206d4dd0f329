#include <iostream>

#include "commandSupport.h"
#include "commands.h"
#include "jev3d/algo/holefilling/computeHoleFilling.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "progressBar.h"

namespace JEVMESH {

namespace {

// Closes the boundary loops of at most --max-edges edges (all by default) with patches
// that follow the surface around them; --no-fair stops at the triangulation.
int runFillHoles(const commandLine& line) {
  long maxEdges = 0;
  if (line.has("--max-edges") &&
      (!commandLine::toInt(line.values("--max-edges")[0], maxEdges) || maxEdges < 3))
    return usageError("fill-holes", "--max-edges takes a whole number from 3 up");
  const bool fair = !line.has("--no-fair");
  return transform("fill-holes", line, [&](JEV::MESH::editMesh& mesh) {
    using namespace JEV::MESH;
    editMeshInterface view(mesh);
    std::vector<unsigned int> before, after;
    if (!ALGO::computeHoleFillingFindHoleDimension(view, before))
      return fileError(line.positional()[0],
                       "the border cannot be walked (faces on it are wound against each other)");
    {
      progressBar bar("filling holes", quiet(line));
      if (fair)
        ALGO::computeHoleFillingFaired(view, unsigned(maxEdges), view, {}, bar.reporter());
      else
        ALGO::computeHoleFilling(view, unsigned(maxEdges), view, true, bar.reporter());
    }
    mesh.checkMeshState();
    mesh.computeEdges(true);
    mesh.computeVE();
    mesh.computeNormalizedFaceNormals();
    mesh.computeNormalizedVertexNormals();
    ALGO::computeHoleFillingFindHoleDimension(view, after);
    if (!quiet(line))
      std::cout << "holes filled: " << before.size() - after.size() << " of " << before.size()
                << "\n";
    return int(EXIT_OK);
  });
}

}  // namespace

command fillHolesCommand() {
  return {"fill-holes",
          "IN OUT [--max-edges N] [--no-fair]",
          "Close boundary loops with patches that follow the surface.",
          "Each loop is triangulated by cutting its best ears first; unless --no-fair the\n"
          "patch is then refined to the mesh's edge length, started on a smooth surface\n"
          "fitted to the rim and the ring around it, and faired into the surface around\n"
          "it. The rim does not move. Polygons become triangles.\n"
          "  --max-edges N       fill only loops of at most N edges (default: all)\n"
          "  --no-fair           triangulate only\n",
          withWriteOptions({{"--max-edges", 1}, {"--no-fair", 0}}),
          runFillHoles};
}

}  // namespace JEVMESH
