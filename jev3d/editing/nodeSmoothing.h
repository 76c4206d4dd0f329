#pragma once

#include "jev3d/algo/smoothing/curvatureTangentialSmooth.h"
#include "jev3d/algo/smoothing/laplacianSmooth.h"
#include "jev3d/algo/smoothing/localSmoothingFunctor.h"
#include "jev3d/algo/smoothing/twoStepSmooth.h"

namespace JEV {
namespace MESH {
namespace EDITING {
class editMeshNode;
}
namespace ALGO {
namespace SMOOTHING {

// The smoothing filters on an editable node. Each runs the core filter on the node's mesh
// (which keeps unit normals and its connectivity) and then tells the node: the box and
// the render data go stale, so the next frame rebuilds the cache. Include this header
// where nodes are smoothed: without it a node passes as a plain mesh interface, whose
// Laplacian leaves the normals cleared.

void computeLaplacianSmooth(EDITING::editMeshNode& node, unsigned int iterations, bool smoothBorder,
                            SYSTEM::callBack* cb);
void computeCurvatureTangentialSmooth(EDITING::editMeshNode& node, unsigned int iterations,
                                      bool selectedOnly);
// source and target may be one node; a null source empties the target, a null target
// skips the export.
void computeTwoStep(const EDITING::editMeshNode* source, EDITING::editMeshNode* target,
                    float featureAngleDeg, int iterations, int normalSteps, int fitSteps,
                    bool keepBorder, bool selectedOnly, SYSTEM::callBack* cb);

}  // namespace SMOOTHING

// The node's Laplacian under the algorithm namespace too.
inline void computeLaplacianSmooth(EDITING::editMeshNode& node, unsigned int iterations,
                                   bool smoothBorder, SYSTEM::callBack* cb) {
  SMOOTHING::computeLaplacianSmooth(node, iterations, smoothBorder, cb);
}

}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
