#include "jev3d/editing/manipulator/internal/shapeMesh.h"

#include <cmath>

#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {
namespace INTERNAL {

void perpendicularFrame(const p3& axis, p3& u, p3& v) {
  p3 a = axis.getNormalized();
  if (a.squaredNorm() == 0.f) {
    u = p3(1, 0, 0);
    v = p3(0, 1, 0);
    return;
  }
  // The world axis least aligned with `a` gives a well-conditioned cross product.
  const p3 helper = std::fabs(a.x) < 0.9f ? p3(1, 0, 0) : p3(0, 1, 0);
  v = a.cross(helper).normalize();
  u = v.cross(a).normalize();
}

void appendRevolved(editMesh& m, const p3& base, const p3& axis,
                    const std::vector<MATH::point2<float>>& profile, unsigned segments) {
  if (segments < 3 || profile.size() < 2) return;
  p3 u, v;
  perpendicularFrame(axis, u, v);
  const p3 a = axis.getNormalized();
  // First vertex of each profile entry; a point entry has one vertex, a ring `segments`.
  std::vector<unsigned> first;
  const float step = 2.f * float(M_PI) / float(segments);
  for (const MATH::point2<float>& e : profile) {
    first.push_back(m.vn());
    const p3 centre = base + a * e.y;
    if (e.x == 0.f) {
      m.addVertex(centre);
      continue;
    }
    for (unsigned j = 0; j < segments; ++j) {
      const float t = step * float(j);
      m.addVertex(centre + (u * std::cos(t) + v * std::sin(t)) * e.x);
    }
  }
  for (size_t i = 0; i + 1 < profile.size(); ++i) {
    const bool lowPoint = profile[i].x == 0.f, highPoint = profile[i + 1].x == 0.f;
    if (lowPoint && highPoint) continue;
    for (unsigned j = 0; j < segments; ++j) {
      const unsigned k = (j + 1) % segments;
      if (lowPoint) {
        const unsigned ids[3] = {first[i], first[i + 1] + k, first[i + 1] + j};
        m.addFace(ids, 3);
      } else if (highPoint) {
        const unsigned ids[3] = {first[i] + j, first[i] + k, first[i + 1]};
        m.addFace(ids, 3);
      } else {
        const unsigned ids[4] = {first[i] + j, first[i] + k, first[i + 1] + k, first[i + 1] + j};
        m.addFace(ids, 4);
      }
    }
  }
}

void appendTorus(editMesh& m, const p3& centre, const p3& normal, float radius, float tube,
                 float sweep, unsigned ringSegments, unsigned tubeSegments) {
  if (ringSegments < 3 || tubeSegments < 3) return;
  p3 u, v;
  perpendicularFrame(normal, u, v);
  const p3 n = normal.getNormalized();
  const bool closed = sweep >= 2.f * float(M_PI) - 1e-6f;
  const unsigned rings = closed ? ringSegments : ringSegments + 1;
  const unsigned base = m.vn();
  for (unsigned i = 0; i < rings; ++i) {
    const float t = sweep * float(i) / float(ringSegments);
    const p3 out = u * std::cos(t) + v * std::sin(t);
    for (unsigned j = 0; j < tubeSegments; ++j) {
      const float s = 2.f * float(M_PI) * float(j) / float(tubeSegments);
      m.addVertex(centre + out * (radius + tube * std::cos(s)) + n * (tube * std::sin(s)));
    }
  }
  for (unsigned i = 0; i < ringSegments; ++i) {
    const unsigned i1 = (i + 1) % rings;
    for (unsigned j = 0; j < tubeSegments; ++j) {
      const unsigned j1 = (j + 1) % tubeSegments;
      const unsigned ids[4] = {base + i * tubeSegments + j, base + i1 * tubeSegments + j,
                               base + i1 * tubeSegments + j1, base + i * tubeSegments + j1};
      m.addFace(ids, 4);
    }
  }
}

void appendBox(editMesh& m, const p3& centre, const p3& u, const p3& v, const p3& w) {
  // Corner k has +u for bit 0, +v for bit 1, +w for bit 2.
  const unsigned base = m.vn();
  for (unsigned k = 0; k < 8; ++k)
    m.addVertex(centre + u * ((k & 1) ? 1.f : -1.f) + v * ((k & 2) ? 1.f : -1.f) +
                w * ((k & 4) ? 1.f : -1.f));
  static const unsigned sides[6][4] = {{1, 3, 7, 5}, {0, 4, 6, 2}, {2, 6, 7, 3},
                                       {0, 1, 5, 4}, {4, 5, 7, 6}, {0, 2, 3, 1}};
  for (const auto& side : sides) {
    const unsigned ids[4] = {base + side[0], base + side[1], base + side[2], base + side[3]};
    m.addFace(ids, 4);
  }
}

void appendQuad(editMesh& m, const p3& a, const p3& b, const p3& c, const p3& d, bool twoSided) {
  const unsigned base = m.vn();
  m.addVertex(a);
  m.addVertex(b);
  m.addVertex(c);
  m.addVertex(d);
  const unsigned front[4] = {base, base + 1, base + 2, base + 3};
  m.addFace(front, 4);
  if (!twoSided) return;
  // The back has vertices of its own, so that each side keeps its own normals.
  const unsigned back = m.vn();
  m.addVertex(d);
  m.addVertex(c);
  m.addVertex(b);
  m.addVertex(a);
  const unsigned ids[4] = {back, back + 1, back + 2, back + 3};
  m.addFace(ids, 4);
}

void finishShape(editMesh& m) {
  m.checkMeshState();
  m.computeEdges(true);
  m.computeVE();
  m.computeNormalizedFaceNormals();
  m.computeNormalizedVertexNormals();
  m.computeFABBTree(8);
}

}  // namespace INTERNAL
}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
