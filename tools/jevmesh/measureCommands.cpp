#include <cmath>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "commandSupport.h"
#include "commands.h"
#include "jev3d/algo/measurement/distance.h"
#include "jev3d/math/mathBase.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "meshFiles.h"
#include "progressBar.h"

namespace JEVMESH {

using JEV::MESH::editMesh;
using JEV::MESH::editMeshInterface;
using JEV::MESH::ALGO::MEASUREMENT::distance;

namespace {

bool hasLiveFace(const editMesh& m) {
  for (unsigned f = 0; f < m.fn(); ++f)
    if (!m.isFaceDeleted(f)) return true;
  return false;
}

// Prints mean, RMS and largest size of the measured distances under `label`; false when
// no vertex found the other surface.
bool printSummary(const std::string& label, const editMesh& from,
                  const std::vector<float>& distances) {
  double sum = 0, squares = 0, largest = 0;
  unsigned count = 0;
  for (unsigned v = 0; v < from.vn() && v < distances.size(); ++v) {
    if (from.isVertDeleted(v) || !(distances[v] < JEV::MATH::mathBase<float>::MAX_T())) continue;
    const double d = std::fabs(double(distances[v]));
    sum += d;
    squares += d * d;
    largest = std::max(largest, d);
    ++count;
  }
  // Values line up after the longest label, "a to b mean:".
  const auto field = [&](const std::string& what, const std::string& value) {
    const std::string head = label + " " + what + ":";
    std::cout << head << std::string(head.size() < 16 ? 16 - head.size() : 1, ' ') << value << "\n";
  };
  if (count == 0) {
    field("mean", "nothing to measure against");
    return false;
  }
  const auto number = [](double x) {
    std::ostringstream text;
    text << x;
    return text.str();
  };
  field("mean", number(sum / count));
  field("rms", number(std::sqrt(squares / count)));
  field("max", number(largest));
  return true;
}

// Distances from A's vertices to B's surface and back; with --out, A written with its
// signed distance to B as vertex colours.
int runDistance(const commandLine& line) {
  int status = EXIT_OK;
  if (!checkFiles("distance", line, 2, status)) return status;
  const bool writeOut = line.has("--out");
  const std::string outPath = writeOut ? line.values("--out")[0] : std::string();
  if (writeOut && kindOfPath(outPath) != fileKind::PLY)
    return usageError("distance", "--out takes a .ply file, the format that keeps colours");
  editMesh a, b;
  if ((status = load(line, line.positional()[0], a)) != EXIT_OK) return status;
  if ((status = load(line, line.positional()[1], b)) != EXIT_OK) return status;
  editMeshInterface viewA(a), viewB(b);
  const float far = JEV::MATH::mathBase<float>::MAX_T();

  std::vector<float> aToB, bToA;
  if (hasLiveFace(b)) {
    progressBar bar("A to B", quiet(line));
    distance::computeSignedDistance(&viewA, &viewB, true, far, aToB, bar.reporter());
  }
  if (hasLiveFace(a)) {
    progressBar bar("B to A", quiet(line));
    distance::computeDistance(&viewB, &viewA, far, bToA, bar.reporter());
  }
  const bool measuredA = printSummary("a to b", a, aToB);
  const bool measuredB = printSummary("b to a", b, bToA);
  if (!measuredA && !measuredB)
    return fileError(line.positional()[0], "neither mesh has a face to measure against");
  if (!writeOut) return EXIT_OK;

  float lo = far, hi = -far;
  for (unsigned v = 0; v < a.vn() && v < aToB.size(); ++v)
    if (!a.isVertDeleted(v) && aToB[v] < far)
      lo = std::min(lo, aToB[v]), hi = std::max(hi, aToB[v]);
  viewA.vertexColorResize(a.vn());
  for (unsigned v = 0; v < a.vn(); ++v)
    a.vCol(v) = distance::getColor(lo, hi, v < aToB.size() ? aToB[v] : far);
  return save(line, outPath, a);
}

}  // namespace

command distanceCommand() {
  return {"distance",
          "A B [--out COLOURED.ply] [--ascii|--binary]",
          "Measure how far two meshes lie from each other, both ways.",
          "For each vertex of A the distance to the surface of B, and of each vertex of B\n"
          "to the surface of A: prints their mean, root mean square and maximum (the\n"
          "largest of the two maxima is the Hausdorff distance of the vertices).\n"
          "  --out FILE          write A with its signed distance to B as vertex colours:\n"
          "                      five equal bands from the most negative (blue, behind B)\n"
          "                      through green to the most positive (red); grey where\n"
          "                      nothing was measured\n",
          withWriteOptions({{"--out", 1}}),
          runDistance};
}

}  // namespace JEVMESH
