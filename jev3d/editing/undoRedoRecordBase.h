#pragma once

#include "jev3d/system/delegate.h"
#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace SYSTEM {

// A snapshot of a piece of state with two delegates that put it back. The base does
// nothing and weighs nothing; the stack owns records once they are pushed.
class undoRedoRecordBase {
 public:
  undoRedoRecordBase() = default;
  undoRedoRecordBase(const sharedPointer<delegate>& undo, const sharedPointer<delegate>& redo)
      : undoDelegate(undo), redoDelegate(redo) {}
  virtual ~undoRedoRecordBase() = default;
  undoRedoRecordBase(const undoRedoRecordBase&) = delete;
  undoRedoRecordBase& operator=(const undoRedoRecordBase&) = delete;

  virtual void undo() {}
  virtual void redo() {}
  // What the record weighs against the stack's byte limit.
  virtual unsigned int getNumBytes() const { return 0; }
  // True when the record concerns `arg` (eraseIfCondition drops those).
  virtual bool matches(void* /*arg*/) const { return false; }

  sharedPointer<delegate> undoDelegate;
  sharedPointer<delegate> redoDelegate;

 protected:
  static bool hasTarget(const sharedPointer<delegate>& d) { return !d.isNull() && !d->isEmpty(); }
};

}  // namespace SYSTEM
}  // namespace JEV
