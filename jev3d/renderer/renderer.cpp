#include "jev3d/renderer/renderer.h"

#include <algorithm>
#include <memory>

#include "jev3d/math/point4.h"
#include "jev3d/renderer/cameraState.h"
#include "jev3d/renderer/depthOrderingVector.h"
#include "jev3d/renderer/renderableMesh.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/renderstate/blendstate.h"
#include "jev3d/renderer/renderstate/colorMaterialstate.h"
#include "jev3d/renderer/renderstate/lightingstate.h"
#include "jev3d/renderer/renderstate/materialstate.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/renderer/renderstate/wireframestate.h"
#include "jev3d/renderer/transformStack.h"

namespace JEV {
namespace RENDERING {
namespace {

using point3f = MATH::point3<float>;
using matrix4f = MATH::matrix4<float>;

// The overlay colours keep alpha 254 so that the mesh still counts as blended.
void setWireOverlayStates(renderableMesh& mesh) {
  RENDERSTATE::materialstate& m = mesh.getMaterialState();
  m.frontEmissive = CORE::color(0, 0, 0, 254);
  m.frontAmbient = CORE::color(0, 0, 0, 254);
  m.frontDiffuse = CORE::color(255, 255, 255, 254);
  m.frontSpecular = CORE::color(100, 100, 100, 254);
  m.frontShininess = 128.0f;
  m.copyFrontToBack();
  mesh.getColorMaterialState().set(
      RENDERSTATE::colorMaterialstate::COLOR_MATERIAL_AMBIENT_AND_DIFFUSE,
      RENDERSTATE::colorMaterialstate::FACE_FRONT_AND_BACK);
  mesh.setRenderFlag(renderableMesh::RENDER_EDGES);
  mesh.getBlendState().set(true, RENDERSTATE::blendstate::SRC_SRC_ALPHA,
                           RENDERSTATE::blendstate::DST_ONE_MINUS_SRC_ALPHA);
  mesh.getLightingState().enable = false;
  mesh.getWireFrameState().set(RENDERSTATE::wireframestate::FILL_SOLID);
}

void drawItem(renderingContext* rc, depthOrderingItem& item) {
  transformStack* transforms = rc->getTransformStack();
  transforms->push(&item, true);
  for (size_t i = 0; i < item.meshes.size(); ++i) {
    renderableMesh* mesh = item.meshes[i];
    mesh->setOverlayMode(false);
    if (item.useMaterial[i]) item.materials[i].copyTo(mesh->getMaterialState());
    mesh->render(rc);
  }
  if (item.wireOverlay) {
    for (renderableMesh* mesh : item.meshes) {
      mesh->setOverlayMode(true);
      setWireOverlayStates(*mesh);
      mesh->render(rc);
    }
  }
  transforms->pop(true);
}

float squaredDistanceToFirstMesh(const depthOrderingItem& item) {
  if (item.meshes.empty()) return 0.0f;
  return (item.referencePoint - item.meshes.front()->getBoundingCenter()).squaredNorm();
}

}  // namespace

bool renderer::project(const point3f& object, const matrix4f& modelView, const matrix4f& projection,
                       const int viewport[4], point3f& window) {
  const MATH::point4<float> clip =
      MATH::point4<float>(object.x, object.y, object.z, 1.0f) * (modelView * projection);
  if (clip.w == 0.0f) return false;
  const float nx = clip.x / clip.w, ny = clip.y / clip.w, nz = clip.z / clip.w;
  window =
      point3f(float(viewport[0]) + (nx + 1.0f) * 0.5f * float(viewport[2]),
              float(viewport[1]) + (ny + 1.0f) * 0.5f * float(viewport[3]), (nz + 1.0f) * 0.5f);
  return true;
}

bool renderer::unproject(const point3f& window, const matrix4f& modelView,
                         const matrix4f& projection, const int viewport[4], point3f& object) {
  if (viewport[2] == 0 || viewport[3] == 0) return false;
  const matrix4f combined = modelView * projection;
  if (combined.determinant() == 0.0f) return false;
  const MATH::point4<float> ndc(2.0f * (window.x - float(viewport[0])) / float(viewport[2]) - 1.0f,
                                2.0f * (window.y - float(viewport[1])) / float(viewport[3]) - 1.0f,
                                2.0f * window.z - 1.0f, 1.0f);
  const MATH::point4<float> p = ndc * combined.getInverse();
  if (p.w == 0.0f) return false;
  object = point3f(p.x / p.w, p.y / p.w, p.z / p.w);
  return true;
}

bool renderer::pickRay(int x, int y, const matrix4f& modelView, const matrix4f& projection,
                       const int viewport[4], point3f& origin, point3f& direction) {
  point3f nearPoint, farPoint;
  if (!unproject(point3f(float(x), float(y), 0.0f), modelView, projection, viewport, nearPoint) ||
      !unproject(point3f(float(x), float(y), 1.0f), modelView, projection, viewport, farPoint)) {
    return false;
  }
  origin = nearPoint;
  direction = (farPoint - nearPoint).getNormalized();
  return true;
}

bool renderer::project(const point3f& object, const transformState& transform,
                       const cameraState& camera, const RENDERSTATE::viewportstate& viewport,
                       point3f& window) {
  int rect[4];
  viewport.getComputed(rect);
  return project(object, transform.matrix.cV() * camera.view.cV(), camera.projection.cV(), rect,
                 window);
}

bool renderer::unproject(const point3f& window, const transformState& transform,
                         const cameraState& camera, const RENDERSTATE::viewportstate& viewport,
                         point3f& object) {
  int rect[4];
  viewport.getComputed(rect);
  return unproject(window, transform.matrix.cV() * camera.view.cV(), camera.projection.cV(), rect,
                   object);
}

bool renderer::pickRay(int x, int y, const transformState& transform, const cameraState& camera,
                       const RENDERSTATE::viewportstate& viewport, point3f& origin,
                       point3f& direction) {
  int rect[4];
  viewport.getComputed(rect);
  return pickRay(x, y, transform.matrix.cV() * camera.view.cV(), camera.projection.cV(), rect,
                 origin, direction);
}

bool renderer::project(const point3f& object, point3f& window) {
  return project(object, getCurrentTransformState(), getCurrentCameraState(),
                 getCurrentViewportState(), window);
}

bool renderer::unproject(const point3f& window, point3f& object) {
  return unproject(window, getCurrentTransformState(), getCurrentCameraState(),
                   getCurrentViewportState(), object);
}

bool renderer::pickRay(int x, int y, point3f& origin, point3f& direction) {
  return pickRay(x, y, getCurrentTransformState(), getCurrentCameraState(),
                 getCurrentViewportState(), origin, direction);
}

void renderer::insertToDepthOrdering(renderingContext* rc, depthOrderingVector& ordering,
                                     const transformState& transform, renderableMesh* mesh,
                                     depthOrderingType type) {
  insertToDepthOrdering(rc, ordering, transform, mesh, false, meshMaterialStruct(), type);
}

void renderer::insertToDepthOrdering(renderingContext* rc, depthOrderingVector& ordering,
                                     const transformState& transform, renderableMesh* mesh,
                                     bool useMaterial, depthOrderingType type) {
  insertToDepthOrdering(rc, ordering, transform, mesh, useMaterial, meshMaterialStruct(), type);
}

void renderer::insertToDepthOrdering(renderingContext* rc, depthOrderingVector& ordering,
                                     const transformState& transform, renderableMesh* mesh,
                                     bool useMaterial, const meshMaterialStruct& material,
                                     depthOrderingType type) {
  std::vector<renderableMesh*> meshes{mesh};
  insertToDepthOrdering(rc, ordering, transform, meshes, {useMaterial}, {material}, type);
}

void renderer::insertToDepthOrdering(renderingContext* rc, depthOrderingVector& ordering,
                                     const transformState& transform,
                                     std::vector<renderableMesh*>& meshes,
                                     const std::vector<bool>& useMaterial, depthOrderingType type) {
  insertToDepthOrdering(rc, ordering, transform, meshes, useMaterial, {}, type);
}

void renderer::insertToDepthOrdering(renderingContext* rc, depthOrderingVector& ordering,
                                     const transformState& transform,
                                     std::vector<renderableMesh*>& meshes,
                                     const std::vector<bool>& useMaterial,
                                     const std::vector<meshMaterialStruct>& materials,
                                     depthOrderingType type) {
  auto made = std::make_unique<depthOrderingItem>(transform);
  made->meshes = meshes;
  made->type = type;
  // One flag and one material a mesh; what the caller left out is off and default.
  made->useMaterial = useMaterial;
  made->useMaterial.resize(meshes.size(), false);
  made->materials = materials;
  made->materials.resize(meshes.size());
  depthOrderingItem& item = ordering.append(std::move(made));
  if (item.meshes.empty()) return;
  // Only the ray's origin is kept: the near point under the window position.
  point3f direction;
  const renderableMesh& first = *item.meshes.front();
  pickRay(rc->windowX.cV(), rc->windowY.cV(), item, first.getCameraState(),
          first.getViewportState(), item.referencePoint, direction);
}

bool renderer::useBlendDepthOrdering(depthOrderingVector& ordering) const {
  for (int i = 0; i < ordering.size(); ++i) {
    for (const meshMaterialStruct& m : ordering[i].item->materials) {
      if (m.frontDiffuse.a != 255) return true;
    }
  }
  return false;
}

void renderer::renderDepthOrdering(renderingContext* rc, depthOrderingVector& ordering, bool sort) {
  for (int i = 0; i < ordering.size(); ++i) {
    if (ordering[i].item->type == DEPTH_ORDERING_FIRST) drawItem(rc, *ordering[i].item);
  }
  std::vector<depthOrderingItem*> sorted;
  for (int i = 0; i < ordering.size(); ++i) {
    if (ordering[i].item->type == DEPTH_ORDERING_SORTED) sorted.push_back(ordering[i].item.get());
  }
  if (sort) {
    // Nearest first, then reversed: the farthest is drawn first. Ties come in any order.
    std::sort(sorted.begin(), sorted.end(), [](depthOrderingItem* a, depthOrderingItem* b) {
      return squaredDistanceToFirstMesh(*a) < squaredDistanceToFirstMesh(*b);
    });
    std::reverse(sorted.begin(), sorted.end());
  }
  for (depthOrderingItem* item : sorted) drawItem(rc, *item);
  for (int i = 0; i < ordering.size(); ++i) {
    if (ordering[i].item->type == DEPTH_ORDERING_LAST) drawItem(rc, *ordering[i].item);
  }
}

}  // namespace RENDERING
}  // namespace JEV
