#pragma once

#include <vector>

#include "jev3d/algo/holefilling/computeHoleFillingParams.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
class editMesh;
namespace ALGO {
namespace HOLEFILLING {

// The editing path of hole filling: it works on the editable mesh with the kernel's own
// topology. Loops are lists of vertex ids; the loops this path makes run the way a face
// closing them must (against the faces on the border), which is the order that
// checkStartingLoopOrientation settles on.
using loopList = std::vector<std::vector<unsigned int>>;

// Fills every chosen loop (params.loopChoice) with a fan around a new vertex at the
// loop's barycentre (a loop of three with one triangle), then smooths the new vertices
// that do not touch the old mesh params.smoothRounds times; the rim keeps its positions
// bit for bit. Edges, VE and unit normals are rebuilt; the new faces stay selected
// minus the ring next to the old mesh. Returns HOLE_FILLING_DONE.
HOLE_FILLING_ERROR computeTriangulateHole(editMesh& mesh, computeHoleFillingParams& params);

// Rebuilds edges and VE, then collects the border loops. A border that passes a vertex
// twice gives a loop for each stretch between the visits. False, with no loops, when the
// border cannot be walked (faces on it wound against each other).
bool trivialHoleFilling(editMesh& mesh, loopList& loops);

// HOLE_FILLING_BAD_LOOP for a loop of fewer than two vertices or whose first two share
// no edge. Otherwise the loop is reversed when the face on that edge runs from its
// first vertex to its second, and the result is HOLE_FILLING_DONE. Needs valid edges.
HOLE_FILLING_ERROR checkStartingLoopOrientation(editMesh& mesh, std::vector<unsigned int>& loop);

// Fans the loop around vertex id next, which it then advances: faces (loop[i],
// loop[i + 1], centre) in loop order. A loop of three becomes its own triangle and uses
// no new vertex; shorter loops make nothing.
void triangulateFan(const std::vector<unsigned int>& loop, unsigned int& next,
                    std::vector<MATH::point3<int>>& faces);

// One polygon per loop of at least three vertices (of those through one of vertices, of
// those through none of them), with the closing rebuild of edges, VE and unit normals.
// Return how many polygons were added.
unsigned int addPolyFaces(editMesh& mesh, const loopList& loops);
unsigned int addPolyFacesContaining(editMesh& mesh, const loopList& loops,
                                    const std::vector<unsigned int>& vertices);
unsigned int addPolyFacesNotContaining(editMesh& mesh, const loopList& loops,
                                       const std::vector<unsigned int>& vertices);

// Empties each loop of more than limit vertices and keeps its slot; returns how many.
unsigned int discardPolyFacesGreaterThan(loopList& loops, unsigned int limit);
// Empty each loop through one of the vertices (through none of them), keeping the
// slots as above; return how many were emptied.
unsigned int discardLoopsContaining(loopList& loops, const std::vector<unsigned int>& vertices);
unsigned int discardLoopsNotContaining(loopList& loops, const std::vector<unsigned int>& vertices);

// A copy of the loop with the most vertices, the first of equals; empty without loops.
std::vector<unsigned int> getGreatestLoop(const loopList& loops);

}  // namespace HOLEFILLING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
