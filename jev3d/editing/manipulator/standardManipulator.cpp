#include "jev3d/editing/manipulator/standardManipulator.h"

#include "jev3d/editing/undoRedoRecordGlobalManipulatorState.h"
#include "jev3d/editing/undoRedoStack.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

standardManipulator::standardManipulator() { addLabels(); }

standardManipulator::~standardManipulator() = default;

void standardManipulator::setUndoStack(SYSTEM::undoRedoStack* s) {
  stack = s;
  if (stack) pushState();
}

void standardManipulator::pushState() {
  // The reference is where the last drag began; a snapshot keeps only where it ended.
  globalManipulatorState state = getState();
  state.makeReference();
  lastPushed = state;
  stack->push(new SYSTEM::undoRedoRecord<globalManipulatorState>(
      state, SYSTEM::makeDelegate(this, &standardManipulator::onUndoRedo),
      SYSTEM::makeDelegate(this, &standardManipulator::onUndoRedo)));
}

void standardManipulator::mouseUp(const ray3f& ray) {
  globalManipulator::mouseUp(ray);
  if (!stack) return;
  globalManipulatorState now = getState();
  now.makeReference();
  if (now != lastPushed) pushState();
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
