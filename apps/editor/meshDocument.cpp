#include "meshDocument.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <utility>

#include <jev3d/editing/editMeshNode.h>
#include <jev3d/editing/undoRedoRecord.h>

namespace EDITOR {

using JEV::MESH::editMesh;
using JEV::MESH::EDITING::editMeshNode;

namespace {

std::string suffixOf(const std::string& path) {
  std::string ext = std::filesystem::path(path).extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return char(std::tolower(c)); });
  return ext;
}

bool isMeshSuffix(const std::string& ext) { return ext == ".ply" || ext == ".stl"; }

// A step of the history that has a label for the status line.
class labelledRecord : public JEV::SYSTEM::undoRedoRecordBase {
 public:
  explicit labelledRecord(std::string l) : label(std::move(l)) {}
  const std::string label;
};

// A mesh edit: holds the mesh of the other side of the step. Undo and redo both exchange
// it with the node's, so one copy serves the two directions.
class meshStep : public labelledRecord {
 public:
  meshStep(meshDocument& d, std::unique_ptr<editMesh> m, std::string l)
      : labelledRecord(std::move(l)), doc(d), other(std::move(m)) {}
  void undo() override { doc.swapMesh(other); }
  void redo() override { doc.swapMesh(other); }
  unsigned int getNumBytes() const override { return JEV::SYSTEM::undoRedoBytes(*other); }

 private:
  meshDocument& doc;
  std::unique_ptr<editMesh> other;
};

// A selection gesture: the selection bits of the other side, exchanged in the same way.
class selectionStep : public labelledRecord {
 public:
  selectionStep(meshDocument& d, std::unique_ptr<selectionState> s, std::string l)
      : labelledRecord(std::move(l)), doc(d), other(std::move(s)) {}
  void undo() override { doc.swapSelection(*other); }
  void redo() override { doc.swapSelection(*other); }
  unsigned int getNumBytes() const override {
    return unsigned(sizeof(selectionState) + other->vertFlags.size() + other->edgeFlags.size() +
                    other->faceFlags.size());
  }

 private:
  meshDocument& doc;
  std::unique_ptr<selectionState> other;
};

// A step the document did not make itself is a manipulator's move of vertices.
std::string labelOf(JEV::SYSTEM::undoRedoRecordBase* record, bool& ours) {
  auto* labelled = dynamic_cast<labelledRecord*>(record);
  ours = labelled != nullptr;
  return ours ? labelled->label : std::string("Move");
}

bool sameSelection(const selectionState& a, const selectionState& b) {
  return a.vertFlags == b.vertFlags && a.edgeFlags == b.edgeFlags && a.faceFlags == b.faceFlags;
}

}  // namespace

namespace {

selectionCounters readCounters(const editMesh& m) {
  return {m.getSelVn(),  m.getSelEn(),      m.getSelFn(),
          m.getSelFvn(), m.getSelVertSum(), m.getSelVertNor()};
}

void writeCounters(editMesh& m, const selectionCounters& c) {
  m.setSelVn(c.selVn);
  m.setSelEn(c.selEn);
  m.setSelFn(c.selFn);
  m.setSelFvn(c.selFvn);
  m.setSelVertSum(c.selVertSum);
  m.setSelVertNor(c.selVertNor);
}

}  // namespace

selectionState captureSelection(editMesh& m) {
  return {m.vertFlags(), m.edgeFlags(), m.faceFlags(), readCounters(m)};
}

meshDocument::meshDocument(editMeshNode& n, unsigned int undoBytes)
    : node(n), history(undoBytes), reference(std::make_shared<editMesh>()) {}

meshDocument::~meshDocument() = default;

editMesh& meshDocument::mesh() { return node.getEditMesh(); }

bool meshDocument::hasMesh() const { return node.getEditMesh().fn() > 0; }

bool meshDocument::read(const std::string& path, editMesh& out, std::string& error,
                        JEV::SYSTEM::callBack* cb) {
  std::error_code ec;
  const std::string ext = suffixOf(path);
  if (!std::filesystem::exists(path, ec)) {
    error = path + ": no such file";
    return false;
  }
  if (std::filesystem::is_directory(path, ec)) {
    error = path + ": is a folder, not a mesh file";
    return false;
  }
  if (!isMeshSuffix(ext)) {
    error = path + ": not a mesh file (open .ply or .stl)";
    return false;
  }
  // The node's readers leave it as it was on failure; this one is thrown away either way.
  editMeshNode reader;
  if (!reader.load(path, cb)) {
    error = path + ": not a readable " + (ext == ".ply" ? "PLY" : "STL") +
            " mesh (bad header, bad data or cut short)";
    return false;
  }
  if (reader.getEditMesh().fn() == 0) {
    error = path + ": holds no faces";
    return false;
  }
  out = reader.getEditMesh();
  // A file with colours is shown in them: a scan's texture or a distance map.
  out.colorDisplayState = out.hasVC() ? JEV::MESH::MESH_COLOR_VERTEX : JEV::MESH::MESH_COLOR_NONE;
  return true;
}

bool meshDocument::save(const std::string& to, std::string& error) {
  if (!isMeshSuffix(suffixOf(to))) {
    error = to + ": save as .ply or .stl";
    return false;
  }
  if (!node.save(to)) {
    error = to + ": cannot be written";
    return false;
  }
  path = to;
  return true;
}

void meshDocument::replaceNodeMesh(const editMesh& m) {
  // The node's render cache belongs to the mesh it drew: free it before the stores change.
  node.discard();
  node.getEditMesh() = m;
  node.invalidateRenderData();
  ++revision;
}

void meshDocument::adopt(const editMesh& opened, const std::string& from) {
  history.clear();
  lastForeign = nullptr;
  pendingSelection.reset();
  replaceNodeMesh(opened);
  reference = std::make_shared<const editMesh>(opened);
  path = from;
}

void meshDocument::commit(const editMesh& edited, const std::string& label) {
  auto before = std::make_unique<editMesh>(node.getEditMesh());
  replaceNodeMesh(edited);
  history.push(new meshStep(*this, std::move(before), label));
}

void meshDocument::beginSelection() {
  pendingSelection = std::make_unique<selectionState>(captureSelection(node.getEditMesh()));
}

void meshDocument::endSelection(const std::string& label) {
  if (!pendingSelection) return;
  std::unique_ptr<selectionState> before = std::move(pendingSelection);
  if (sameSelection(*before, captureSelection(node.getEditMesh()))) return;
  history.push(new selectionStep(*this, std::move(before), label));
}

bool meshDocument::undo(std::string& label) {
  JEV::SYSTEM::undoRedoRecordBase* top = history.getUndoBack();
  if (!top) return false;
  bool ours = false;
  label = labelOf(top, ours);
  if (!history.undoLast()) return false;
  if (!ours) noteGeometryChanged();
  return true;
}

bool meshDocument::redo(std::string& label) {
  if (history.getRedoSize() == 0) return false;
  // redo() moves the back redo record to the undo side, where its label can be read.
  if (!history.redo()) return false;
  bool ours = false;
  label = labelOf(history.getUndoBack(), ours);
  if (!ours) noteGeometryChanged();
  return true;
}

bool meshDocument::takeForeignStep() {
  JEV::SYSTEM::undoRedoRecordBase* top = history.getUndoBack();
  bool ours = false;
  if (!top || top == lastForeign) return false;
  labelOf(top, ours);
  if (ours) return false;
  lastForeign = top;
  noteGeometryChanged();
  return true;
}

void meshDocument::swapMesh(std::unique_ptr<editMesh>& stored) {
  auto now = std::make_unique<editMesh>(node.getEditMesh());
  replaceNodeMesh(*stored);
  stored = std::move(now);
}

void meshDocument::swapSelection(selectionState& stored) {
  editMesh& m = node.getEditMesh();
  // The bits change places without a copy; the counters go with them.
  m.vertFlags().swap(stored.vertFlags);
  m.edgeFlags().swap(stored.edgeFlags);
  m.faceFlags().swap(stored.faceFlags);
  const selectionCounters now = readCounters(m);
  writeCounters(m, stored.counters);
  stored.counters = now;
  node.invalidateRenderData();
}

}  // namespace EDITOR
