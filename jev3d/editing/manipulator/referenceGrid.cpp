#include "jev3d/editing/manipulator/referenceGrid.h"

#include <cmath>

#include "jev3d/editing/manipulator/internal/shapeMesh.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using p3 = MATH::point3<float>;

referenceGrid::referenceGrid(const p3& c, const p3& u, const p3& v, unsigned n, float s) {
  build(c, u, v, n, s);
  pickable = false;
  // Only the wire shows.
  getEditMesh().surfaceDrawing = false;
  enableWireframeDisplay(true);
}

void referenceGrid::build(const p3& c, const p3& u, const p3& v, unsigned n, float s) {
  cells = n;
  spacing = s;
  beginShape();
  editMesh& m = getEditMesh();
  const p3 du = u.getNormalized() * s, dv = v.getNormalized() * s;
  const p3 corner = c - (du + dv) * (float(n) * 0.5f);
  for (unsigned j = 0; j <= n; ++j)
    for (unsigned i = 0; i <= n; ++i) m.addVertex(corner + du * float(i) + dv * float(j));
  for (unsigned j = 0; j < n; ++j)
    for (unsigned i = 0; i < n; ++i) {
      const unsigned a = j * (n + 1) + i;
      const unsigned ids[4] = {a, a + 1, a + n + 2, a + n + 1};
      m.addFace(ids, 4);
    }
  endShape();
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
