#include "jev3d/editing/undoRedoRecordGlobalManipulatorState.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

unsigned int undoRedoBytes(const globalManipulatorState& state) {
  return unsigned(sizeof(state) + (state.getReferenceShape().size() + state.getShape().size()) *
                                      sizeof(MATH::point3<float>));
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
namespace SYSTEM {

template class undoRedoRecord<MESH::EDITING::MANIPULATOR::globalManipulatorState>;
template class undoRedoRecord<
    std::vector<std::vector<MESH::EDITING::MANIPULATOR::globalManipulatorState>>>;

}  // namespace SYSTEM
}  // namespace JEV
