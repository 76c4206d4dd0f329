#pragma once

#include <memory>
#include <vector>

#include "jev3d/editing/bSplineCurveNode.h"
#include "jev3d/editing/polylineDescriptor.h"
#include "jev3d/editing/polylineNode.h"
#include "jev3d/fields/fieldBase.h"
#include "jev3d/math/point3.h"
#include "jev3d/math/ray3.h"

namespace JEV {
namespace SYSTEM {
class undoRedoStack;
}
namespace MESH {
namespace EDITING {

// Where smart insertion put the last control point.
enum SMART_INSERTION_RES : unsigned int {
  SMART_INSERTION_NONE = 0,     // nothing inserted: no polyline, or the point named no mesh
  SMART_INSERTION_FIRST = 1,    // the polyline was empty
  SMART_INSERTION_PREPEND = 2,  // before the first point, the nearest end
  SMART_INSERTION_APPEND = 3,   // after the last point, the nearest end
  SMART_INSERTION_BETWEEN = 4,  // into the segment nearest to the point
};

// Edits the control points of one polyline on its meshes with the mouse: a click on a
// surface adds a point (smart insertion), a press on a point picks it and dragging moves
// it over the surfaces, snapped to the face under the pointer. Shows the polyline through a
// polylineNode and its B-spline through a bSplineCurveNode, which the caller links into
// the scene. With an undo stack, every finished step pushes a snapshot of the polyline
// (and setting a polyline pushes the first one).
class polylineControlPointPositionModifier {
 public:
  polylineControlPointPositionModifier();
  virtual ~polylineControlPointPositionModifier() = default;
  polylineControlPointPositionModifier(const polylineControlPointPositionModifier&) = delete;
  polylineControlPointPositionModifier& operator=(const polylineControlPointPositionModifier&) =
      delete;

  // Edits d (not owned; null stops editing) and shows it.
  void set(polylineDescriptor* d);
  polylineDescriptor* get() const { return descriptor; }
  polylineNode* getPolylineNode() { return &polyline; }
  const polylineNode* getPolylineNode() const { return &polyline; }
  bSplineCurveNode* getSplineNode() { return &spline; }
  const bSplineCurveNode* getSplineNode() const { return &spline; }
  void setUndoRedoStack(SYSTEM::undoRedoStack* s) { undoStack = s; }
  // The frame both nodes draw in: that of the meshes the points lie on.
  void setTransform(const MATH::matrix4<float>& m) {
    polyline.transform = m;
    spline.transform = m;
  }
  // Stops editing and hides both nodes.
  void clear();
  // Shows the control points as they are now, in order (both nodes hidden below 2 points);
  // with updateSpline the B-spline is sampled again too.
  void updatePolyline(bool updateSpline);

  // Makes point i current (-1 for none); false when out of range.
  bool selectControlPoint(int i);
  // Adds a point on face of mesh meshIndex: by smart insertion, or at the end.
  SMART_INSERTION_RES addControlPoint(const MATH::point3<float>& p, unsigned int face,
                                      unsigned int meshIndex, bool smart = true);
  SMART_INSERTION_RES getSmartInsertionResult() const { return smartResult; }
  // Inserts a point between i and i + 1; false when i + 1 is out of range.
  bool addControlPointBetween(unsigned int i, const MATH::point3<float>& p, unsigned int face,
                              unsigned int meshIndex);
  bool removeControlPoint(unsigned int i);
  // Moves point from to index to, the others keeping their order.
  bool moveToNewIndex(unsigned int from, unsigned int to);
  // In range, on a mesh of the polyline, on one of that mesh's faces.
  bool isControlPointValid(int i) const;
  // Valid and not hidden from eye by a surface.
  bool isControlPointVisible(int i, const MATH::point3<float>& eye) const;
  // The control point nearest to p within maxDistance, or -1.
  int closestPoint3(const MATH::point3<float>& p, float maxDistance) const;
  // The segment (from point i to i + 1) nearest to p within maxDistance, or -1.
  int findNearSegment(const MATH::point3<float>& p, float maxDistance) const;
  // The first surface of the polyline's meshes met by the ray.
  bool rayIntersect(const MATH::ray3<float>& ray, MATH::point3<float>& hit, unsigned int& face,
                    unsigned int& meshIndex) const;
  // True when a surface crosses the segment a-b away from its ends.
  bool testLineIntersection(const MATH::point3<float>& a, const MATH::point3<float>& b) const;
  // True when a surface lies between eye and point i.
  bool testControlPointOcclusion(unsigned int i, const MATH::point3<float>& eye) const;
  // The control point within pickRadius of the ray, nearest its origin, or -1.
  int startPicking(const MATH::ray3<float>& ray) const;

  // Mouse, from the window's events with the pick ray of the pointer.
  void mouseDown(int x, int y, const MATH::ray3<float>& ray);
  void mouseMotion(int x, int y, const MATH::ray3<float>& ray);
  void mouseUp(int x, int y, const MATH::ray3<float>& ray);
  // A press and release without a drag: adds a point where the ray meets a surface.
  virtual void onMouseClick(int x, int y, const MATH::ray3<float>& ray);
  // A drag step: the current point goes where the ray meets a surface.
  virtual void onMouseMove(int x, int y, const MATH::ray3<float>& ray);
  // Hovering: hoverCP names the control point under the ray, or -1.
  virtual void onMouseHover(const MATH::ray3<float>& ray);
  // Draws both nodes, for callers that draw the editor by hand instead of linking its
  // nodes into the scene.
  void render(RENDERING::renderingContext* rc);

  // Both must read true for the editor to hear the mouse.
  SYSTEM::fieldBase<bool> enabled{true};
  SYSTEM::fieldBase<bool> visible{true};
  // 0 when no point is held; from 1 up, one more per drag step.
  SYSTEM::fieldBase<int> dragCount{0};
  // Set at the first step of a drag.
  SYSTEM::fieldBase<bool> moved{false};
  // When both read true, updatePolyline hides the segments of points whose widgets are hidden.
  SYSTEM::fieldBase<bool> useWidgets{false};
  SYSTEM::fieldBase<bool> widgetsShown{false};
  SYSTEM::fieldBase<int> hoverCP{-1};
  // The polyline's segments are drawn cut into pieces no longer than this, the inner points
  // pulled onto the surfaces, so that the line follows the surface instead of cutting
  // under it; 0 draws straight chords, a negative value takes 1/64 of the control points'
  // extent.
  SYSTEM::fieldBase<float> drapeLength{-1.f};
  // How near the ray a control point is picked, in scene units.
  SYSTEM::fieldBase<float> pickRadius{0.05f};

 private:
  void pushSnapshot();
  // The undo and redo delegates' target: puts a snapshot's points back.
  void restore(polylineDescriptor* snapshot);

  polylineDescriptor* descriptor = nullptr;
  SYSTEM::undoRedoStack* undoStack = nullptr;
  polylineNode polyline;
  bSplineCurveNode spline;
  SMART_INSERTION_RES smartResult = SMART_INSERTION_NONE;
  bool pressedOnSurface = false;
};

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
