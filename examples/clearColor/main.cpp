// One window cleared every frame to a colour that a field drives: the hue field moves
// with time in update, a delegate on it asks for a frame, and draw reads it. Escape,
// watched as a key field, closes the window.
#include <GL/glew.h>

#include <cmath>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/platform/messages.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/system/application.h"
#include "jev3d/system/inputContext.h"
#include "jev3d/system/updateContext.h"
#include "jev3d/system/winMain.h"

using namespace JEV;

class clearColorWindow : public SYSTEM::winMain {
 public:
  clearColorWindow(SYSTEM::application* app, RENDERING::renderer* device)
      : winMain(app, device, nullptr, false, /*tickAlways=*/false, L"") {
    setCaption(L"jev3d clear colour");
    setSize(640, 480);
    hue.registerEventOnChangeValue(SYSTEM::makeDelegate(this, &clearColorWindow::refresh));
    getInputContext()->keys[PLATFORM::VK_ESCAPE].registerEventOnChangeValue(
        SYSTEM::makeDelegate(this, &clearColorWindow::onEscape));
  }

  bool update() override {
    // One turn of the colour wheel every six seconds.
    hue = std::fmod(static_cast<float>(getUpdateContext()->updateTime.cV()) / 6000.0f, 1.0f);
    return true;
  }

  void draw() override {
    const float h = hue.cV() * 6.0f;
    const float r = std::fabs(h - 3.0f) - 1.0f;
    const float g = 2.0f - std::fabs(h - 2.0f);
    const float b = 2.0f - std::fabs(h - 4.0f);
    glViewport(0, 0, getRenderingContext()->windowWidth.cV(),
               getRenderingContext()->windowHeight.cV());
    glClearColor(clamp(r), clamp(g), clamp(b), 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  }

  SYSTEM::fieldBase<float> hue;

 private:
  static float clamp(float v) { return v < 0 ? 0 : (v > 1 ? 1 : v); }
  void onEscape() {
    if (getInputContext()->keys[PLATFORM::VK_ESCAPE].cV()) closeWindow();
  }
};

int main() {
  SYSTEM::application app(L"", L"");
  RENDERING::renderGL device;
  clearColorWindow window(&app, &device);
  app.addWin(&window);
  return app.mainLoop() == 1 ? 0 : 1;
}
