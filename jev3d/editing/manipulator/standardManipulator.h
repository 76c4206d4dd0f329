#pragma once

#include "jev3d/editing/manipulator/globalManipulator.h"

namespace JEV {
namespace SYSTEM {
class undoRedoStack;
}
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// The global manipulator as an application puts it up: labelled X, Y and Z, every
// element shown, and, once given an undo stack, a snapshot of its state on the stack
// after every drag that changed it. The stack's undo and redo then put the cage back.
class standardManipulator : public globalManipulator {
 public:
  standardManipulator();
  ~standardManipulator() override;

  // Pushes the present state as the base snapshot; null stops recording. The stack must
  // not outlive the manipulator with its records (clear it first).
  void setUndoStack(SYSTEM::undoRedoStack* stack);
  // The records' delegates.
  void onUndoRedo(globalManipulatorState& state) { setState(state); }

 protected:
  void mouseUp(const ray3f& ray) override;

 private:
  void pushState();

  SYSTEM::undoRedoStack* stack = nullptr;
  globalManipulatorState lastPushed;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
