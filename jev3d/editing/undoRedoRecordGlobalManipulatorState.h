#pragma once

#include <vector>

#include "jev3d/editing/manipulator/globalManipulatorState.h"
#include "jev3d/editing/undoRedoRecord.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// What a manipulator state weighs on the undo stack: the object and its sixteen corners.
unsigned int undoRedoBytes(const globalManipulatorState& state);

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
namespace SYSTEM {

// A global manipulator's state, and the states of several manipulators by group; the
// delegates get the stored value to put back (globalManipulator::setState).
extern template class undoRedoRecord<MESH::EDITING::MANIPULATOR::globalManipulatorState>;
extern template class undoRedoRecord<
    std::vector<std::vector<MESH::EDITING::MANIPULATOR::globalManipulatorState>>>;

}  // namespace SYSTEM
}  // namespace JEV
