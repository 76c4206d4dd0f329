// The remeshing commands: decimate, remesh, voxelize.

#include <cmath>
#include <iostream>
#include <string>
#include <vector>

#include "commandSupport.h"
#include "commands.h"
#include "jev3d/algo/remeshing/internal/triangleSoup.h"
#include "jev3d/algo/remeshing/isotropicMeshRefinement.h"
#include "jev3d/algo/remeshing/qECollapse.h"
#include "jev3d/algo/remeshing/subdivision.h"
#include "jev3d/algo/remeshing/voxelizationFunctor.h"
#include "jev3d/mesh/editMeshInterface.h"
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

// The value of a required option that must be a positive finite number.
bool positiveOption(const commandLine& line, const char* option, float& value) {
  return line.has(option) && commandLine::toFloat(line.values(option)[0], value) && value > 0.f &&
         std::isfinite(value);
}

int runRemesh(const commandLine& line) {
  float length = 0.f;
  if (!positiveOption(line, "--length", length))
    return usageError("remesh", "--length takes a positive edge length");
  long runs = 1;
  if (line.has("-n") && (!commandLine::toInt(line.values("-n")[0], runs) || runs < 1 || runs > 100))
    return usageError("remesh", "-n takes a whole number from 1 to 100");
  return transform("remesh", line, [&](editMesh& mesh) {
    REMESHING::attributeList none, noneOut;
    for (long i = 0; i < runs; ++i) {
      std::vector<unsigned int> faces;
      for (unsigned int f = 0; f < mesh.fn(); ++f)
        if (!mesh.isFaceDeleted(f)) faces.push_back(f);
      progressBar bar("remeshing " + std::to_string(i + 1) + "/" + std::to_string(runs),
                      quiet(line));
      // The tracker's refusals are many and of interest only when asked for.
      std::ostream* refusals = line.has("--verbose") ? &std::cout : nullptr;
      if (!REMESHING::computeIsotropicMeshRefinement(mesh, none, faces, mesh, noneOut, length,
                                                     bar.reporter(), refusals))
        return fileError(line.positional()[0], "has no face to remesh");
    }
    mesh.deselectAllFaces();
    return int(EXIT_OK);
  });
}

int runVoxelize(const commandLine& line) {
  float size = 0.f;
  if (!positiveOption(line, "--size", size))
    return usageError("voxelize", "--size takes a positive voxel edge length");
  return transform("voxelize", line, [&](editMesh& mesh) {
    std::vector<JEV::MATH::point3<float>> positions;
    std::vector<unsigned int> triangles;
    REMESHING::INTERNAL::toTriangleSoup(mesh, positions, triangles);
    mesh.computeBBox();
    const JEV::MATH::point3<float> lo = mesh.getBBoxMin(), hi = mesh.getBBoxMax();
    REMESHING::volumeDescriptor frame, volume;
    if (!frame.frameBox(JEV::MATH::point3<double>(lo.x, lo.y, lo.z),
                        JEV::MATH::point3<double>(hi.x, hi.y, hi.z), double(size)))
      return fileError(line.positional()[0], "needs too many voxels of that size");
    progressBar bar("voxelizing", quiet(line));
    if (!REMESHING::voxelizationFunctor()(positions,
                                          std::vector<int>(triangles.begin(), triangles.end()),
                                          frame, volume, bar.reporter()))
      return fileError(line.positional()[0], "has no triangle to voxelize");
    bar.finish();
    volume.toMesh(mesh, true);
    return int(EXIT_OK);
  });
}

}  // namespace

bool isRemeshingScheme(const std::string& scheme) {
  return scheme == "loop" || scheme == "butterfly";
}

void remeshingStep(const std::string& scheme, editMesh& mesh, JEV::SYSTEM::callBack* cb) {
  editMesh out;
  JEV::MESH::editMeshInterface from(mesh), to(out);
  if (scheme == "loop")
    REMESHING::computeSubdivLoop(&from, &to);
  else
    REMESHING::computeButterfly(&from, &to, 0.f, 1, false, cb);
  out.checkMeshState();
  out.computeEdges(true);
  out.computeVE();
  out.computeNormalizedFaceNormals();
  out.computeNormalizedVertexNormals();
  mesh = out;
}

const std::vector<command>& remeshingCommands() {
  static const std::vector<command> commands = {
      {"decimate", "IN OUT --faces N|--ratio R [--ascii|--binary]",
       "Reduce the triangles by edge collapses under the quadric error.",
       "Faces are taken as triangles. Open borders stay on their lines and edges with\n"
       "more than two faces stay in place.\n"
       "  --faces N           the number of triangles to keep\n"
       "  --ratio R           the share of triangles to keep, above 0 and at most 1\n",
       withWriteOptions({{"--faces", 1}, {"--ratio", 1}}), runDecimate},
      {"remesh", "IN OUT --length L [-n N] [--verbose] [--ascii|--binary]",
       "Remesh every face to even triangles of edge length about L.",
       "Three rounds of splits of edges above L, collapses of edges below the smaller\n"
       "of 0.3 and 0.8 L, valence flips and relaxation back onto the surface. Faces\n"
       "are taken as triangles; open borders are remeshed along their lines.\n"
       "  --length L          the longest edge length wanted\n"
       "  -n N                run the three rounds N times, 1 to 100 (default 1)\n"
       "  --verbose           print each operation refused and why\n",
       withWriteOptions({{"--length", 1}, {"-n", 1}, {"--verbose", 0}}), runRemesh},
      {"voxelize", "IN OUT --size S [--ascii|--binary]",
       "Write the boundary of the voxels the mesh fills, as quads.",
       "Voxels of edge S that the surface crosses, and those it encloses, are filled;\n"
       "a hole wider than a voxel leaves only the crossed ones.\n"
       "  --size S            the voxel edge length\n",
       withWriteOptions({{"--size", 1}}), runVoxelize},
  };
  return commands;
}

}  // namespace JEVMESH
