#include "jev3d/editing/nodeSmoothing.h"

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/editing/internal/nodeEdits.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace SMOOTHING {

using EDITING::INTERNAL::meshChanged;

void computeLaplacianSmooth(EDITING::editMeshNode& node, unsigned int iterations, bool smoothBorder,
                            SYSTEM::callBack* cb) {
  computeLaplacianSmooth(node.getEditMesh(), iterations, smoothBorder, cb);
  meshChanged(node);
}

void computeCurvatureTangentialSmooth(EDITING::editMeshNode& node, unsigned int iterations,
                                      bool selectedOnly) {
  computeCurvatureTangentialSmooth(node.getEditMesh(), iterations, selectedOnly);
  meshChanged(node);
}

void computeTwoStep(const EDITING::editMeshNode* source, EDITING::editMeshNode* target,
                    float featureAngleDeg, int iterations, int normalSteps, int fitSteps,
                    bool keepBorder, bool selectedOnly, SYSTEM::callBack* cb) {
  computeTwoStep(source ? &source->getEditMesh() : nullptr,
                 target ? &target->getEditMesh() : nullptr, featureAngleDeg, iterations,
                 normalSteps, fitSteps, keepBorder, selectedOnly, cb);
  if (target) meshChanged(*target);
}

}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
