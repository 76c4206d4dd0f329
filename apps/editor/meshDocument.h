#pragma once

#include <memory>
#include <string>

#include <jev3d/editing/undoRedoStack.h>
#include <jev3d/mesh/editMesh.h>

namespace JEV {
namespace MESH {
namespace EDITING {
class editMeshNode;
}
}  // namespace MESH
namespace SYSTEM {
class callBack;
}
}  // namespace JEV

namespace EDITOR {

// The kernel's selection counters and sums.
struct selectionCounters {
  unsigned int selVn = 0, selEn = 0, selFn = 0, selFvn = 0;
  JEV::MATH::point3<float> selVertSum, selVertNor;
};

// The selection bits of every element with the counters: what a selection gesture
// changes, and what its undo puts back.
struct selectionState {
  std::vector<unsigned char> vertFlags, edgeFlags, faceFlags;
  selectionCounters counters;
};

// The mesh being edited (held by the scene's editable node), where it came from, the mesh
// as it was opened (the reference distance colouring measures against) and the edit
// history. Every change goes through commit or a selection gesture, so that undo and redo
// can walk it: a mesh edit keeps the whole mesh of the other side, a selection gesture
// only the selection bits. Belongs to the main thread.
class meshDocument {
 public:
  // History beyond `undoBytes` drops its oldest steps.
  explicit meshDocument(JEV::MESH::EDITING::editMeshNode& node,
                        unsigned int undoBytes = 1536u << 20);
  ~meshDocument();
  meshDocument(const meshDocument&) = delete;
  meshDocument& operator=(const meshDocument&) = delete;

  // Reads a PLY or STL file into `out` (finished: edges, VE, normals, box); any thread.
  // False, with a one-line reason in `error` and `out` unspecified, for a file that is
  // missing, not a mesh, cut short or without a face.
  static bool read(const std::string& path, JEV::MESH::editMesh& out, std::string& error,
                   JEV::SYSTEM::callBack* cb = nullptr);
  // Writes the mesh as PLY (binary) or STL by the path's suffix; false with a reason.
  bool save(const std::string& path, std::string& error);

  // Makes `opened` the document, read from `path`: the history starts afresh.
  void adopt(const JEV::MESH::editMesh& opened, const std::string& path);
  // Replaces the mesh by `edited`; undo brings back the mesh as it is now.
  void commit(const JEV::MESH::editMesh& edited, const std::string& label);
  // A selection gesture: begin before the first change, end after the last. A gesture
  // that changed nothing leaves no step.
  void beginSelection();
  void endSelection(const std::string& label);
  bool isSelecting() const { return pendingSelection != nullptr; }

  // False when there is nothing to undo (redo); `label` names the step walked.
  bool undo(std::string& label);
  bool redo(std::string& label);
  // The history itself, for tools that record their own steps (the move manipulator);
  // such a step counts as a change of geometry.
  JEV::SYSTEM::undoRedoStack& getHistory() { return history; }
  // Tells the document that positions changed outside commit (a manipulator's drag).
  void noteGeometryChanged() { ++revision; }
  // True once for each step another tool pushed on the history since the last call; that
  // step is then counted as a change of geometry.
  bool takeForeignStep();
  unsigned int undoCount() const { return history.getUndoSize(); }
  unsigned int redoCount() const { return history.getRedoSize(); }

  JEV::MESH::editMesh& mesh();
  JEV::MESH::EDITING::editMeshNode& getNode() { return node; }
  const JEV::MESH::editMesh& getReference() const { return *reference; }
  // Shared with the jobs that read it, which may outlive a new open.
  std::shared_ptr<const JEV::MESH::editMesh> getReferencePointer() const { return reference; }
  const std::string& getPath() const { return path; }
  bool hasMesh() const;
  // Raised by every change of the mesh's geometry or topology (not by selections).
  unsigned int getRevision() const { return revision; }

  // Puts `stored` in the node and takes the node's mesh into `stored` (a mesh step's
  // undo and redo alike).
  void swapMesh(std::unique_ptr<JEV::MESH::editMesh>& stored);
  void swapSelection(selectionState& stored);

 private:
  void replaceNodeMesh(const JEV::MESH::editMesh& m);

  JEV::MESH::EDITING::editMeshNode& node;
  JEV::SYSTEM::undoRedoStack history;
  std::shared_ptr<const JEV::MESH::editMesh> reference;
  std::string path;
  std::unique_ptr<selectionState> pendingSelection;
  unsigned int revision = 0;
  const JEV::SYSTEM::undoRedoRecordBase* lastForeign = nullptr;
};

// The selection of `m` as it is now.
selectionState captureSelection(JEV::MESH::editMesh& m);

}  // namespace EDITOR
