#pragma once

#include "jev3d/editing/polylineDescriptor.h"
#include "jev3d/editing/undoRedoSnapshotRecord.h"

namespace JEV {
namespace SYSTEM {

// A snapshot of one polyline. With a delegate target, undo and redo hand the stored
// descriptor to it; without one they copy it back into the descriptor it was taken of,
// when one was named.
class polylineUndoRedoRecord : public undoRedoSnapshotRecord<MESH::EDITING::polylineDescriptor> {
 public:
  explicit polylineUndoRedoRecord(const MESH::EDITING::polylineDescriptor& snapshot,
                                  MESH::EDITING::polylineDescriptor* source = nullptr)
      : undoRedoSnapshotRecord(snapshot, source) {}
  polylineUndoRedoRecord(const MESH::EDITING::polylineDescriptor& snapshot,
                         const sharedPointer<delegate>& undo, const sharedPointer<delegate>& redo)
      : undoRedoSnapshotRecord(snapshot, undo, redo) {}

  unsigned int getNumBytes() const override { return value.getNumBytes(); }
};

}  // namespace SYSTEM
}  // namespace JEV
