#include "jev3d/renderer/rendergl/renderGL.h"

namespace JEV {
namespace RENDERING {

// The platform makes contexts without sample buffers, so multisampling is never offered.
renderer::MULTISAMPLE_TYPE renderGL::getMaxMultiSampleType() { return MULTISAMPLE_NONE; }

bool renderGL::setCurrentVertexProcessingType(VERTEXPROCESSING_TYPE type) {
  vertexProcessing = type;
  return true;
}

bool renderGL::setCurrentMultiSampleType(MULTISAMPLE_TYPE type) {
  if (type > getMaxMultiSampleType()) return false;
  multiSample = type;
  return true;
}

}  // namespace RENDERING
}  // namespace JEV
