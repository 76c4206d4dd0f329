// The editor's mouse and keys: the selection tools over the scene and the typed path.
#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include <jev3d/editing/editMeshNode.h>
#include <jev3d/gui/guiController.h>
#include <jev3d/gui/menu.h>
#include <jev3d/io/xml/stringConversion.h>
#include <jev3d/platform/messages.h>

#include "editorWindow.h"

namespace EDITOR {

using namespace JEV;
using point3f = MATH::point3<float>;

namespace {

// The brush's radius in window pixels.
constexpr float BRUSH_RADIUS = 20.f;
// A press and release closer than this is a click, not a rectangle.
constexpr float CLICK_SLOP = 3.f;

}  // namespace

bool editorWindow::overScene(const SYSTEM::inputEvent* e) const {
  GUI::guiController* gui = getGuiController();
  return !e->target || (gui && e->target == gui->getRootWidget());
}

void editorWindow::onLeftDown(const SYSTEM::inputEvent* e) {
  pressOnWidget = !overScene(e);
  // Orbiting and the move handles have the left button to themselves.
  if (pressOnWidget || typingPath || tool == selectTool::ORBIT || tool == selectTool::MOVE ||
      !document->hasMesh())
    return;
  if (jobs.isBusy()) {
    setStatus(jobs.label() + " is running: the selection waits until it ends");
    return;
  }
  gesture = true;
  gestureRemoves = ctrlHeld;
  pressX = dragX = e->x;
  pressY = dragY = e->y;
  document->beginSelection();
  if (tool == selectTool::BRUSH) brushSelect(e->x, e->y, gestureRemoves);
  refresh();
}

void editorWindow::onLeftDrag(const SYSTEM::inputEvent* e) {
  if (!gesture) return;
  dragX = e->x;
  dragY = e->y;
  if (tool == selectTool::BRUSH) brushSelect(e->x, e->y, gestureRemoves);
  refresh();
}

void editorWindow::onLeftUp(const SYSTEM::inputEvent* e) {
  pressOnWidget = false;
  if (!gesture) return;
  gesture = false;
  const bool click = std::abs(e->x - pressX) <= CLICK_SLOP && std::abs(e->y - pressY) <= CLICK_SLOP;
  const char* label = "Brush selection";
  if (tool == selectTool::CLICK || (tool == selectTool::RECTANGLE && click)) {
    clickSelect(e->x, e->y, gestureRemoves);
    label = "Click selection";
  } else if (tool == selectTool::RECTANGLE) {
    rectangleSelect(pressX, pressY, e->x, e->y, gestureRemoves);
    label = "Rectangle selection";
  }
  document->endSelection(label);
  const MESH::editMesh& m = document->mesh();
  setStatus(std::string(label) + ": " + std::to_string(m.getSelFn()) + " faces, " +
            std::to_string(m.getSelEn()) + " edges, " + std::to_string(m.getSelVn()) +
            " vertices selected");
}

bool editorWindow::project(const point3f& p, float& x, float& y) const {
  const MATH::matrix4<float>& m = viewProjection;
  // Row vector times the matrix, by hand: the w that the divide needs is kept.
  const float cx = p.x * m(0, 0) + p.y * m(1, 0) + p.z * m(2, 0) + m(3, 0);
  const float cy = p.x * m(0, 1) + p.y * m(1, 1) + p.z * m(2, 1) + m(3, 1);
  const float cw = p.x * m(0, 3) + p.y * m(1, 3) + p.z * m(2, 3) + m(3, 3);
  if (!(cw > 0.f)) return false;  // behind the eye
  x = (cx / cw * 0.5f + 0.5f) * viewWidth;
  y = (cy / cw * 0.5f + 0.5f) * viewHeight;
  return true;
}

bool editorWindow::pickFace(float x, float y, unsigned int& face, point3f& point) {
  const MATH::matrix4<float> inverse = viewProjection.getInverse();
  const float nx = 2.f * x / viewWidth - 1.f, ny = 2.f * y / viewHeight - 1.f;
  // Depth runs 0 to 1 in our projections: the ray from the near plane to the far one.
  const point3f nearPoint = point3f(nx, ny, 0.f) * inverse;
  const point3f farPoint = point3f(nx, ny, 1.f) * inverse;
  point3f direction = farPoint - nearPoint;
  if (!(direction.norm() > 0.f)) return false;
  direction.normalize();
  MATH::rayHit hit;
  if (!node->getRayIntersect(nearPoint, direction, hit, point)) return false;
  face = hit.face;
  return face < document->mesh().fn();
}

void editorWindow::clickSelect(float x, float y, bool remove) {
  MESH::editMesh& m = document->mesh();
  unsigned int f = 0;
  point3f at;
  if (!pickFace(x, y, f, at)) return;
  switch (kind) {
    case elementKind::FACES:
      remove ? node->deselectFace(f) : node->selectFace(f);
      break;
    case elementKind::VERTICES: {
      // The corner of the hit face nearest to the hit point.
      unsigned int best = m.fV(f, 0);
      for (unsigned int i = 1; i < m.fVNum(f); ++i)
        if ((m.vPos(m.fV(f, i)) - at).norm() < (m.vPos(best) - at).norm()) best = m.fV(f, i);
      remove ? node->deselectVert(best) : node->selectVert(best);
      break;
    }
    case elementKind::EDGES: {
      // The side of the hit face whose midpoint is nearest to the hit point.
      unsigned int a = m.fV(f, 0), b = m.fV(f, 1);
      float bestDistance = -1.f;
      for (unsigned int i = 0; i < m.fVNum(f); ++i) {
        const unsigned int p = m.fV(f, i), q = m.fV(f, (i + 1) % m.fVNum(f));
        const float d = ((m.vPos(p) + m.vPos(q)) * 0.5f - at).norm();
        if (bestDistance < 0.f || d < bestDistance) bestDistance = d, a = p, b = q;
      }
      const unsigned int e = m.findSharedEdgeFromVertices(a, b);
      if (e >= m.en()) return;
      remove ? m.deselectEdge(e) : m.selectEdge(e);
      node->invalidateRenderData();
      break;
    }
  }
}

void editorWindow::rectangleSelect(float x0, float y0, float x1, float y1, bool remove) {
  MESH::editMesh& m = document->mesh();
  const float lowX = std::min(x0, x1), highX = std::max(x0, x1);
  const float lowY = std::min(y0, y1), highY = std::max(y0, y1);
  auto inside = [&](const point3f& p) {
    float x = 0, y = 0;
    return project(p, x, y) && x >= lowX && x <= highX && y >= lowY && y <= highY;
  };
  switch (kind) {
    case elementKind::FACES:
      // A face is inside when its centroid is, whether or not it faces the camera.
      for (unsigned int f = 0; f < m.fn(); ++f) {
        if (m.isFaceDeleted(f) || m.fVNum(f) == 0 || m.isFaceSelected(f) != remove) continue;
        point3f c(0.f, 0.f, 0.f);
        for (unsigned int i = 0; i < m.fVNum(f); ++i) c = c + m.vPos(m.fV(f, i));
        if (inside(c / float(m.fVNum(f)))) remove ? node->deselectFace(f) : node->selectFace(f);
      }
      break;
    case elementKind::VERTICES:
      for (unsigned int v = 0; v < m.vn(); ++v) {
        if (m.isVertDeleted(v) || m.isVertSelected(v) != remove || !inside(m.vPos(v))) continue;
        remove ? node->deselectVert(v) : node->selectVert(v);
      }
      break;
    case elementKind::EDGES: {
      for (unsigned int e = 0; e < m.en(); ++e) {
        if (m.edgeIsDeleted(e) || m.isEdgeSelected(e) != remove) continue;
        if (!inside(m.vPos(m.E(e).v[0])) || !inside(m.vPos(m.E(e).v[1]))) continue;
        remove ? m.deselectEdge(e) : m.selectEdge(e);
      }
      node->invalidateRenderData();
      break;
    }
  }
}

void editorWindow::brushSelect(float x, float y, bool remove) {
  MESH::editMesh& m = document->mesh();
  unsigned int hit = 0;
  point3f at;
  if (!pickFace(x, y, hit, at)) return;
  // The brush covers the faces around the hit, grown through shared vertices, whose
  // centroids fall within the radius on the screen: only the surface under the pointer.
  std::vector<unsigned int> front{hit}, reached{hit};
  std::vector<unsigned char> seen(m.fn(), 0);
  seen[hit] = 1;
  while (!front.empty()) {
    const unsigned int f = front.back();
    front.pop_back();
    for (unsigned int i = 0; i < m.fVNum(f); ++i) {
      for (unsigned int g : m.getAdiacentFaces(m.fV(f, i))) {
        if (g >= m.fn() || seen[g]) continue;
        seen[g] = 1;
        point3f c(0.f, 0.f, 0.f);
        for (unsigned int k = 0; k < m.fVNum(g); ++k) c = c + m.vPos(m.fV(g, k));
        float px = 0, py = 0;
        if (!project(c / float(m.fVNum(g)), px, py)) continue;
        if ((px - x) * (px - x) + (py - y) * (py - y) > BRUSH_RADIUS * BRUSH_RADIUS) continue;
        front.push_back(g);
        reached.push_back(g);
      }
    }
  }
  for (unsigned int f : reached) {
    if (kind == elementKind::FACES) {
      if (m.isFaceSelected(f) == remove) remove ? node->deselectFace(f) : node->selectFace(f);
      continue;
    }
    for (unsigned int i = 0; i < m.fVNum(f); ++i) {
      const unsigned int v = m.fV(f, i);
      if (kind == elementKind::VERTICES) {
        if (m.isVertSelected(v) == remove) remove ? node->deselectVert(v) : node->selectVert(v);
      } else {
        const unsigned int e = m.findSharedEdgeFromVertices(v, m.fV(f, (i + 1) % m.fVNum(f)));
        if (e < m.en() && m.isEdgeSelected(e) == remove)
          remove ? m.deselectEdge(e) : m.selectEdge(e);
      }
    }
  }
  if (kind == elementKind::EDGES) node->invalidateRenderData();
}

void editorWindow::drawRectangle() {
  // Plain GL with its state saved around it, so the device's copies of the state stay true.
  glPushAttrib(GL_ALL_ATTRIB_BITS);
  glMatrixMode(GL_PROJECTION);
  glPushMatrix();
  glLoadIdentity();
  glOrtho(0, viewWidth, 0, viewHeight, -1, 1);
  glMatrixMode(GL_MODELVIEW);
  glPushMatrix();
  glLoadIdentity();
  glDisable(GL_LIGHTING);
  glDisable(GL_TEXTURE_2D);
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_CULL_FACE);
  glColor3f(1.f, 0.85f, 0.2f);
  glBegin(GL_LINE_LOOP);
  glVertex2f(pressX, pressY);
  glVertex2f(dragX, pressY);
  glVertex2f(dragX, dragY);
  glVertex2f(pressX, dragY);
  glEnd();
  glPopMatrix();
  glMatrixMode(GL_PROJECTION);
  glPopMatrix();
  glMatrixMode(GL_MODELVIEW);
  glPopAttrib();
}

// Ctrl is followed through the events themselves: the key's field tells how it is now,
// which may be after the events being handled.
void editorWindow::onKeyUp(const SYSTEM::inputEvent* e) {
  if (e->keyCode == int(PLATFORM::VK_CONTROL)) ctrlHeld = false;
}

void editorWindow::onKeyDown(const SYSTEM::inputEvent* e) {
  const int key = e->keyCode;
  if (key == int(PLATFORM::VK_CONTROL)) ctrlHeld = true;
  if (typingPath) return;  // the characters go to the path
  if (key == int(PLATFORM::VK_ESCAPE)) {
    if (jobs.cancel()) setStatus("Cancelled: the mesh is as it was");
    return;
  }
  if (!ctrlHeld) return;
  switch (key) {
    case 'Z':
      runCommand("EDIT_UNDO");
      break;
    case 'Y':
      runCommand("EDIT_REDO");
      break;
    case 'S':
      runCommand("FILE_SAVE");
      break;
    case 'O':
      runCommand("FILE_OPEN_PATH");
      break;
    default:
      break;
  }
}

void editorWindow::onKeyChar(const SYSTEM::inputEvent* e) {
  if (!typingPath) return;
  const int c = e->charCode ? e->charCode : e->keyCode;
  if (c == int(PLATFORM::VK_ESCAPE)) {
    typingPath = false;
    setStatus("Cancelled");
    return;
  }
  if (c == int(PLATFORM::VK_RETURN)) {
    typingPath = false;
    const std::string path = IO::XML::wstringToUtf8(typedPath);
    typingForSave ? saveFile(path) : openFile(path);
    return;
  }
  if (c == int(PLATFORM::VK_BACK)) {
    if (!typedPath.empty()) typedPath.pop_back();
  } else if (c >= 32) {
    typedPath.push_back(wchar_t(c));
  }
  setStatus((typingForSave ? L"Save as: " : L"Open: ") + typedPath +
            L"_   (Return accepts, Escape cancels)");
}

void editorWindow::onCommandClick(const SYSTEM::inputEvent* e) {
  // The item's parts pass their clicks on to it: find the widget that names a command.
  for (GUI::widget* w = e->target; w; w = w->getParent()) {
    if (runCommand(IO::XML::wstringToUtf8(w->getId()))) return;
  }
}

void editorWindow::onBarClick(const SYSTEM::inputEvent* e) {
  GUI::guiController* gui = getGuiController();
  for (GUI::widget* w = e->target; w; w = w->getParent()) {
    auto it = barMenus.find(w->getId());
    if (it == barMenus.end()) continue;
    auto* m = dynamic_cast<GUI::menu*>(gui->getWidget(it->second));
    if (!m) return;
    const auto at = w->getAbsolutePos();
    m->popup(at.x, at.y);  // opens below the bar button
    return;
  }
}

void editorWindow::onOpenListClick(const SYSTEM::inputEvent* e) {
  for (GUI::widget* w = e->target; w; w = w->getParent()) {
    if (w->getUserString().empty()) continue;
    openFile(IO::XML::wstringToUtf8(w->getUserString()));
    return;
  }
}

void editorWindow::onWheel(const SYSTEM::inputEvent*) {
  lastWheel = std::chrono::steady_clock::now();
  refresh();
}

void editorWindow::onCancelClick(const SYSTEM::inputEvent*) {
  if (jobs.cancel()) setStatus("Cancelled: the mesh is as it was");
}

}  // namespace EDITOR
