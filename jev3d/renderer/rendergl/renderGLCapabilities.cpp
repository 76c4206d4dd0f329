#include <GL/glew.h>

#include "jev3d/renderer/rendergl/renderGL.h"

namespace JEV {
namespace RENDERING {

// The largest of 16, 8, 4 and 2 samples that the context's GL takes, where it does
// multisampling at all. Without a context, what the last one answered: a count is chosen
// between deleting a context and making the next.
renderer::MULTISAMPLE_TYPE renderGL::getMaxMultiSampleType() {
  if (!makeCurrentContext(false)) return mostSamples;
  mostSamples = MULTISAMPLE_NONE;
  if (!glewIsSupported("GL_ARB_multisample")) return mostSamples;
  GLint most = 0;
  glGetIntegerv(GL_MAX_SAMPLES, &most);
  for (MULTISAMPLE_TYPE type : {MULTISAMPLE_16, MULTISAMPLE_8, MULTISAMPLE_4, MULTISAMPLE_2}) {
    if (int(type) <= most) {
      mostSamples = type;
      break;
    }
  }
  return mostSamples;
}

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
