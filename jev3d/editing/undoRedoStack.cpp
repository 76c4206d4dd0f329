#include "jev3d/editing/undoRedoStack.h"

#include <algorithm>

#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/editing/undoRedoRecord.h"
#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace SYSTEM {

unsigned int undoRedoBytes(const MESH::editMesh& m) { return unsigned(m.memoryUsage()); }

unsigned int undoRedoBytes(const sharedPointer<MESH::POSTPROCESSING::triMesh>& m) {
  unsigned int n = unsigned(sizeof(m));
  if (m.isNull()) return n;
  const unsigned int perVertex = 12 + (m->hasVN() ? 12 : 0) + (m->hasVC() ? 4 : 0);
  return n + m->vn() * perVertex + m->fn() * (12 + (m->hasFaceFlags() ? 1 : 0));
}

undoRedoStack::undoRedoStack(unsigned int limit) : maxBytes(limit) {}

undoRedoStack::~undoRedoStack() { clear(); }

void undoRedoStack::dispose(undoRedoRecordBase* record) {
  if (!record) return;
  lowerTotal(record->getNumBytes());
  if (!discardDelegate.isNull() && !discardDelegate->isEmpty())
    discardDelegate->invoke(record);
  else
    delete record;
}

void undoRedoStack::lowerTotal(unsigned int bytes) {
  totalBytes = bytes > totalBytes ? 0 : totalBytes - bytes;
}

void undoRedoStack::publishSizes() {
  undoSize.setValue(getUndoSize());
  redoSize.setValue(getRedoSize());
}

void undoRedoStack::push(undoRedoRecordBase* record) {
  undoRecords.push_back(record);
  if (record) totalBytes += record->getNumBytes();
  for (undoRedoRecordBase* r : redoRecords) dispose(r);
  redoRecords.clear();
  while (totalBytes > maxBytes.cV() && !undoRecords.empty()) {
    undoRedoRecordBase* oldest = undoRecords.front();
    undoRecords.pop_front();
    dispose(oldest);
  }
  publishSizes();
}

undoRedoRecordBase* undoRedoStack::top() const { return getUndoBack(); }

undoRedoRecordBase* undoRedoStack::getUndoFront() const {
  return undoRecords.empty() ? nullptr : undoRecords.front();
}

undoRedoRecordBase* undoRedoStack::getUndoBack() const {
  return undoRecords.empty() ? nullptr : undoRecords.back();
}

bool undoRedoStack::undo() {
  if (undoRecords.size() < 2) {
    publishSizes();
    return false;
  }
  redoRecords.push_back(undoRecords.back());
  undoRecords.pop_back();
  if (undoRecords.back()) undoRecords.back()->undo();
  publishSizes();
  return true;
}

bool undoRedoStack::undoLast() {
  if (undoRecords.empty()) {
    publishSizes();
    return false;
  }
  undoRedoRecordBase* last = undoRecords.back();
  if (last) last->undo();
  undoRecords.pop_back();
  redoRecords.push_back(last);
  publishSizes();
  return true;
}

bool undoRedoStack::redo() {
  if (redoRecords.empty()) {
    publishSizes();
    return false;
  }
  undoRedoRecordBase* next = redoRecords.back();
  if (next) next->redo();
  redoRecords.pop_back();
  undoRecords.push_back(next);
  publishSizes();
  return true;
}

void undoRedoStack::clear() {
  for (undoRedoRecordBase* r : undoRecords) dispose(r);
  for (undoRedoRecordBase* r : redoRecords) dispose(r);
  undoRecords.clear();
  redoRecords.clear();
  totalBytes = 0;
  publishSizes();
}

bool undoRedoStack::erase(undoRedoRecordBase* record) {
  for (auto* queue : {&undoRecords, &redoRecords}) {
    auto it = std::find(queue->begin(), queue->end(), record);
    if (it == queue->end()) continue;
    queue->erase(it);
    dispose(record);
    publishSizes();
    return true;
  }
  return false;
}

unsigned int undoRedoStack::eraseIfCondition(void* arg) {
  unsigned int count = 0;
  for (auto* queue : {&undoRecords, &redoRecords}) {
    std::deque<undoRedoRecordBase*> kept;
    for (undoRedoRecordBase* r : *queue) {
      if (r && r->matches(arg)) {
        dispose(r);
        ++count;
      } else {
        kept.push_back(r);
      }
    }
    queue->swap(kept);
  }
  publishSizes();
  return count;
}

}  // namespace SYSTEM
}  // namespace JEV
