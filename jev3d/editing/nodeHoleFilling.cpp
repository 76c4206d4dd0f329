#include "jev3d/editing/nodeHoleFilling.h"

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/editing/internal/nodeEdits.h"

namespace JEV {
namespace MESH {
namespace ALGO {

using EDITING::editMeshNode;
using EDITING::INTERNAL::meshChanged;
using EDITING::INTERNAL::meshRewritten;

namespace {

// The neutral interface of a node, as the general path writes it.
meshInterface& asInterface(editMeshNode& node) { return node; }

// A general-path call into the node, then the rebuild that writing through the interface
// asks for.
template <class Call>
bool fillInto(editMeshNode& target, Call call) {
  if (!call(asInterface(target))) return false;
  meshRewritten(target);
  return true;
}

}  // namespace

bool computeHoleFilling(const meshInterface& source, unsigned int maxSize, editMeshNode& target,
                        bool triangulateOnly, SYSTEM::callBack* cb) {
  return fillInto(target, [&](meshInterface& t) {
    return computeHoleFilling(source, maxSize, t, triangulateOnly, cb);
  });
}

bool computeHoleFilling(const meshInterface& source, unsigned int maxSize, editMeshNode& target,
                        bool triangulateOnly, const std::vector<unsigned char>& mask,
                        SYSTEM::callBack* cb) {
  return fillInto(target, [&](meshInterface& t) {
    return computeHoleFilling(source, maxSize, t, triangulateOnly, mask, cb);
  });
}

bool computeHoleFilling(const meshInterface& source, unsigned int maxSize, editMeshNode& target,
                        bool triangulateOnly, const std::vector<std::vector<unsigned int>>& loops,
                        SYSTEM::callBack* cb) {
  return fillInto(target, [&](meshInterface& t) {
    return computeHoleFilling(source, maxSize, t, triangulateOnly, loops, cb);
  });
}

bool computeHoleFilling(const meshInterface& source, unsigned int maxSize, editMeshNode& target,
                        bool triangulateOnly, const std::vector<unsigned char>& mask,
                        const std::vector<std::vector<unsigned int>>& loops, SYSTEM::callBack* cb) {
  return fillInto(target, [&](meshInterface& t) {
    return computeHoleFilling(source, maxSize, t, triangulateOnly, mask, loops, cb);
  });
}

bool computeTessellateHole(const meshInterface& source, editMeshNode& target) {
  return fillInto(target, [&](meshInterface& t) { return computeTessellateHole(source, t); });
}

void computeHoleFillingFilter(editMeshNode& node, unsigned int minSize, unsigned int maxSize,
                              unsigned int passes, SYSTEM::callBack* cb) {
  computeHoleFillingFilter(asInterface(node), minSize, maxSize, passes, cb);
  meshRewritten(node);
}

namespace HOLEFILLING {

HOLE_FILLING_ERROR computeTriangulateHole(editMeshNode& node, computeHoleFillingParams& params) {
  const HOLE_FILLING_ERROR status = computeTriangulateHole(node.getEditMesh(), params);
  meshChanged(node);
  return status;
}

bool trivialHoleFilling(editMeshNode& node, loopList& loops) {
  const bool traced = trivialHoleFilling(node.getEditMesh(), loops);
  // The connectivity was rebuilt: the wire's edge ids are new.
  meshChanged(node);
  return traced;
}

HOLE_FILLING_ERROR checkStartingLoopOrientation(editMeshNode& node,
                                                std::vector<unsigned int>& loop) {
  return checkStartingLoopOrientation(node.getEditMesh(), loop);
}

namespace {

unsigned int told(editMeshNode& node, unsigned int added) {
  if (added) meshChanged(node);
  return added;
}

}  // namespace

unsigned int addPolyFaces(editMeshNode& node, const loopList& loops) {
  return told(node, addPolyFaces(node.getEditMesh(), loops));
}

unsigned int addPolyFacesContaining(editMeshNode& node, const loopList& loops,
                                    const std::vector<unsigned int>& vertices) {
  return told(node, addPolyFacesContaining(node.getEditMesh(), loops, vertices));
}

unsigned int addPolyFacesNotContaining(editMeshNode& node, const loopList& loops,
                                       const std::vector<unsigned int>& vertices) {
  return told(node, addPolyFacesNotContaining(node.getEditMesh(), loops, vertices));
}

}  // namespace HOLEFILLING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
