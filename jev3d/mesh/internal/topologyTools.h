#pragma once

// Shared steps of the topology operations of editMesh. Not installed.

#include <cstdint>
#include <vector>

#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
namespace INTERNAL {

constexpr uint32_t NO_ID = 0xFFFFFFFFu;

// The closing sequence of an edit that changed faces: edges rebuilt keeping wire edges
// (edge ids change, edge flags are lost), VE, then unit face and vertex normals.
void closeTopologyEdit(editMesh& m);

// Rebuilds edges and VE when they are stale, so that lookups through them can be trusted.
void ensureAdjacency(editMesh& m);

// For every FV index k of a live face, the edge of the side from corner k to the next
// corner, through the EF records; NO_ID where no edge names that side.
std::vector<uint32_t> sideEdges(const editMesh& m);

// Live faces on edge e (EF may still list faces deleted since the last rebuild); first
// receives the EF slot of the first of them.
unsigned int liveFacesOnEdge(const editMesh& m, unsigned int e, unsigned int* first = nullptr);

// The live faces of ids, sorted and without repeats; with an empty list, the selected
// live faces.
std::vector<unsigned int> resolveFaceList(const editMesh& m, const std::vector<unsigned int>& ids);

// Selection counters and sums recounted from the bits (after bits were set directly).
void recountSelection(editMesh& m);

// One FV record of corner v of face f.
inline editMesh::faceWEdgeRecord cornerRecord(uint32_t f, uint32_t v) {
  editMesh::faceWEdgeRecord r;
  r.faceId = f;
  r.vertId = v;
  r.user = 0;
  r.localIndex = 0;
  r.zero = 0;
  return r;
}

// Mean position of the corners of f.
MATH::point3<float> faceCentroid(const editMesh& m, unsigned int f);

// Reports a percentage when a reporter is given.
void report(SYSTEM::callBack* cb, float percent);

}  // namespace INTERNAL
}  // namespace MESH
}  // namespace JEV
