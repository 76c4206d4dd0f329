#pragma once

#include <vector>

#include "jev3d/editing/polylineDescriptor.h"
#include "jev3d/editing/undoRedoSnapshotRecord.h"

namespace JEV {
namespace SYSTEM {

// A snapshot of a set of polylines. With a delegate target, undo and redo hand the stored
// vector to it; without one they copy it back into the vector it was taken of, when one
// was named.
class polylineArrayUndoRedoRecord
    : public undoRedoSnapshotRecord<std::vector<MESH::EDITING::polylineDescriptor>> {
 public:
  using descriptors = std::vector<MESH::EDITING::polylineDescriptor>;

  explicit polylineArrayUndoRedoRecord(const descriptors& snapshot, descriptors* source = nullptr)
      : undoRedoSnapshotRecord(snapshot, source) {}
  polylineArrayUndoRedoRecord(const descriptors& snapshot, const sharedPointer<delegate>& undo,
                              const sharedPointer<delegate>& redo)
      : undoRedoSnapshotRecord(snapshot, undo, redo) {}

  unsigned int getNumBytes() const override {
    unsigned int n = unsigned(sizeof(descriptors));
    for (const MESH::EDITING::polylineDescriptor& d : value) n += d.getNumBytes();
    return n;
  }
};

}  // namespace SYSTEM
}  // namespace JEV
