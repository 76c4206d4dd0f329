#include "editorWindow.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include <jev3d/algo/remeshing/qECollapse.h>
#include <jev3d/editing/editMeshNode.h>
#include <jev3d/editing/manipulator/selectionManipulation.h>
#include <jev3d/editing/manipulator/trsManipulator.h>
#include <jev3d/gui/guiController.h>
#include <jev3d/gui/item.h>
#include <jev3d/gui/label.h>
#include <jev3d/gui/menu.h>
#include <jev3d/gui/progressbar.h>
#include <jev3d/io/xml/stringConversion.h>
#include <jev3d/platform/platform.h>
#include <jev3d/renderer/cameraState.h>
#include <jev3d/renderer/instancing/renderTargetInstance.h>
#include <jev3d/renderer/renderStateStack.h>
#include <jev3d/renderer/renderer.h>
#include <jev3d/renderer/renderingContext.h>
#include <jev3d/renderer/renderstate/colorMaterialstate.h>
#include <jev3d/renderer/renderstate/lightstate.h>
#include <jev3d/resources/textureStorage.h>
#include <jev3d/scene/sgController.h>
#include <jev3d/scene/trackballNode.h>
#include <jev3d/system/inputContext.h>

#include "editorInterface.h"

namespace EDITOR {

using namespace JEV;
using MESH::EDITING::editMeshNode;
using point3f = MATH::point3<float>;

namespace {

const CORE::color BACKGROUND(72, 76, 82, 255);
constexpr int START_WIDTH = 1024;
constexpr int START_HEIGHT = 768;
// Files the open menu lists at most; a folder of scans rarely holds more worth a menu.
constexpr size_t MAX_LISTED_FILES = 40;
// Meshes above this many faces orbit on a reduced copy of about REDUCED_TRIANGLES, which
// software GL draws within a frame budget of a few tens of milliseconds.
constexpr unsigned int REDUCE_ABOVE_FACES = 300000;
constexpr unsigned int REDUCED_TRIANGLES = 100000;
// The wheel counts as moving the camera this long after its last step.
constexpr std::chrono::milliseconds WHEEL_SETTLE(300);

std::wstring wide(const std::string& s) { return IO::XML::utf8ToWstring(s); }

bool isMeshFile(const std::filesystem::path& p) {
  std::string ext = p.extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return char(std::tolower(c)); });
  return ext == ".ply" || ext == ".stl";
}

std::string countsOf(const MESH::editMesh& m) {
  unsigned int faces = 0, verts = 0;
  for (unsigned int f = 0; f < m.fn(); ++f) faces += m.isFaceDeleted(f) ? 0 : 1;
  for (unsigned int v = 0; v < m.vn(); ++v) verts += m.isVertDeleted(v) ? 0 : 1;
  return std::to_string(verts) + " vertices, " + std::to_string(faces) + " faces";
}

}  // namespace

editorWindow::editorWindow(SYSTEM::application* app, RENDERING::renderer* device,
                           std::vector<std::string> files, bool tickAlways)
    : winMain(app, device, nullptr, false, tickAlways, L""), startFiles(std::move(files)) {
  setCaption(L"jev3d editor");
  setSize(START_WIDTH, START_HEIGHT);
  setMainWindow(true);
  defineCommands();
}

editorWindow::~editorWindow() = default;

bool editorWindow::init() {
  // The skins the interface is drawn with; the loop does not load them for us.
  return getRenderingContext()->getTextureStorage()->loadDefaultTexture();
}

GUI::guiController* editorWindow::getGuiController() const {
  return dynamic_cast<GUI::guiController*>(getGui());
}

void editorWindow::buildScene() {
  scene = std::make_unique<SG::sgController>(this);
  camera =
      static_cast<RENDERING::cameraState*>(scene->addNode(new RENDERING::cameraState(), "camera"));
  // The trackball is driven by hand before each frame, so the camera is never a frame late.
  ball = std::make_unique<SG::CAM::trackballNode>(this, getInputContext(), getRenderingContext());
  auto* light = static_cast<RENDERING::RENDERSTATE::lightstate*>(
      scene->addNode(new RENDERING::RENDERSTATE::lightstate(), "light"));
  node = static_cast<editMeshNode*>(scene->addNode(new editMeshNode(getRenderer()), "mesh"));
  reduced = static_cast<editMeshNode*>(scene->addNode(new editMeshNode(getRenderer()), "reduced"));
  light->connect(camera, false);
  node->connect(light, false);
  reduced->connect(light, false);
  reduced->disabled = true;
  // The move tool: arrows, plane squares and the centre ball, translation only, dragged
  // with the left button; drawn last, over the mesh.
  namespace MANIP = MESH::EDITING::MANIPULATOR;
  mover = static_cast<MANIP::trsManipulator*>(scene->addNode(new MANIP::trsManipulator(), "mover"));
  mover->connect(light, false);
  mover->enableRotation(false);
  mover->enableScale(false);
  mover->clearManipWith();
  mover->manipWith(MANIP::manipulator::FIRST_ALWAYS);
  mover->registerCallbacks(this);
  mover->disabled = true;
  scene->setRoot(camera);
  light->enable = true;
  light->viewFlag = true;  // shines along the camera's forward
  light->direction = point3f(0.f, 0.f, 1.f);
  light->ambient = CORE::color(45, 45, 45, 255);
  light->diffuse = CORE::color(170, 170, 170, 255);
  light->specular = CORE::color(0, 0, 0, 255);
  ball->keepUp = true;
  document = std::make_unique<meshDocument>(*node);
  moverLink = std::make_unique<MANIP::selectionManipulation>(mover, node, &document->getHistory());
}

bool editorWindow::deInit() {
  jobs.cancel();
  if (document) document->getHistory().clear();  // its move records name moverLink
  moverLink.reset();
  if (mover) mover->unRegisterCallbacks();
  if (scene) {
    if (node) node->discard();
    if (reduced) reduced->discard();
    scene->discard();
  }
  ball.reset();
  getRenderer()->discardFont(&interfaceFont);
  return winMain::deInit();
}

bool editorWindow::buildInterface() {
  GUI::guiController* gui = getGuiController();
  if (!gui) return false;
  if (!gui->openFromString(wide(editorInterfaceProject()), nullptr, L"", false)) {
    // Without its interface the editor cannot be used: say why on the way out.
    PLATFORM::current().messageBox(
        L"The editor's interface could not be read: " + gui->getProjectError(), L"jev3d editor");
    return false;
  }
  statusLabel = gui->getLabel(std::wstring(L"STATUS"));
  progress = dynamic_cast<GUI::progressbar*>(gui->getWidget(std::wstring(L"PROGRESS")));
  cancelButton = gui->getWidget(std::wstring(L"CANCEL"));
  if (!statusLabel || !progress || !cancelButton) return false;
  statusLabel->setTextHorizontalAlign(GUI::TEXT_LEFT);
  cancelButton->setCaption(std::wstring(L"Cancel"), false);

  handlers.reserve(64);
  auto hook = [&](GUI::widget* w, SYSTEM::EVENT_TYPE type,
                  void (editorWindow::*m)(const SYSTEM::inputEvent*)) {
    handlers.emplace_back(this, m);
    w->registerInputEventCallBack(type, handlers.back());
  };
  hook(cancelButton, SYSTEM::MOUSE_LEFT_CLICK, &editorWindow::onCancelClick);
  const std::pair<const wchar_t*, const wchar_t*> bar[] = {{L"BAR_FILE", L"File"},
                                                           {L"BAR_EDIT", L"Edit"},
                                                           {L"BAR_SELECT", L"Select"},
                                                           {L"BAR_MESH", L"Mesh"},
                                                           {L"BAR_ALGORITHMS", L"Algorithms"},
                                                           {L"BAR_VIEW", L"View"}};
  for (const auto& [id, caption] : bar) {
    GUI::widget* b = gui->getWidget(std::wstring(id));
    if (!b) return false;
    b->setCaption(std::wstring(caption), false);
    barMenus[id] = L"MENU_" + std::wstring(id).substr(4);
    hook(b, SYSTEM::MOUSE_LEFT_CLICK, &editorWindow::onBarClick);
  }
  for (const auto& [id, c] : commands) {
    GUI::widget* w = gui->getWidget(wide(id));
    if (!w) continue;  // a command without an item is reached by its key only
    w->setCaption(c.caption, false);
    hook(w, SYSTEM::MOUSE_LEFT_CLICK, &editorWindow::onCommandClick);
  }
  listFolder();
  giveFont(gui->getRootWidget());

  for (auto [type, m] : {std::pair{SYSTEM::MOUSE_LEFT_DOWN, &editorWindow::onLeftDown},
                         std::pair{SYSTEM::MOUSE_LEFT_DRAG, &editorWindow::onLeftDrag},
                         std::pair{SYSTEM::MOUSE_LEFT_UP, &editorWindow::onLeftUp},
                         std::pair{SYSTEM::KEY_DOWN, &editorWindow::onKeyDown},
                         std::pair{SYSTEM::KEY_UP, &editorWindow::onKeyUp},
                         std::pair{SYSTEM::KEY_CHAR, &editorWindow::onKeyChar},
                         std::pair{SYSTEM::MOUSE_WHEEL, &editorWindow::onWheel}}) {
    handlers.emplace_back(this, m);
    registerAbsoluteInputEventCallBack(type, handlers.back());
  }
  return true;
}

// Captions are drawn with the font their widget holds; the controller leaves that to us.
void editorWindow::giveFont(GUI::widget* w) {
  if (!w) return;
  w->getFontInstance().font = &interfaceFont;
  for (int i = 0; GUI::widget* child = w->getChildAt(i); ++i) giveFont(child);
}

// The open menu lists the mesh files of the folder the editor started in.
void editorWindow::listFolder() {
  GUI::guiController* gui = getGuiController();
  auto* list = dynamic_cast<GUI::menu*>(gui->getWidget(std::wstring(L"MENU_OPEN")));
  if (!list) return;
  std::error_code ec;
  for (const auto& entry : std::filesystem::directory_iterator(".", ec)) {
    if (entry.is_regular_file(ec) && isMeshFile(entry.path()))
      listedFiles.push_back(entry.path().filename().string());
  }
  std::sort(listedFiles.begin(), listedFiles.end());
  if (listedFiles.size() > MAX_LISTED_FILES) listedFiles.resize(MAX_LISTED_FILES);
  if (listedFiles.empty()) {
    list->addItem(GUI::widget::ICON_NULL, L"(no .ply or .stl file here)")->enabled = false;
    return;
  }
  for (const std::string& name : listedFiles) {
    GUI::item* it = list->addItem(GUI::widget::ICON_FILE_OPEN, wide(name));
    if (!it) continue;
    it->setUserString(wide(name));
    handlers.emplace_back(this, &editorWindow::onOpenListClick);
    it->registerInputEventCallBack(SYSTEM::MOUSE_LEFT_CLICK, handlers.back());
  }
}

void editorWindow::defineCommands() {
  auto edit = [this](const char* label, meshEdit e) {
    return [this, label, e] { startEdit(label, e); };
  };
  commands = {
      // Its item only opens the list of the folder's files.
      {"FILE_OPEN", {L"Open", [] {}}},
      {"FILE_OPEN_PATH", {L"Open path...  Ctrl+O", [this] { beginPathEntry(false); }}},
      {"FILE_SAVE",
       {L"Save  Ctrl+S",
        [this] {
          if (document->getPath().empty()) return beginPathEntry(true);
          saveFile(document->getPath());
        }}},
      {"FILE_SAVE_AS", {L"Save as...", [this] { beginPathEntry(true); }}},
      {"FILE_QUIT", {L"Quit", [this] { closeWindow(); }}},
      {"EDIT_UNDO", {L"Undo  Ctrl+Z", [this] { undo(); }}},
      {"EDIT_REDO", {L"Redo  Ctrl+Y", [this] { redo(); }}},
      {"TOOL_ORBIT", {L"Tool: orbit", [this] { setTool(selectTool::ORBIT, "orbit"); }}},
      {"TOOL_CLICK", {L"Tool: click", [this] { setTool(selectTool::CLICK, "click"); }}},
      {"TOOL_RECTANGLE",
       {L"Tool: rectangle", [this] { setTool(selectTool::RECTANGLE, "rectangle"); }}},
      {"TOOL_BRUSH", {L"Tool: brush", [this] { setTool(selectTool::BRUSH, "brush"); }}},
      {"TOOL_MOVE", {L"Tool: move selection", [this] { setTool(selectTool::MOVE, "move"); }}},
      {"SELECT_FACES", {L"Select faces", [this] { setElementKind(elementKind::FACES); }}},
      {"SELECT_EDGES", {L"Select edges", [this] { setElementKind(elementKind::EDGES); }}},
      {"SELECT_VERTICES", {L"Select vertices", [this] { setElementKind(elementKind::VERTICES); }}},
      {"SELECT_CLEAR", {L"Clear selection", [this] { clearSelection(); }}},
      {"MESH_EXTRUDE", {L"Extrude", edit("Extrude", extrudeSelection)}},
      {"MESH_LOOP_CUT", {L"Loop cut", edit("Loop cut", loopCutSelection)}},
      {"MESH_SUBDIVIDE", {L"Subdivide", edit("Subdivide", subdivideMesh)}},
      {"MESH_TRIANGULATE", {L"Triangulate", edit("Triangulate", triangulateMesh)}},
      {"MESH_MIRROR", {L"Mirror", edit("Mirror", mirrorAcrossSelection)}},
      {"ALGO_SMOOTH", {L"Smooth", edit("Smooth", smoothMesh)}},
      {"ALGO_FILL_HOLES", {L"Fill holes", edit("Fill holes", fillHoles)}},
      {"ALGO_REMESH", {L"Remesh", edit("Remesh", remeshMesh)}},
      {"ALGO_DECIMATE", {L"Decimate to half", edit("Decimate", decimateMesh)}},
      {"ALGO_DISTANCE", {L"Distance colouring", edit("Distance colouring", colourByDistance)}},
      {"VIEW_OBJECT",
       {L"Object", [this] { setDisplayMode(MESH::EDITING::EDIT_MESH_DISPLAY_OBJECT); }}},
      {"VIEW_FACES", {L"Faces", [this] { setDisplayMode(MESH::EDITING::EDIT_MESH_DISPLAY_FACE); }}},
      {"VIEW_EDGES", {L"Edges", [this] { setDisplayMode(MESH::EDITING::EDIT_MESH_DISPLAY_EDGE); }}},
      {"VIEW_VERTICES",
       {L"Vertices", [this] { setDisplayMode(MESH::EDITING::EDIT_MESH_DISPLAY_VERTEX); }}},
      {"VIEW_FRAME", {L"Frame the mesh", [this] { frameMesh(); }}},
  };
}

bool editorWindow::runCommand(const std::string& id) {
  auto it = commands.find(id);
  if (it == commands.end() || !ready) return false;
  it->second.run();
  return true;
}

void editorWindow::setStatus(const std::string& text) { setStatus(wide(text)); }

void editorWindow::setStatus(const std::wstring& text) {
  status = text;
  if (statusLabel) statusLabel->setCaption(text, false);
  refresh();
}

bool editorWindow::refuseWhileBusy() {
  if (!jobs.isBusy()) return false;
  setStatus(jobs.label() + " is running: wait for it or cancel it");
  return true;
}

bool editorWindow::openFile(const std::string& path) {
  if (!ready || refuseWhileBusy()) return false;
  auto read = std::make_shared<MESH::editMesh>();
  setStatus("Opening " + path + "...");
  return jobs.start(
      "Opening " + path,
      [path, read](SYSTEM::callBack* cb, std::string& message) {
        return meshDocument::read(path, *read, message, cb);
      },
      [this, path, read](bool ok, const std::string& message) {
        if (!ok) return setStatus(message);  // the mesh shown stays as it was
        document->adopt(*read, path);
        setCaption(L"jev3d editor - " + wide(path));
        frameMesh();
        setStatus("Opened " + path + ": " + countsOf(document->mesh()));
      });
}

bool editorWindow::saveFile(const std::string& path) {
  if (!ready || refuseWhileBusy()) return false;
  if (!document->hasMesh()) {
    setStatus("Nothing to save: open a mesh first");
    return false;
  }
  std::string error;
  if (!document->save(path, error)) {
    setStatus(error);
    return false;
  }
  setCaption(L"jev3d editor - " + wide(path));
  setStatus("Saved " + path + ": " + countsOf(document->mesh()));
  return true;
}

bool editorWindow::startEdit(const std::string& label, meshEdit edit) {
  if (refuseWhileBusy()) return false;
  if (!document->hasMesh()) {
    setStatus(label + ": open a mesh first");
    return false;
  }
  // The job works on copies; the document changes only when it ends.
  auto work = std::make_shared<MESH::editMesh>(document->mesh());
  auto reference = document->getReferencePointer();
  setStatus(label + "...");
  return jobs.start(
      label,
      [work, reference, edit](SYSTEM::callBack* cb, std::string& message) {
        return edit(*work, *reference, cb, message);
      },
      [this, work, label](bool ok, const std::string& message) {
        if (ok) document->commit(*work, label);
        setStatus(message);
      });
}

void editorWindow::undo() {
  if (refuseWhileBusy()) return;
  std::string label;
  if (!document->undo(label)) return setStatus("Nothing to undo");
  setStatus("Undone: " + label);
}

void editorWindow::redo() {
  if (refuseWhileBusy()) return;
  std::string label;
  if (!document->redo(label)) return setStatus("Nothing to redo");
  setStatus("Redone: " + label);
}

void editorWindow::setTool(selectTool t, const char* name) {
  tool = t;
  const char* how = " (left drag selects, Ctrl removes; middle pans, right zooms)";
  if (t == selectTool::ORBIT) how = " (left drag orbits)";
  if (t == selectTool::MOVE)
    how = document->mesh().getSelVn() ? " (drag an arrow, a square or the centre)"
                                      : " (select something to move first)";
  setStatus(std::string("Tool: ") + name + how);
}

void editorWindow::setElementKind(elementKind k) {
  kind = k;
  // Show what is being picked.
  switch (k) {
    case elementKind::FACES:
      setDisplayMode(MESH::EDITING::EDIT_MESH_DISPLAY_FACE);
      break;
    case elementKind::EDGES:
      setDisplayMode(MESH::EDITING::EDIT_MESH_DISPLAY_EDGE);
      break;
    case elementKind::VERTICES:
      setDisplayMode(MESH::EDITING::EDIT_MESH_DISPLAY_VERTEX);
      break;
  }
  if (tool == selectTool::ORBIT) setTool(selectTool::CLICK, "click");
}

void editorWindow::setDisplayMode(unsigned int mode) {
  switch (mode) {
    case MESH::EDITING::EDIT_MESH_DISPLAY_FACE:
      node->faceModeWireframe = true;
      node->enableFaceModeDisplay();
      break;
    case MESH::EDITING::EDIT_MESH_DISPLAY_EDGE:
      node->enableEdgeModeDisplay();
      break;
    case MESH::EDITING::EDIT_MESH_DISPLAY_VERTEX:
      node->enableVertexModeDisplay();
      break;
    default:
      node->enableObjectModeDisplay();
  }
  refresh();
}

void editorWindow::clearSelection() {
  if (refuseWhileBusy()) return;
  document->beginSelection();
  MESH::editMesh& m = document->mesh();
  m.clearGeomSelectionState();
  node->invalidateRenderData();
  document->endSelection("Clear selection");
  setStatus("Selection cleared");
}

void editorWindow::beginPathEntry(bool forSave) {
  typingPath = true;
  typingForSave = forSave;
  typedPath = forSave ? wide(document->getPath()) : std::wstring();
  setStatus((forSave ? L"Save as: " : L"Open: ") + typedPath +
            L"_   (Return accepts, Escape cancels)");
}

void editorWindow::frameMesh() {
  MESH::editMesh& m = document->mesh();
  if (m.vn() == 0) return;
  m.computeBBox();
  ball->fitBoundingBox(m.getBBoxMin(), m.getBBoxMax());
  refresh();
}

void editorWindow::placeCamera() {
  RENDERING::renderingContext* rc = getRenderingContext();
  viewWidth = std::max(1.f, float(rc->windowWidth.cV()));
  viewHeight = std::max(1.f, float(rc->windowHeight.cV()));
  camera->view = ball->viewMatrix.cV();
  const MESH::editMesh& m = document->mesh();
  float radius = 1.f;
  point3f centre = ball->target.cV();
  if (m.vn() > 0 && !m.isBBoxDirty()) {
    radius = std::max((m.getBBoxMax() - m.getBBoxMin()).norm() / 2, 1e-6f);
    centre = (m.getBBoxMax() + m.getBBoxMin()) * 0.5f;
  }
  // Near and far hug the mesh's bounding sphere, so depth keeps its precision.
  const float d = (ball->getEye() - centre).norm();
  const float nearPlane = std::max(d - radius * 1.05f, std::max(d, radius) * 1e-3f);
  const float farPlane = std::max(d + radius * 1.05f, nearPlane * 2.f);
  camera->projection = MATH::matrix4<float>::getPerspectiveLHRad(
      ball->fieldOfView.cV(), viewWidth / viewHeight, nearPlane, farPlane);
  viewProjection = camera->view.cV() * camera->projection.cV();
}

void editorWindow::showProgress() {
  const bool busy = jobs.isBusy();
  if (progress->visible.cV() != busy) progress->visible = busy;
  if (cancelButton->visible.cV() != busy) cancelButton->visible = busy;
  if (busy) {
    progress->value = jobs.progress();
    // Keep the ticks coming while the job runs, so the bar moves and its end is seen.
    refresh();
  }
}

bool editorWindow::update() {
  if (!ready) {
    buildScene();
    if (!buildInterface()) {
      closeWindow();
      refresh();  // the loop erases a closing window at its next service
      return false;
    }
    ready = true;
    setStatus("Open a mesh: File > Open, a path on the command line, or drop a file here");
    // Each file would replace the one before: the last one given is the one opened.
    if (!startFiles.empty()) openFile(startFiles.back());
  }
  jobs.poll();
  reducedJobs.poll();
  followMover();
  if (needsReducedCopy() && reducedRevision != document->getRevision() && !reducedJobs.isBusy())
    startReducedCopy();
  takeDroppedFiles();
  showProgress();
  return true;
}

// The move handles stand on the selection while the move tool is on and there is one, and
// a finished drag is a change of the mesh like any other.
void editorWindow::followMover() {
  const bool dragging = mover->isDragging();
  // A whole drag may pass between two updates: its record on the history tells.
  if (document->takeForeignStep())
    setStatus("Moved " + std::to_string(document->mesh().getSelVn()) + " vertices");
  const bool shown = tool == selectTool::MOVE && document->mesh().getSelVn() > 0 && !jobs.isBusy();
  if (mover->disabled.cV() == shown) mover->disabled = !shown;
  mover->enabled = shown;
  if (shown && !dragging) moverLink->placeOnSelection();
}

bool editorWindow::needsReducedCopy() const {
  return document && document->mesh().fn() > REDUCE_ABOVE_FACES;
}

bool editorWindow::isLevelOfDetailReady() const {
  return !needsReducedCopy() || reducedRevision == document->getRevision();
}

void editorWindow::startReducedCopy() {
  // The live triangles as a soup, taken here so that the job reads nothing of the document.
  const MESH::editMesh& m = document->mesh();
  auto positions = std::make_shared<std::vector<point3f>>();
  auto triangles = std::make_shared<std::vector<unsigned int>>();
  positions->reserve(m.vn());
  for (unsigned int v = 0; v < m.vn(); ++v) positions->push_back(m.vPos(v));
  triangles->reserve(size_t(m.fn()) * 3);
  for (unsigned int f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f)) continue;
    for (unsigned int t = 0; t + 2 < m.fVNum(f); ++t)
      triangles->insert(triangles->end(), {m.fV(f, 0), m.fV(f, t + 1), m.fV(f, t + 2)});
  }
  auto built = std::make_shared<MESH::editMesh>();
  const unsigned int revision = document->getRevision();
  reducedJobs.start(
      "Reduced copy",
      [positions, triangles, built](SYSTEM::callBack* cb, std::string&) {
        std::vector<point3f> outPositions;
        std::vector<unsigned int> outTriangles, map;
        if (!MESH::ALGO::REMESHING::qECollapse::decimate(*positions, *triangles, REDUCED_TRIANGLES,
                                                         outPositions, outTriangles, map, cb))
          return false;
        for (const point3f& p : outPositions) built->addVertex(p);
        for (size_t i = 0; i + 2 < outTriangles.size(); i += 3)
          built->addTriFace(outTriangles[i], outTriangles[i + 1], outTriangles[i + 2]);
        built->checkMeshState();
        built->computeEdges(true);
        built->computeVE();
        built->computeNormalizedNormals();
        return true;
      },
      [this, built, revision](bool ok, const std::string&) {
        // A copy of a mesh that has changed since is of no use; the next update starts anew.
        if (revision != document->getRevision()) return;
        reducedRevision = revision;
        reduced->discard();
        reduced->getEditMesh() = ok ? *built : MESH::editMesh();
        reduced->invalidateRenderData();
      });
}

// While the camera moves, a large mesh is drawn from its reduced copy; when it stops, one
// frame at full detail follows.
void editorWindow::chooseLevelOfDetail() {
  SYSTEM::inputContext* input = getInputContext();
  const bool dragging =
      ball->enabled.cV() && (input->isMouseLeftButtonDown() || input->isMouseMiddleButtonDown() ||
                             input->isMouseRightButtonDown());
  const bool wheeling = std::chrono::steady_clock::now() - lastWheel < WHEEL_SETTLE;
  const bool nowMoving = dragging || wheeling;
  if (moving && !nowMoving) refresh();
  if (wheeling) refresh();  // keeps the frames coming until the wheel has settled
  moving = nowMoving;
  const bool useReduced = moving && needsReducedCopy() && isLevelOfDetailReady();
  if (node->disabled.cV() != useReduced) node->disabled = useReduced;
  if (reduced->disabled.cV() == useReduced) reduced->disabled = !useReduced;
}

void editorWindow::takeDroppedFiles() {
  std::string path;
  // A drop while a job runs is refused with a message, like any other open.
  while (PLATFORM::current().takeDroppedFile(getHWnd(), path)) openFile(path);
}

void editorWindow::draw() {
  if (!ready) return;
  const auto now = std::chrono::steady_clock::now();
  if (hadFrame) {
    const double gap = std::chrono::duration<double, std::milli>(now - lastFrame).count();
    // `moving` still tells how the frame that just ended was drawn.
    double& longest = moving ? longestOrbitGap : longestGap;
    if (gap < 1000.0) longest = std::max(longest, gap);
  }
  lastFrame = now;
  hadFrame = true;

  RENDERING::renderer* r = getRenderer();
  RENDERING::renderingContext* rc = getRenderingContext();
  if (!deviceReady) {
    // The device's copy of colour material starts as "ambient and diffuse" while GL
    // starts with it off, so the node's state would never be sent: make them agree.
    RENDERING::RENDERSTATE::colorMaterialstate off(
        RENDERING::RENDERSTATE::colorMaterialstate::COLOR_MATERIAL_OFF,
        RENDERING::RENDERSTATE::colorMaterialstate::FACE_FRONT_AND_BACK);
    r->setColorMaterialState(off);
    // Without the font the interface still works, only without captions.
    r->cacheFont(&interfaceFont);
    deviceReady = true;
  }
  // The trackball takes the mouse here, before the camera is placed, unless the left
  // button belongs to a selection gesture or to the interface.
  const bool leftDown = getInputContext()->isMouseLeftButtonDown();
  ball->enabled = !(leftDown && (tool != selectTool::ORBIT || pressOnWidget || gesture));
  ball->render(rc);
  placeCamera();
  chooseLevelOfDetail();
  if (!mover->disabled.cV()) mover->setSize(mover->computeOptimalManipSize());

  auto& target = rc->getRenderStateStack()->getCurrentRenderTargetState();
  target.clearColour = BACKGROUND;
  r->beginScene(target);
  r->clear(target);
  scene->render();
  r->endScene();
  if (gesture && tool == selectTool::RECTANGLE) drawRectangle();
}

}  // namespace EDITOR
