#pragma once

#include <vector>

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/editing/manipulator/hitPoint.h"
#include "jev3d/fields/fieldBase.h"
#include "jev3d/math/ray3.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using ray3f = MATH::ray3<float>;

// One handle of a manipulator: a small editable mesh that draws in its colour, or in its
// auxiliary colour while highlighted, and answers pick rays. Shapes derive from it and
// build their mesh in the handle's own space.
class manipulatorWidget : public editMeshNode {
 public:
  manipulatorWidget();
  ~manipulatorWidget() override = default;

  void update(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) override;
  // Takes the colour the state asks for, then draws as an editable mesh.
  void render(RENDERING::renderingContext* rc) override;

  void setColor(const CORE::color& c) { mainColor = c; }
  void setAuxColor(const CORE::color& c) { auxColor = c; }
  const CORE::color& getColor() const { return mainColor; }
  const CORE::color& getAuxColor() const { return auxColor; }
  // The colour the next frame uses.
  const CORE::color& getCurrentColor() const;
  // Highlighted shows the auxiliary colour; normal and highlighted are kept opposite.
  void setHighlighted(bool on);
  // Follows `visible`: a hidden handle is skipped by the walks and by picking.
  void onVisibleChange();

  // Appends the first hit of `ray` (in the space of this handle's parent) on the mesh;
  // false when hidden, not pickable, inactive or missed.
  bool intersectRay(const ray3f& ray, std::vector<hitPoint>& hits);
  // Nearest first, by the distance along the ray.
  static void sortHitPoints(const ray3f& ray, std::vector<hitPoint>& hits);
  // The parameter t on `line` (origin + t direction) of the point closest to `ray`. False
  // for parallel lines. When the closest point of the ray lies behind its origin t is 0,
  // the start of the line.
  static bool closestPointToRay(const ray3f& line, const ray3f& ray, float& t);
  // Where the ray's line meets the plane through `point` with normal `normal`; false when
  // they run parallel.
  static bool intersectPlane(const ray3f& ray, const MATH::point3<float>& point,
                             const MATH::point3<float>& normal, MATH::point3<float>& hit);
  // The ray through window pixel (x, y) under the device's current states.
  static bool manipPickRay(RENDERING::renderingContext* rc, int x, int y, ray3f& ray);
  // The object point of window point (x, y, depth) under the device's current states.
  static bool manipUnproject(RENDERING::renderingContext* rc, const MATH::point3<float>& window,
                             MATH::point3<float>& object);

  // Mean of the live vertices, through the handle's transform.
  MATH::point3<float> getBarycenter() const;
  // Empties the mesh before a shape is built anew.
  void beginShape();
  // Finishes the mesh (edges, normals, face index) and drops the drawn copy.
  void endShape();

  SYSTEM::fieldBase<bool> normalState{true};
  SYSTEM::fieldBase<bool> highlightedState{false};
  SYSTEM::fieldBase<bool> visible{true};
  // What hits on this handle report.
  int widgetId = -1;
  // False leaves the handle out of picking while it still draws.
  bool pickable = true;

 private:
  CORE::color mainColor{200, 200, 200, 255};
  CORE::color auxColor{255, 230, 40, 255};
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
