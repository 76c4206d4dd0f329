#pragma once

#include "jev3d/editing/undoRedoRecord.h"

namespace JEV {
namespace SYSTEM {

// A record of a snapshot of T. With a delegate target, undo and redo hand the stored
// value to it; without one they copy it back into the object it was taken of, when one
// was named.
template <class T>
class undoRedoSnapshotRecord : public undoRedoRecord<T> {
 public:
  explicit undoRedoSnapshotRecord(const T& snapshot, T* source)
      : undoRedoRecord<T>(snapshot), target(source) {}
  undoRedoSnapshotRecord(const T& snapshot, const sharedPointer<delegate>& undo,
                         const sharedPointer<delegate>& redo)
      : undoRedoRecord<T>(snapshot, undo, redo) {}

  void undo() override { restore(this->undoDelegate); }
  void redo() override { restore(this->redoDelegate); }
  // True for the object the snapshot was taken of.
  bool matches(void* arg) const override { return arg && arg == target; }

 private:
  void restore(const sharedPointer<delegate>& d) {
    if (this->hasTarget(d)) {
      d->invoke(&this->value);
    } else if (target) {
      *target = this->value;
    }
  }

  T* target = nullptr;
};

}  // namespace SYSTEM
}  // namespace JEV
