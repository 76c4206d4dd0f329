#include "jev3d/mesh/aabbtreeEditMeshFaceWrap.h"

namespace JEV {
namespace MESH {

template <class T>
bool aabbtreeEditMeshFaceWrap<T>::closestPoint(const MATH::point3<float>& p,
                                               float maxSquaredDistance,
                                               MATH::closestPointHit& hit) const {
  if (!tree.closestPoint(p, maxSquaredDistance, hit)) return false;
  toFanIndex(hit.triangle, hit.face);
  return true;
}

template <class T>
bool aabbtreeEditMeshFaceWrap<T>::firstHit(const MATH::point3<float>& origin,
                                           const MATH::point3<float>& direction, float tMax,
                                           MATH::rayHit& hit) const {
  if (!tree.firstHit(origin, direction, tMax, hit)) return false;
  toFanIndex(hit.triangle, hit.face);
  return true;
}

template <class T>
std::size_t aabbtreeEditMeshFaceWrap<T>::allHits(const MATH::point3<float>& origin,
                                                 const MATH::point3<float>& direction, float tMax,
                                                 std::vector<MATH::rayHit>& hits) const {
  tree.allHits(origin, direction, tMax, hits);
  for (MATH::rayHit& h : hits) toFanIndex(h.triangle, h.face);
  return hits.size();
}

template class aabbtreeEditMeshFaceWrap<float>;

}  // namespace MESH
}  // namespace JEV
