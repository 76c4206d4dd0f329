#pragma once

// A manipulator seen by a fixed camera: 90 degrees, square, near 1 and far 100, five
// units back from the origin, over a viewport of 200 by 200 pixels. Points of the plane
// z = 0 land on pixel (100 + 20 x, 100 + 20 y): twenty pixels to a unit.
#include <gtest/gtest.h>

#include "jev3d/editing/manipulator/manipulator.h"
#include "jev3d/system/inputEvent.h"

namespace manipTest {

using matrix4f = JEV::MATH::matrix4<float>;
using p3 = JEV::MATH::point3<float>;

constexpr float PIXELS_PER_UNIT = 20.f;

inline void lookFromFront(JEV::MESH::EDITING::MANIPULATOR::manipulator& m) {
  const float n = 1.0f, f = 100.0f;
  const matrix4f projection(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, (f + n) / (f - n), 1, 0, 0,
                            -2 * f * n / (f - n), 0);
  matrix4f view;
  view[14] = 5.0f;
  const int viewport[4] = {0, 0, 200, 200};
  m.setViewState(viewport, projection, view, matrix4f());
}

// The window pixel of a point of the plane z = 0.
inline float pixelX(float x) { return 100.f + PIXELS_PER_UNIT * x; }
inline float pixelY(float y) { return 100.f + PIXELS_PER_UNIT * y; }

inline JEV::SYSTEM::inputEvent event(JEV::SYSTEM::EVENT_TYPE type, float x, float y) {
  return JEV::SYSTEM::inputEvent(type, x, y, 0, 0, 0);
}

// A whole drag of the right button (the default mask's kind) through the given pixels.
inline void rightDrag(JEV::MESH::EDITING::MANIPULATOR::manipulator& m, float x0, float y0, float x1,
                      float y1, int steps = 4) {
  using namespace JEV::SYSTEM;
  const inputEvent enter = event(MOUSE_RIGHT_DRAG_ENTER, x0, y0);
  m.onMouseDragEnter(&enter);
  for (int i = 1; i <= steps; ++i) {
    const float s = float(i) / float(steps);
    const inputEvent step = event(MOUSE_RIGHT_DRAG, x0 + (x1 - x0) * s, y0 + (y1 - y0) * s);
    m.onMouseDrag(&step);
  }
  const inputEvent leave = event(MOUSE_RIGHT_DRAG_LEAVE, x1, y1);
  m.onMouseDragLeave(&leave);
}

}  // namespace manipTest
