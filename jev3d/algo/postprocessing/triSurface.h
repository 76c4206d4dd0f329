#pragma once

#include <array>
#include <iosfwd>
#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {

class meshInterface;

namespace POSTPROCESSING {

// The compact analysis surface on which the bilateral filter and the hole filling run:
// vertices, faces, triangle strips and a range grid, with derived data computed on
// demand by the need... steps. Each step runs only if its result is absent and writes
// its start and end on the diagnostic stream (standard output unless set).
class triSurface {
 public:
  using face = std::array<int, 3>;

  std::vector<MATH::point3<float>> vertices;
  std::vector<face> faces;
  // Strips one after another, each a run of vertex indices ended by -1; triangle k of a
  // strip is (s[k], s[k+1], s[k+2]) for even k and (s[k+1], s[k], s[k+2]) for odd k.
  std::vector<int> tstrips;
  // A range grid of gridWidth x gridHeight vertex indices in rows, -1 where no sample.
  std::vector<int> grid;
  int gridWidth = 0, gridHeight = 0;

  // Derived data, empty until needed.
  std::vector<MATH::point3<float>> normals;
  std::vector<std::vector<int>> adjacentFaces;  // faces at each vertex
  std::vector<face> acrossEdge;   // the face across edge i (opposite corner i), -1 if none
  std::vector<float> curvature;   // signed mean curvature per vertex
  std::vector<float> dcurv;       // mean rate of change of the curvature per vertex
  std::vector<float> pointAreas;  // a third of the area of the faces at each vertex
  MATH::point3<float> sphereCenter;
  float sphereRadius = 0.f;
  bool sphereValid = false;

  // Where the steps write; standard output by default.
  std::ostream* diagnostics;

  triSurface();

  // Live vertices and faces of any mesh (polygons as fans; corners out of range drop the
  // face), and normals when it has them.
  void fromMesh(const meshInterface& source);
  // Replaces the target's content: vertices, normals when present, faces.
  void toMesh(meshInterface& target) const;

  void needBoundingSphere();
  void needAdjacentFaces();
  void needAcrossEdge();
  void needCurvatures();
  void needDCurv();
  // Faces from the strips, else from the grid, when there are none.
  void needFaces();
  void needNormals();
  // The unit normals that needNormals would give the vertices whose byte in wanted is
  // set, from the faces alone, bit for bit; the other entries of out are null. For
  // callers that read a few normals of a large surface: only the faces at those vertices
  // are measured, and facesMet, when given, receives them in order (all the faces any
  // further look at those vertices needs). Says on the diagnostic stream what needNormals
  // says, as the normals a caller needs are computed all the same.
  void normalsOf(const std::vector<unsigned char>& wanted, std::vector<MATH::point3<float>>& out,
                 std::vector<face>* facesMet = nullptr) const;
  void needPointAreas();
  void needTStrips();
  void unpackTStrips();
  void triangulateGrid();
  // Removes the faces whose flag is set (a short list counts as false); derived face
  // data is dropped.
  void removeFaces(const std::vector<bool>& toRemove);
  // One split of every face into four through its edge midpoints.
  void subdivide();

  // The median edge length of a sample of faces: the length scale of the smoothing and
  // hole filling. min(F / 2, 333) faces are drawn with the generator below; 0 without
  // faces.
  float featureSize();

  // The sampler's one global word: state = state · 1664525 + 1013904223, index = state
  // mod F. Shared by every surface and thread, as the sample is only a length estimate.
  static void setRandomState(unsigned int state);
  static unsigned int getRandomState();

 private:
  // Writes a formatted message on the diagnostic stream.
  void diag(const char* format, ...) const __attribute__((format(printf, 2, 3)));
  void dropFaceData();
};

}  // namespace POSTPROCESSING
}  // namespace MESH
}  // namespace JEV
