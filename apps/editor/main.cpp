// jev3d-editor: opens the PLY or STL files given on the command line (the last one shown)
// and edits them; see editorWindow.h.
#include <string>
#include <vector>

#include <jev3d/renderer/rendergl/renderGL.h>
#include <jev3d/system/application.h>

#include "editorWindow.h"

int main(int argc, char** argv) {
  std::vector<std::string> files(argv + 1, argv + argc);
  JEV::SYSTEM::application app(L"", L"");
  JEV::RENDERING::renderGL device;
  EDITOR::editorWindow window(&app, &device, files);
  app.addWin(&window);
  return app.mainLoop() == 1 ? 0 : 1;
}
