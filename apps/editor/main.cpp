// jev3d-editor: opens the PLY or STL files given on the command line (the last one shown)
// and edits them; see editorWindow.h.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <jev3d/platform/sdlPlatform.h>
#include <jev3d/renderer/rendergl/renderGL.h>
#include <jev3d/system/application.h>

#include "editorWindow.h"

int main(int argc, char** argv) {
  std::vector<std::string> files;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
      std::printf(
          "usage: jev3d-editor [FILE.ply|FILE.stl]\n"
          "Opens the mesh (the last file given) in an editor window. Files can also be\n"
          "opened from the File menu (the folder's files, or a typed path) and by dropping\n"
          "them on the window. Left drag orbits (or selects, with a selection tool), middle\n"
          "drag pans, right drag and the wheel zoom; Ctrl+Z undoes, Ctrl+Y redoes, Ctrl+S\n"
          "saves, Escape cancels a running job.\n");
      return 0;
    }
    files.emplace_back(argv[i]);
  }
  // Without a display there is nothing to edit in: say so and fail.
  if (auto* sdl = dynamic_cast<JEV::PLATFORM::sdlPlatform*>(&JEV::PLATFORM::current());
      sdl && !sdl->isReady()) {
    std::fprintf(stderr, "jev3d-editor: no display to open a window on\n");
    return 1;
  }
  JEV::SYSTEM::application app(L"", L"");
  JEV::RENDERING::renderGL device;
  EDITOR::editorWindow window(&app, &device, files);
  app.addWin(&window);
  return app.mainLoop() == 1 ? 0 : 1;
}
