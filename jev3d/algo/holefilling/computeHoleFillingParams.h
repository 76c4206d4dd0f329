#pragma once

#include <vector>

namespace JEV {
namespace MESH {
namespace ALGO {

// Status of the editing path of hole filling (HOLEFILLING).
enum HOLE_FILLING_ERROR : unsigned int {
  HOLE_FILLING_NOT_STARTED = 0,
  HOLE_FILLING_NO_HOLE = 1,
  // A loop of fewer than two vertices, or whose first two vertices share no edge.
  HOLE_FILLING_BAD_LOOP = 2,
  HOLE_FILLING_FAILED = 3,
  // The normal end.
  HOLE_FILLING_DONE = 4,
};

// The settings a fill dialog hands to the editing path. computeTriangulateHole reads
// smoothRounds and the loop choice (loopChoice with the two vertex lists); the weights
// and counts beside them are carried for the dialog that owns them and read by nothing
// here yet.
struct computeHoleFillingParams {
  // Which loops computeTriangulateHole fills: 0 every loop, 1 only loops through a
  // vertex of fillVertices, 2 only loops through none of skipVertices.
  unsigned int loopChoice = 0;
  // Rings of the patch the dialog refines.
  unsigned int refineRings = 10;
  // The dialog's weights of normals, angles and lengths in its quality measure.
  float normalWeight = 10.0f;
  float angleWeight = 3.0f;
  float lengthWeight = 0.7f;
  // The dialog's fairing rounds.
  unsigned int fairRounds = 10;
  // Rounds of smoothing that pull the new vertices from the loop's barycentre to a fair
  // surface.
  unsigned int smoothRounds = 1000;
  std::vector<unsigned int> fillVertices;
  std::vector<unsigned int> skipVertices;
};

}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
