#pragma once

#include <vector>

#include "jev3d/math/point4.h"

namespace JEV {
namespace SYSTEM {
class undoRedoStack;
}
namespace MESH {
namespace EDITING {
class editMeshNode;
namespace MANIPULATOR {

class manipulator;

// Moves the selected vertices of an editable node with the drags of a manipulator: every
// drag step applies the step's transform, and every drag that
// moved something pushes one record on the undo stack. The records are commands (the
// positions before and after, with the vertex ids), so the stack's undoLast and redo
// take them back and forth. The object takes both of the manipulator's delegates, and
// must outlive the records it pushed (clear the stack first).
class selectionManipulation {
 public:
  selectionManipulation(manipulator* manip, editMeshNode* node, SYSTEM::undoRedoStack* stack);
  ~selectionManipulation();
  selectionManipulation(const selectionManipulation&) = delete;
  selectionManipulation& operator=(const selectionManipulation&) = delete;

  // Puts the manipulator at the barycentre of the selection, in the node's parent space.
  void placeOnSelection();

  void onDragStep(manipulator* m);
  void onDragEnd(manipulator* m);
  // The record's delegates: its first half holds the positions before, the second after;
  // w carries the vertex id (exact in a float below 2^24, above any mesh's maxValue).
  void onUndo(std::vector<MATH::point4<float>>& record);
  void onRedo(std::vector<MATH::point4<float>>& record);

 private:
  void apply(const std::vector<MATH::point4<float>>& positions, size_t first, size_t count);

  manipulator* manip;
  editMeshNode* node;
  SYSTEM::undoRedoStack* stack;
  // Positions before the running drag, and the faces it moves.
  std::vector<MATH::point4<float>> before;
  std::vector<unsigned int> faces;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
