// The remeshing commands: decimate.

#include <vector>

#include "commandSupport.h"
#include "commands.h"
#include "jev3d/algo/remeshing/internal/triangleSoup.h"
#include "jev3d/algo/remeshing/qECollapse.h"
#include "progressBar.h"

namespace JEVMESH {

using JEV::MESH::editMesh;
namespace REMESHING = JEV::MESH::ALGO::REMESHING;

namespace {

int runDecimate(const commandLine& line) {
  if (line.has("--faces") == line.has("--ratio"))
    return usageError("decimate", "give either --faces or --ratio");
  long faces = 0;
  float ratio = 0.f;
  if (line.has("--faces") &&
      (!commandLine::toInt(line.values("--faces")[0], faces) || faces < 1 || faces > 0x7FFFFFFFL))
    return usageError("decimate", "--faces takes a whole number of at least 1");
  if (line.has("--ratio") &&
      (!commandLine::toFloat(line.values("--ratio")[0], ratio) || !(ratio > 0.f && ratio <= 1.f)))
    return usageError("decimate", "--ratio takes a number above 0 and at most 1");
  return transform("decimate", line, [&](editMesh& mesh) {
    std::vector<JEV::MATH::point3<float>> positions, outPositions;
    std::vector<unsigned int> triangles, outTriangles, map;
    REMESHING::INTERNAL::toTriangleSoup(mesh, positions, triangles);
    const unsigned int target =
        faces ? unsigned(faces) : unsigned(double(ratio) * double(triangles.size() / 3) + 0.5);
    progressBar bar("decimating", quiet(line));
    if (!REMESHING::qECollapse::decimate(positions, triangles, target, outPositions, outTriangles,
                                         map, bar.reporter()))
      return fileError(line.positional()[0], "has no triangle to decimate");
    bar.finish();
    REMESHING::INTERNAL::fromTriangleSoup(mesh, outPositions, outTriangles);
    return int(EXIT_OK);
  });
}

}  // namespace

const std::vector<command>& remeshingCommands() {
  static const std::vector<command> commands = {
      {"decimate", "IN OUT --faces N|--ratio R [--ascii|--binary]",
       "Reduce the triangles by edge collapses under the quadric error.",
       "Faces are taken as triangles. Open borders stay on their lines and edges with\n"
       "more than two faces stay in place.\n"
       "  --faces N           the number of triangles to keep\n"
       "  --ratio R           the share of triangles to keep, above 0 and at most 1\n",
       withWriteOptions({{"--faces", 1}, {"--ratio", 1}}), runDecimate},
  };
  return commands;
}

}  // namespace JEVMESH
