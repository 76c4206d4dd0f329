// jevmesh smooth: every whole-mesh smoothing scheme of the library behind one command.

#include <cmath>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "commandSupport.h"
#include "commands.h"
#include "jev3d/algo/smoothing/bilateralSmooth.h"
#include "jev3d/algo/smoothing/curvatureTangentialSmooth.h"
#include "jev3d/algo/smoothing/laplacianSmooth.h"
#include "jev3d/algo/smoothing/twoStepSmooth.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "progressBar.h"

namespace JEVMESH {

using JEV::MESH::editMesh;
namespace SMOOTHING = JEV::MESH::ALGO::SMOOTHING;

namespace {

// The options of one run, with the defaults the help text gives.
struct smoothOptions {
  std::string scheme = "laplacian";
  long steps = 1;
  bool smoothBorder = false;
  float featureAngle = 60.f;
  long normalSteps = 3;
  long fitSteps = 3;
  bool keepBorder = false;
  float sigmaSpace = 0.5f;
  float sigmaRange = 0.5f;
};

// Reads a whole number in [low, high] into out when the option is given.
bool wholeOption(const commandLine& line, const char* name, long low, long high, long& out) {
  if (!line.has(name)) return true;
  return commandLine::toInt(line.values(name)[0], out) && out >= low && out <= high;
}

// Reads a number above 0 (and finite) into out when the option is given.
bool positiveOption(const commandLine& line, const char* name, float& out) {
  if (!line.has(name)) return true;
  return commandLine::toFloat(line.values(name)[0], out) && out > 0.f && std::isfinite(out);
}

// N rounds of the bilateral filter, each from the last one's positions. The filter's own
// lines go to standard output unless the user asked for quiet.
void bilateral(const commandLine& line, const smoothOptions& o, editMesh& mesh, progressBar& bar) {
  std::streambuf* shown = std::cout.rdbuf();
  if (quiet(line)) std::cout.rdbuf(nullptr);
  std::vector<JEV::MATH::point3<float>> result;
  for (long i = 0; i < o.steps; ++i) {
    if (bar.reporter()) bar.reporter()->setValue(float(100.0 * i / o.steps));
    SMOOTHING::computeBilateralSmooth(mesh, o.sigmaSpace, o.sigmaRange, result, nullptr);
    // One result a live vertex, in order; loaded meshes have no deleted vertex.
    for (unsigned v = 0, k = 0; v < mesh.vn() && k < result.size(); ++v)
      if (!mesh.isVertDeleted(v)) mesh.vPos(v) = result[k++];
  }
  std::cout.rdbuf(shown);
  if (bar.reporter()) bar.reporter()->setValue(100.f);
  mesh.updateBBox();
  mesh.computeNormalizedNormals();
}

int parse(const commandLine& line, smoothOptions& o) {
  if (line.has("--scheme")) o.scheme = line.values("--scheme")[0];
  if (o.scheme != "laplacian" && o.scheme != "two-step" && o.scheme != "tangential" &&
      o.scheme != "bilateral" && o.scheme != "taubin")
    return usageError("smooth", "unknown scheme '" + o.scheme + "'");
  if (!wholeOption(line, "-n", 0, 100000, o.steps))
    return usageError("smooth", "-n takes a whole number from 0 to 100000");
  if (!wholeOption(line, "--normal-steps", 0, 1000, o.normalSteps))
    return usageError("smooth", "--normal-steps takes a whole number from 0 to 1000");
  if (!wholeOption(line, "--fit-steps", 0, 1000, o.fitSteps))
    return usageError("smooth", "--fit-steps takes a whole number from 0 to 1000");
  if (line.has("--feature-angle") &&
      (!commandLine::toFloat(line.values("--feature-angle")[0], o.featureAngle) ||
       !(o.featureAngle >= 0.f && o.featureAngle <= 180.f)))
    return usageError("smooth", "--feature-angle takes degrees from 0 to 180");
  if (!positiveOption(line, "--sigma-space", o.sigmaSpace))
    return usageError("smooth", "--sigma-space takes a number above 0");
  if (!positiveOption(line, "--sigma-range", o.sigmaRange))
    return usageError("smooth", "--sigma-range takes a number above 0");
  o.smoothBorder = line.has("--smooth-border");
  o.keepBorder = line.has("--keep-border");
  return EXIT_OK;
}

// The two-step fitting divides by the face count of a vertex; a vertex of no face comes
// out as not-a-number. The tool gives such vertices their input position back.
unsigned restoreLoneVertices(editMesh& mesh, const std::vector<JEV::MATH::point3<float>>& was) {
  unsigned restored = 0;
  for (unsigned v = 0; v < mesh.vn() && v < was.size(); ++v) {
    const auto& p = mesh.vPos(v);
    if (std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z)) continue;
    mesh.vPos(v) = was[v];
    ++restored;
  }
  if (restored) mesh.computeNormalizedNormals();
  return restored;
}

int smooth(const commandLine& line, const smoothOptions& o, editMesh& mesh) {
  progressBar bar("smoothing", quiet(line));
  if (o.scheme == "laplacian") {
    SMOOTHING::computeLaplacianSmooth(mesh, unsigned(o.steps), o.smoothBorder, bar.reporter());
  } else if (o.scheme == "bilateral") {
    bilateral(line, o, mesh, bar);
  } else if (o.scheme == "taubin") {
    JEV::MESH::editMeshInterface(mesh).taubinSmoothing(unsigned(o.steps), 0.5f, -0.53f,
                                                       o.smoothBorder, bar.reporter());
  } else if (o.scheme == "tangential") {
    SMOOTHING::computeCurvatureTangentialSmooth(mesh, unsigned(o.steps), false);
  } else {
    // Files carry no selection. The filter holds the border only for a selection, so
    // --keep-border smooths all faces as one: the faces on the border then stay.
    std::vector<JEV::MATH::point3<float>> was(mesh.vn());
    for (unsigned v = 0; v < mesh.vn(); ++v) was[v] = mesh.vPos(v);
    if (o.keepBorder) mesh.selectAllFaces();
    SMOOTHING::computeTwoStep(&mesh, &mesh, o.featureAngle, int(o.steps), int(o.normalSteps),
                              int(o.fitSteps), o.keepBorder, o.keepBorder, bar.reporter());
    const unsigned restored = restoreLoneVertices(mesh, was);
    bar.finish();
    if (restored && !quiet(line))
      std::fprintf(stderr, "jevmesh smooth: %u vertices of no face kept in place\n", restored);
  }
  return int(EXIT_OK);
}

int runSmooth(const commandLine& line) {
  smoothOptions o;
  const int status = parse(line, o);
  if (status != EXIT_OK) return status;
  return transform("smooth", line, [&](editMesh& mesh) { return smooth(line, o, mesh); });
}

}  // namespace

command smoothCommand() {
  return {"smooth",
          "IN OUT --scheme laplacian|taubin|bilateral|two-step|tangential -n N",
          "Smooth the surface, N steps (default: laplacian, once).",
          "  --scheme laplacian   umbrella average of the neighbours; border vertices stay\n"
          "  --scheme taubin      a shrinking and an inflating umbrella step each time:\n"
          "                       removes noise without shrinking the shape; border\n"
          "                       vertices stay\n"
          "  --scheme bilateral   pull each vertex toward the planes of the faces near it,\n"
          "                       less so the farther they lie: keeps edges\n"
          "  --scheme two-step    filter face normals, then fit the vertices to them; keeps\n"
          "                       edges sharper than the feature angle\n"
          "  --scheme tangential  umbrella steps with the move along the normal taken back:\n"
          "                       evens the sampling without changing the shape\n"
          "  -n N                 steps (two-step: rounds of normal and vertex steps)\n"
          "  --smooth-border      laplacian, taubin: move border vertices too\n"
          "  --sigma-space S      bilateral: reach, in median edge lengths (default 0.5)\n"
          "  --sigma-range R      bilateral: how far off a face's plane still counts, in\n"
          "                       median edge lengths (default 0.5)\n"
          "  --feature-angle DEG  two-step: faces further apart do not filter each other\n"
          "                       (default 60)\n"
          "  --normal-steps N     two-step: normal filtering steps a round (default 3)\n"
          "  --fit-steps N        two-step: vertex fitting steps a round (default 3)\n"
          "  --keep-border        two-step: the faces on the border stay where they are\n"
          "Two-step writes triangles (polygons are split into fans).\n",
          withWriteOptions({{"--scheme", 1},
                            {"-n", 1},
                            {"--smooth-border", 0},
                            {"--sigma-space", 1},
                            {"--sigma-range", 1},
                            {"--feature-angle", 1},
                            {"--normal-steps", 1},
                            {"--fit-steps", 1},
                            {"--keep-border", 0}}),
          runSmooth};
}

}  // namespace JEVMESH
