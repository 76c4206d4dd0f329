#pragma once

#include <deque>

#include "jev3d/editing/undoRedoRecordBase.h"
#include "jev3d/fields/fieldBase.h"

namespace JEV {
namespace SYSTEM {

// Two sequences of records under a limit in bytes. push takes ownership; a record leaves
// the stack through disposal: the discard delegate, when it has a target, receives the
// record (as its one argument) and owns its deletion, else the record is deleted.
//
// undo works on snapshots (the oldest record is the base state and is never left);
// undoLast works on commands (the back record undoes itself). No lock is taken.
class undoRedoStack {
 public:
  explicit undoRedoStack(unsigned int maxBytes);
  virtual ~undoRedoStack();
  undoRedoStack(const undoRedoStack&) = delete;
  undoRedoStack& operator=(const undoRedoStack&) = delete;

  // Appends the record, drops the redo history, then evicts from the front while the
  // total is above maxBytes (the new record counted, so one record larger than the limit
  // drains everything, itself included).
  void push(undoRedoRecordBase* record);
  // The back record of the undo sequence, null when empty.
  undoRedoRecordBase* top() const;
  // False with fewer than two records; else moves the back record to the redo sequence
  // and calls undo on the record now at the back.
  bool undo();
  // False when empty; else calls undo on the back record and moves it to redo.
  bool undoLast();
  // False when empty; else calls redo on the back redo record and moves it back to undo.
  bool redo();
  void clear();
  // Removes the record from whichever sequence holds it and disposes of it; false when
  // the stack does not hold it.
  bool erase(undoRedoRecordBase* record);
  // Disposes of every record whose matches(arg) is true; returns how many.
  unsigned int eraseIfCondition(void* arg);

  unsigned int getUndoSize() const { return unsigned(undoRecords.size()); }
  unsigned int getRedoSize() const { return unsigned(redoRecords.size()); }
  undoRedoRecordBase* getUndoFront() const;
  undoRedoRecordBase* getUndoBack() const;
  unsigned int getTotalBytes() const { return totalBytes; }

  fieldBase<unsigned int> undoSize;
  fieldBase<unsigned int> redoSize;
  sharedPointer<delegate> discardDelegate;
  fieldBase<unsigned int> maxBytes;

 private:
  void dispose(undoRedoRecordBase* record);
  void lowerTotal(unsigned int bytes);
  void publishSizes();

  std::deque<undoRedoRecordBase*> undoRecords;
  std::deque<undoRedoRecordBase*> redoRecords;
  unsigned int totalBytes = 0;
};

}  // namespace SYSTEM
}  // namespace JEV
