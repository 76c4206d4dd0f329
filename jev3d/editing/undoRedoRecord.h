#pragma once

#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "jev3d/editing/undoRedoRecordBase.h"

namespace JEV {
namespace MESH {
class editMesh;
namespace POSTPROCESSING {
class triMesh;
}
}  // namespace MESH
namespace SYSTEM {

// Bytes a stored value weighs: its size for plain values, a vector's header plus its
// elements, and what a mesh's stores hold.
template <class T>
unsigned int undoRedoBytes(const T&) {
  return unsigned(sizeof(T));
}
template <class T>
unsigned int undoRedoBytes(const std::vector<T>& v) {
  unsigned int n = unsigned(sizeof(v));
  if constexpr (std::is_trivially_copyable_v<T>) {
    n += unsigned(v.size() * sizeof(T));
  } else {
    for (const T& e : v) n += undoRedoBytes(e);
  }
  return n;
}
unsigned int undoRedoBytes(const MESH::editMesh& m);
// A scan mesh weighs its vertex data and corners, however many records share it.
unsigned int undoRedoBytes(const sharedPointer<MESH::POSTPROCESSING::triMesh>& m);

// A record storing a value of T. undo and redo hand the stored value, by reference, to
// the matching delegate when it has a target.
template <class T>
class undoRedoRecord : public undoRedoRecordBase {
 public:
  undoRedoRecord() = default;
  explicit undoRedoRecord(T v) : value(std::move(v)) {}
  undoRedoRecord(T v, const sharedPointer<delegate>& undo, const sharedPointer<delegate>& redo)
      : undoRedoRecordBase(undo, redo), value(std::move(v)) {}

  void undo() override {
    if (hasTarget(undoDelegate)) undoDelegate->invoke(&value);
  }
  void redo() override {
    if (hasTarget(redoDelegate)) redoDelegate->invoke(&value);
  }
  unsigned int getNumBytes() const override { return undoRedoBytes(value); }

  T& getRecord() { return value; }
  const T& getRecord() const { return value; }

 protected:
  T value{};
};

}  // namespace SYSTEM
}  // namespace JEV
