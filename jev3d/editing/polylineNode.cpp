#include "jev3d/editing/polylineNode.h"

#include "jev3d/editing/internal/polylineMath.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/transformStack.h"
#include "jev3d/renderer/transformState.h"

namespace JEV {
namespace MESH {
namespace EDITING {

namespace {
using VC = RENDERING::vertexDeclaration;
using RS = RENDERING::RENDERSTATE::renderStateEnums;
// The share of the depth range the lines are pulled towards the viewer: enough to win
// over the faces they lie on, too little to show through a fold in front.
constexpr float DEPTH_PULL = 0.0005f;
}  // namespace

polylineNode::polylineNode() : buffer(VC::POS3 | VC::COLOR) {
  overlay.rangeNear = 0.f;
  overlay.rangeFar = 1.f - DEPTH_PULL;
}

polylineNode::~polylineNode() { discard(); }

void polylineNode::setPoints(const std::vector<MATH::point3<float>>& p) {
  points = p;
  vmask.clear();
  cached = false;
}

void polylineNode::updateVmask(const std::vector<unsigned char>& mask) {
  vmask = mask;
  cached = false;
}

float polylineNode::computeLenght() const {
  const unsigned int n = unsigned(points.size());
  double sum = 0.0;
  for (unsigned int i = 0; i < INTERNAL::segmentCount(n, closed.cV()); ++i)
    sum += (points[(i + 1) % n] - points[i]).norm();
  return float(sum);
}

bool polylineNode::cache(RENDERING::renderer* r) {
  if (!r) return false;
  device = r;
  std::vector<MATH::point3<float>> lines;
  const unsigned int n = unsigned(points.size());
  auto shown = [&](unsigned int i) { return vmask.size() != n || vmask[i] != 0; };
  for (unsigned int i = 0; i < INTERNAL::segmentCount(n, closed.cV()); ++i) {
    const unsigned int j = (i + 1) % n;
    if (!shown(i) || !shown(j)) continue;
    lines.push_back(points[i]);
    lines.push_back(points[j]);
  }
  vertexCount = unsigned(lines.size());
  cached = true;
  if (lines.empty()) return false;
  const std::vector<CORE::color> colors(lines.size(), color.cV());
  r->cacheVertexBufferElement(&buffer, VC::POS3, lines.data(), vertexCount);
  r->cacheVertexBufferElement(&buffer, VC::COLOR, colors.data(), vertexCount);
  return true;
}

void polylineNode::discard() {
  std::vector<unsigned> names;
  for (unsigned s = 0; s < buffer.getStreamCount(); ++s)
    if (buffer.getName(s)) names.push_back(buffer.getName(s));
  if (device && !names.empty()) device->addVertexBufferToDiscardList(names);
  buffer = RENDERING::vertexBuffer(VC::POS3 | VC::COLOR);
  cached = false;
}

void polylineNode::render(RENDERING::renderingContext* rc) {
  RENDERING::renderer* r = rc ? rc->getRenderer() : nullptr;
  if (r && !disabled.cV()) {
    // The streams are filled again in place; only another device needs fresh ones.
    if (device && device != r) discard();
    if (!cached) cache(r);
    if (vertexCount > 0) {
      RENDERING::transformState state(transform);
      rc->getTransformStack()->push(&state, true);
      RENDERING::RENDERSTATE::renderStateStack* states = rc->getRenderStateStack();
      states->pushState(RS::LIGHTING_STATE, &unlit, true);
      states->pushState(RS::ZBUFFER_STATE, &overlay, true);
      r->renderGeometry(RENDERING::renderer::DRAW_LINES, &buffer, 0, vertexCount);
      states->popState(RS::ZBUFFER_STATE, true);
      states->popState(RS::LIGHTING_STATE, true);
      rc->getTransformStack()->pop(true);
    }
  }
  SG::node::render(rc);
}

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
