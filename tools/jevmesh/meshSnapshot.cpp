#include "meshSnapshot.h"

#include <png.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <thread>

#include "jev3d/platform/messages.h"
#include "jev3d/platform/platform.h"
#include "jev3d/renderer/cameraState.h"
#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/renderstate/colorMaterialstate.h"
#include "jev3d/renderer/renderstate/lightstate.h"
#include "jev3d/scene/sgController.h"
#include "jev3d/scene/trackballNode.h"

namespace JEVMESH {

using namespace JEV;
using MESH::EDITING::editMeshNode;
using point3f = MATH::point3<float>;

namespace {

constexpr float DEGREE = 3.14159265358979f / 180.f;

std::int64_t ignoreMessages(PLATFORM::windowHandle, unsigned, std::uint64_t, std::int64_t) {
  return 0;
}

// A window on the screen gets its pixels at its first exposure; the offscreen driver never
// sends one and has them at once. The bound only keeps a broken display from hanging us.
void waitExposed(PLATFORM::platform& p) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
  while (std::chrono::steady_clock::now() < end) {
    PLATFORM::message m;
    while (p.peekMessage(m))
      if (m.msg == PLATFORM::WM_PAINT) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

void setDisplayMode(editMeshNode& node, MESH::EDITING::EDIT_MESH_DISPLAY_MODE mode) {
  switch (mode) {
    case MESH::EDITING::EDIT_MESH_DISPLAY_FACE:
      // Faces are what this mode is about: show where each one ends.
      node.faceModeWireframe = true;
      node.enableFaceModeDisplay();
      break;
    case MESH::EDITING::EDIT_MESH_DISPLAY_EDGE:
      node.enableEdgeModeDisplay();
      break;
    case MESH::EDITING::EDIT_MESH_DISPLAY_VERTEX:
      node.enableVertexModeDisplay();
      break;
    default:
      node.enableObjectModeDisplay();
  }
}

// The window, its context and the scene drawn in it; torn down in reverse order.
class snapshotScene {
 public:
  explicit snapshotScene(const snapshotView& v) : view(v) {}
  ~snapshotScene() {
    if (contextMade) {
      gl.makeCurrentContext(false);
      if (mesh) mesh->discard();
      scene.discard();
      gl.emptyDiscardList();
      rc.discard();
      gl.deleteContext();
    }
    if (window) PLATFORM::current().destroyWindow(window);
  }

  bool open(std::string& error) {
    PLATFORM::platform& p = PLATFORM::current();
    window = p.createWindow(
        PLATFORM::windowDescriptor{
            L"jevmesh snapshot", PLATFORM::rect{0, 0, view.width, view.height}, {}},
        ignoreMessages);
    bool recreate = false;
    if (!window || !(contextMade = gl.createContext(window, recreate)) || !gl.init()) {
      error = "no OpenGL context could be made for drawing";
      return false;
    }
    p.showWindow(window, PLATFORM::SW_SHOW);
    waitExposed(p);
    rc.windowWidth = view.width;
    rc.windowHeight = view.height;
    if (!gl.resetDevice(&rc)) {
      error = "the OpenGL device could not be set up";
      return false;
    }
    // The device's copy of colour material starts as "ambient and diffuse" while GL
    // starts with it off, so the node's state would never be sent: make them agree.
    RENDERING::RENDERSTATE::colorMaterialstate off(
        RENDERING::RENDERSTATE::colorMaterialstate::COLOR_MATERIAL_OFF,
        RENDERING::RENDERSTATE::colorMaterialstate::FACE_FRONT_AND_BACK);
    gl.setColorMaterialState(off);
    return true;
  }

  // camera -> light -> mesh, the camera framing the mesh's box from the chosen view.
  // False when the box has a coordinate that is not finite: nothing could be framed.
  bool build(editMeshNode* node) {
    mesh = node;
    auto* camera =
        static_cast<RENDERING::cameraState*>(scene.addNode(new RENDERING::cameraState(), "camera"));
    auto* ball = static_cast<SG::CAM::trackballNode*>(
        scene.addNode(new SG::CAM::trackballNode(nullptr, nullptr, &rc), "trackball"));
    auto* light = static_cast<RENDERING::RENDERSTATE::lightstate*>(
        scene.addNode(new RENDERING::RENDERSTATE::lightstate(), "light"));
    scene.addNode(node, "mesh");
    light->connect(camera, false);
    node->connect(light, false);
    scene.setRoot(camera);

    setDisplayMode(*node, view.mode);
    MESH::editMesh& m = node->getEditMesh();
    m.computeBBox();
    ball->orientation = MATH::quaternion<float>(point3f(0, 1, 0), view.yaw * DEGREE) *
                        MATH::quaternion<float>(point3f(1, 0, 0), view.pitch * DEGREE);
    if (!ball->fitBoundingBox(m.getBBoxMin(), m.getBBoxMax())) return false;
    camera->view = ball->viewMatrix.cV();
    // Near and far planes hug the bounding sphere, so depth keeps its precision.
    const float radius = std::max((m.getBBoxMax() - m.getBBoxMin()).norm() / 2, 1e-6f);
    const float d = ball->distance.cV();
    camera->projection = MATH::matrix4<float>::getPerspectiveLHRad(
        ball->fieldOfView.cV(), float(view.width) / float(view.height),
        std::max(d - radius * 1.05f, d * 1e-3f), d + radius * 1.05f);

    light->enable = true;
    light->viewFlag = true;  // its direction is the camera's forward
    light->direction = point3f(0.f, 0.f, 1.f);
    light->ambient = CORE::color(45, 45, 45, 255);
    light->diffuse = CORE::color(160, 160, 160, 255);
    light->specular = CORE::color(0, 0, 0, 255);
    return true;
  }

  bool draw(std::vector<std::uint8_t>& rgba, std::string& error) {
    if (!gl.makeCurrentContext(false)) {
      error = "the OpenGL context could not be made current";
      return false;
    }
    auto& target = rc.getRenderStateStack()->getCurrentRenderTargetState();
    target.clearColour =
        CORE::color(SNAPSHOT_BACKGROUND[0], SNAPSHOT_BACKGROUND[1], SNAPSHOT_BACKGROUND[2], 255);
    gl.beginScene(target);
    gl.clear(target);
    scene.getRoot()->render(&rc);
    const size_t row = size_t(view.width) * 4;
    std::vector<std::uint8_t> bottomUp(row * size_t(view.height));
    const bool read =
        gl.readPixels(0, 0, view.width, view.height, RENDERING::renderer::PIXELDATA_RGBA,
                      RENDERING::renderer::DATA_UNSIGNED_BYTE, bottomUp.data());
    gl.endScene();
    if (!read) {
      error = "the drawn image could not be read back";
      return false;
    }
    rgba.resize(bottomUp.size());
    for (int y = 0; y < view.height; ++y)
      std::copy_n(bottomUp.data() + size_t(view.height - 1 - y) * row, row,
                  rgba.data() + size_t(y) * row);
    return true;
  }

 private:
  snapshotView view;
  PLATFORM::windowHandle window = 0;
  RENDERING::renderGL gl;
  RENDERING::renderingContext rc{&gl, nullptr};
  SG::sgController scene{nullptr};
  editMeshNode* mesh = nullptr;
  bool contextMade = false;
};

}  // namespace

bool renderSnapshot(editMeshNode* node, const snapshotView& view, std::vector<std::uint8_t>& rgba,
                    std::string& error) {
  snapshotScene s(view);
  if (!s.open(error)) {
    delete node;
    return false;
  }
  if (!s.build(node)) {
    error = "the mesh has coordinates that are not finite";
    return false;
  }
  return s.draw(rgba, error);
}

bool writePng(const std::string& path, int width, int height, const std::vector<std::uint8_t>& rgba,
              std::string& error) {
  FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) {
    error = "cannot be written";
    return false;
  }
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  bool ok = png && info;
  // libpng reports its failures by jumping back here; nothing below owns a destructor.
  if (ok && setjmp(png_jmpbuf(png)) == 0) {
    png_init_io(png, f);
    png_set_IHDR(png, info, png_uint_32(width), png_uint_32(height), 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(png, 9);
    png_write_info(png, info);
    png_set_filler(png, 0, PNG_FILLER_AFTER);  // the image is opaque: alpha is dropped
    for (int y = 0; y < height; ++y)
      png_write_row(png, rgba.data() + size_t(y) * size_t(width) * 4);
    png_write_end(png, nullptr);
  } else {
    ok = false;
  }
  png_destroy_write_struct(png ? &png : nullptr, info ? &info : nullptr);
  ok = (std::fclose(f) == 0) && ok;
  if (!ok) {
    std::remove(path.c_str());
    error = "cannot be written";
  }
  return ok;
}

}  // namespace JEVMESH
