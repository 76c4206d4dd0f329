#pragma once

#include "jev3d/math/matrix4.h"
#include "jev3d/renderer/cameraState.h"
#include "jev3d/renderer/renderstate/alphastate.h"
#include "jev3d/renderer/renderstate/blendstate.h"
#include "jev3d/renderer/renderstate/clipPlanestate.h"
#include "jev3d/renderer/renderstate/colorMaterialstate.h"
#include "jev3d/renderer/renderstate/colorbufferstate.h"
#include "jev3d/renderer/renderstate/cullstate.h"
#include "jev3d/renderer/renderstate/fogState.h"
#include "jev3d/renderer/renderstate/lightingstate.h"
#include "jev3d/renderer/renderstate/lightstate.h"
#include "jev3d/renderer/renderstate/materialstate.h"
#include "jev3d/renderer/renderstate/pointSizestate.h"
#include "jev3d/renderer/renderstate/scissorstate.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/renderer/renderstate/wireframestate.h"
#include "jev3d/renderer/renderstate/zbufferstate.h"
#include "jev3d/renderer/transformState.h"

namespace JEV {
namespace RENDERING {
namespace INSTANCING {
class renderTargetInstance;
class textureInstance;
}  // namespace INSTANCING

// A device's own copy of every state it was last given, which its getCurrent...
// operations return. A back end stores each state it is given here and sends it on only
// when it differs from the copy: the one place where repeated states are skipped.
class deviceStateCopies : public RENDERSTATE::renderStateEnums {
 public:
  deviceStateCopies();

  // Each store takes the state's values and says whether they differ from the copy held,
  // that is whether the device must be sent them.
  bool store(const RENDERSTATE::alphastate& s);
  bool store(const RENDERSTATE::clipPlanestate& s);
  bool store(const RENDERSTATE::blendstate& s);
  bool store(const RENDERSTATE::cullstate& s);
  bool store(const RENDERSTATE::lightingstate& s);
  // Lights past the 24 copies are not kept and always count as changed.
  bool store(const RENDERSTATE::lightstate& s);
  bool store(const RENDERSTATE::colorMaterialstate& s);
  bool store(const RENDERSTATE::materialstate& s);
  bool store(const RENDERSTATE::zbufferstate& s);
  bool store(const RENDERSTATE::colorbufferstate& s);
  // The computed rectangles are what the device gets.
  bool store(const RENDERSTATE::viewportstate& s);
  bool store(const RENDERSTATE::scissorstate& s);
  bool store(const RENDERSTATE::wireframestate& s);
  bool store(const RENDERSTATE::pointSizestate& s);
  bool store(const RENDERSTATE::fogState& s);
  // Units past the 33 copies are not kept and always count as changed.
  bool store(TEXTURE_ACTIVE unit, INSTANCING::textureInstance* texture);
  bool storeCamera(const MATH::matrix4<float>& projection, const MATH::matrix4<float>& view);
  bool storeTransform(const MATH::matrix4<float>& matrix);

  RENDERSTATE::alphastate alpha;
  RENDERSTATE::clipPlanestate clipPlanes[CLIP_PLANE_COUNT];
  RENDERSTATE::blendstate blend;
  RENDERSTATE::cullstate cull;
  RENDERSTATE::lightingstate lighting;
  RENDERSTATE::lightstate lights[LIGHT_SOURCE_COUNT];
  RENDERSTATE::colorMaterialstate colorMaterial;
  RENDERSTATE::materialstate material;
  INSTANCING::textureInstance* textures[TEXTURE_ACTIVE_COUNT] = {};
  RENDERSTATE::zbufferstate zbuffer;
  RENDERSTATE::colorbufferstate colorBuffer;
  RENDERSTATE::viewportstate viewport;
  RENDERSTATE::scissorstate scissor;
  RENDERSTATE::wireframestate wireframe;
  RENDERSTATE::pointSizestate pointSize;
  RENDERSTATE::fogState fog;
  INSTANCING::renderTargetInstance* renderTarget = nullptr;
  cameraState camera;
  transformState transform;
};

}  // namespace RENDERING
}  // namespace JEV
