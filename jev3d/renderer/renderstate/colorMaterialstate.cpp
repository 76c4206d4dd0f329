#include "jev3d/renderer/renderstate/colorMaterialstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

colorMaterialstate::colorMaterialstate(COLOR_MATERIAL m, FACE_MATERIAL f) { set(m, f); }

void colorMaterialstate::set(COLOR_MATERIAL m, FACE_MATERIAL f) {
  mode = m;
  face = f;
}

void colorMaterialstate::clone(colorMaterialstate* target) const { target->set(mode, face); }

void colorMaterialstate::render(renderingContext* rc) { renderOnSlot(rc, COLOR_MATERIAL_STATE); }

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
