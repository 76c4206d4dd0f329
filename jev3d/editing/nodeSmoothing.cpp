#include "jev3d/editing/nodeSmoothing.h"

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/editing/internal/nodeEdits.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace SMOOTHING {

using EDITING::INTERNAL::meshChanged;

namespace {

// The vertices a brush reached, from its byte per vertex.
void brushed(EDITING::editMeshNode& node, const std::vector<unsigned char>& modified) {
  std::vector<unsigned int> reached;
  for (unsigned int v = 0; v < modified.size(); ++v)
    if (modified[v]) reached.push_back(v);
  EDITING::INTERNAL::verticesMoved(node, reached);
}

}  // namespace

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

void localSmoothingFunctor::localSmoothing(EDITING::editMeshNode& node,
                                           const std::vector<unsigned int>& centres, float radius,
                                           std::vector<unsigned char>& modified) {
  localSmoothing(node.getEditMesh(), centres, radius, modified);
  brushed(node, modified);
}

void localSmoothingFunctor::localSmoothing(EDITING::editMeshNode& node,
                                           const std::vector<unsigned char>& mask,
                                           const std::vector<unsigned int>& centres, float radius,
                                           std::vector<unsigned char>& modified) {
  localSmoothing(node.getEditMesh(), mask, centres, radius, modified);
  brushed(node, modified);
}

void localSmoothingFunctor::localSmoothing(EDITING::editMeshNode& node,
                                           const std::vector<unsigned char>& mask,
                                           const std::vector<unsigned int>& centres,
                                           const std::vector<float>& radii,
                                           std::vector<unsigned char>& modified) {
  localSmoothing(node.getEditMesh(), mask, centres, radii, modified);
  brushed(node, modified);
}

}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
