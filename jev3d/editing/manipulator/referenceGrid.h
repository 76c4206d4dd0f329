#pragma once

#include "jev3d/editing/manipulator/manipulatorWidget.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// A flat grid of cells drawn as lines, to judge positions and sizes by; it is never
// picked.
class referenceGrid : public manipulatorWidget {
 public:
  // `cells` by `cells` squares of side `spacing`, centred on `centre` in the plane of u
  // and v (unit directions).
  referenceGrid(const MATH::point3<float>& centre, const MATH::point3<float>& u,
                const MATH::point3<float>& v, unsigned cells, float spacing);
  void build(const MATH::point3<float>& centre, const MATH::point3<float>& u,
             const MATH::point3<float>& v, unsigned cells, float spacing);
  unsigned getCells() const { return cells; }
  float getSpacing() const { return spacing; }

 private:
  unsigned cells = 0;
  float spacing = 0.f;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
