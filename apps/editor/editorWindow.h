#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <jev3d/gui/font.h>
#include <jev3d/math/point2.h>
#include <jev3d/system/eventDelegate.h>
#include <jev3d/system/winMain.h>

#include "jobRunner.h"
#include "meshDocument.h"
#include "meshEdits.h"

namespace JEV {
namespace GUI {
class guiController;
class label;
class menu;
class progressbar;
class widget;
}  // namespace GUI
namespace MESH {
namespace EDITING {
class editMeshNode;
namespace MANIPULATOR {
class selectionManipulation;
class trsManipulator;
}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
namespace RENDERING {
class cameraState;
class renderer;
}  // namespace RENDERING
namespace SG {
class sgController;
namespace CAM {
class trackballNode;
}
}  // namespace SG
}  // namespace JEV

namespace EDITOR {

// What a left drag over the mesh does.
enum class selectTool { ORBIT, CLICK, RECTANGLE, BRUSH, MOVE };
// What the selection tools pick.
enum class elementKind { FACES, EDGES, VERTICES };

// The mesh editor's window: the scene (a trackball camera, a light from the camera, the
// editable node), the interface read from the embedded project file (menu bar, menus,
// status line, progress bar and cancel button), the selection tools and the commands.
// Everything runs on the loop's thread but the jobs, which work on copies.
class editorWindow : public JEV::SYSTEM::winMain {
 public:
  // `files` are opened at start, the last one winning. With `tickAlways` the window is
  // served at every tick, as scripted tests want; the program sleeps while idle.
  editorWindow(JEV::SYSTEM::application* app, JEV::RENDERING::renderer* device,
               std::vector<std::string> files, bool tickAlways = false);
  ~editorWindow() override;

  bool init() override;
  bool update() override;
  void draw() override;
  bool deInit() override;

  // Runs the command a menu item of that id runs; false for an unknown id.
  bool runCommand(const std::string& id);
  // Starts reading the file on the job thread; on success it replaces the mesh. False
  // (with a message) while another job runs.
  bool openFile(const std::string& path);
  bool saveFile(const std::string& path);

  // True once the interface and the scene are built (after the first update).
  bool isReady() const { return ready; }
  const std::wstring& getStatus() const { return status; }
  meshDocument& getDocument() { return *document; }
  jobRunner& getJobs() { return jobs; }
  JEV::GUI::guiController* getGuiController() const;
  JEV::SG::CAM::trackballNode* getTrackball() const { return ball.get(); }
  JEV::MESH::EDITING::MANIPULATOR::trsManipulator* getMover() const { return mover; }
  selectTool getTool() const { return tool; }
  elementKind getElementKind() const { return kind; }
  // The longest time from the start of one frame to the start of the next since the last
  // reset, for frames drawn while the camera moved (orbiting) and for the others (a full
  // frame of the whole mesh). A gap over a second is an idle pause, not a frame.
  double getLongestFrameGap() const { return longestGap; }
  double getLongestOrbitGap() const { return longestOrbitGap; }
  void resetFrameGaps() { longestGap = longestOrbitGap = 0; }
  // True when orbiting can draw the reduced copy of a large mesh (or needs none).
  bool isLevelOfDetailReady() const;
  // The mesh files of the starting folder that File > Open lists.
  const std::vector<std::string>& getListedFiles() const { return listedFiles; }

 private:
  struct command {
    std::wstring caption;
    std::function<void()> run;
  };

  void buildScene();
  bool buildInterface();
  void defineCommands();
  void listFolder();
  void giveFont(JEV::GUI::widget* w);
  void setStatus(const std::string& text);
  void setStatus(const std::wstring& text);
  void frameMesh();
  void placeCamera();
  void showProgress();
  void takeDroppedFiles();
  bool needsReducedCopy() const;
  void startReducedCopy();
  void chooseLevelOfDetail();
  void followMover();
  bool startEdit(const std::string& label, meshEdit edit);
  bool refuseWhileBusy();
  void undo();
  void redo();
  void setTool(selectTool t, const char* name);
  void setElementKind(elementKind k);
  void setDisplayMode(unsigned int mode);
  void clearSelection();
  void beginPathEntry(bool forSave);

  // Interface events.
  void onCommandClick(const JEV::SYSTEM::inputEvent* e);
  void onBarClick(const JEV::SYSTEM::inputEvent* e);
  void onOpenListClick(const JEV::SYSTEM::inputEvent* e);
  void onCancelClick(const JEV::SYSTEM::inputEvent* e);
  void onLeftDown(const JEV::SYSTEM::inputEvent* e);
  void onLeftDrag(const JEV::SYSTEM::inputEvent* e);
  void onLeftUp(const JEV::SYSTEM::inputEvent* e);
  void onKeyDown(const JEV::SYSTEM::inputEvent* e);
  void onKeyUp(const JEV::SYSTEM::inputEvent* e);
  void onKeyChar(const JEV::SYSTEM::inputEvent* e);
  void onWheel(const JEV::SYSTEM::inputEvent* e);

  // Selection in window pixels (origin bottom left).
  bool overScene(const JEV::SYSTEM::inputEvent* e) const;
  bool pickFace(float x, float y, unsigned int& face, JEV::MATH::point3<float>& point);
  void clickSelect(float x, float y, bool remove);
  void rectangleSelect(float x0, float y0, float x1, float y1, bool remove);
  void brushSelect(float x, float y, bool remove);
  bool project(const JEV::MATH::point3<float>& p, float& x, float& y) const;
  void drawRectangle();

  std::vector<std::string> startFiles;
  std::unique_ptr<JEV::SG::sgController> scene;
  JEV::RENDERING::cameraState* camera = nullptr;
  std::unique_ptr<JEV::SG::CAM::trackballNode> ball;
  JEV::MESH::EDITING::editMeshNode* node = nullptr;
  // The move tool's handles and what applies their drags to the selection; the latter
  // outlives the document's history, which holds records that name it.
  JEV::MESH::EDITING::MANIPULATOR::trsManipulator* mover = nullptr;
  std::unique_ptr<JEV::MESH::EDITING::MANIPULATOR::selectionManipulation> moverLink;
  std::unique_ptr<meshDocument> document;
  jobRunner jobs;
  // A large mesh is drawn from a reduced copy while the camera moves, so that orbiting
  // stays smooth; the copy is made on a job thread of its own after each change.
  JEV::MESH::EDITING::editMeshNode* reduced = nullptr;
  jobRunner reducedJobs;
  unsigned int reducedRevision = ~0u;
  bool moving = false;
  std::chrono::steady_clock::time_point lastWheel;

  JEV::GUI::font interfaceFont{L"DejaVuSans", 13};
  JEV::GUI::label* statusLabel = nullptr;
  JEV::GUI::progressbar* progress = nullptr;
  JEV::GUI::widget* cancelButton = nullptr;
  std::map<std::string, command> commands;
  std::map<std::wstring, std::wstring> barMenus;  // bar button id -> menu id
  std::vector<std::string> listedFiles;
  std::vector<JEV::SYSTEM::inputEventDelegate> handlers;
  std::wstring status;
  bool ready = false;
  bool deviceReady = false;

  selectTool tool = selectTool::ORBIT;
  elementKind kind = elementKind::FACES;
  // The left button went down over the scene with a selection tool: a gesture runs.
  bool gesture = false;
  bool gestureRemoves = false;
  bool pressOnWidget = false;
  bool ctrlHeld = false;
  float pressX = 0, pressY = 0, dragX = 0, dragY = 0;
  // The typed path of File > Open path / Save as, while one is being typed.
  bool typingPath = false;
  bool typingForSave = false;
  std::wstring typedPath;

  // The camera as of the last frame, for picking and projection.
  JEV::MATH::matrix4<float> viewProjection;
  float viewWidth = 1, viewHeight = 1;

  std::chrono::steady_clock::time_point lastFrame;
  bool hadFrame = false;
  double longestGap = 0;
  double longestOrbitGap = 0;
};

}  // namespace EDITOR
