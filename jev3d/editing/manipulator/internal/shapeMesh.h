#pragma once

#include <vector>

#include "jev3d/math/point2.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
class editMesh;
namespace EDITING {
namespace MANIPULATOR {
namespace INTERNAL {

using p3 = MATH::point3<float>;

// Two unit vectors u, v with u x v = axis (axis need not be unit; a null axis gives x, y).
void perpendicularFrame(const p3& axis, p3& u, p3& v);

// A surface of revolution about the line from `base` along `axis`: each profile entry is
// (radius, height along the unit axis); a zero radius is one point on the axis (a cone's
// tip or a cap's centre), any other a ring of `segments` vertices. Faces wind outward
// when the heights grow along the profile.
void appendRevolved(editMesh& m, const p3& base, const p3& axis,
                    const std::vector<MATH::point2<float>>& profile, unsigned segments);

// A tube of radius `tube` bent into a circle of radius `radius` around `normal`; `sweep`
// radians of it from the frame's u direction (2 pi closes it).
void appendTorus(editMesh& m, const p3& centre, const p3& normal, float radius, float tube,
                 float sweep, unsigned ringSegments, unsigned tubeSegments);

// The box centre +- u +- v +- w, six quads wound outward for a right-handed (u, v, w).
// Faces come in the order +u, -u, +v, -v, +w, -w.
void appendBox(editMesh& m, const p3& centre, const p3& u, const p3& v, const p3& w);

// One quad, and with `twoSided` its back as a second face.
void appendQuad(editMesh& m, const p3& a, const p3& b, const p3& c, const p3& d, bool twoSided);

// Closes an edit of a shape: edges, VE, unit normals and the face index for picking.
void finishShape(editMesh& m);

}  // namespace INTERNAL
}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
