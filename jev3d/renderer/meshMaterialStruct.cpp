#include "jev3d/renderer/meshMaterialStruct.h"

#include "jev3d/renderer/renderstate/materialstate.h"

namespace JEV {
namespace RENDERING {

void meshMaterialStruct::copyTo(RENDERSTATE::materialstate& t) const {
  t.set(frontEmissive, frontAmbient, frontDiffuse, frontSpecular, frontShininess, backEmissive,
        backAmbient, backDiffuse, backSpecular, backShininess);
}

void meshMaterialStruct::copyFrom(const RENDERSTATE::materialstate& s) {
  frontEmissive = s.frontEmissive.cV();
  frontAmbient = s.frontAmbient.cV();
  frontDiffuse = s.frontDiffuse.cV();
  frontSpecular = s.frontSpecular.cV();
  frontShininess = s.frontShininess.cV();
  backEmissive = s.backEmissive.cV();
  backAmbient = s.backAmbient.cV();
  backDiffuse = s.backDiffuse.cV();
  backSpecular = s.backSpecular.cV();
  backShininess = s.backShininess.cV();
}

}  // namespace RENDERING
}  // namespace JEV
