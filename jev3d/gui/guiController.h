#pragma once

#include <atomic>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/fields/mtLinker.h"
#include "jev3d/gui/eventSchedule.h"
#include "jev3d/gui/guiColorTable.h"
#include "jev3d/gui/guiEnums.h"
#include "jev3d/renderer/instancing/textureInstance.h"
#include "jev3d/renderer/renderstate/alphastate.h"
#include "jev3d/renderer/renderstate/blendstate.h"
#include "jev3d/resources/mtStorage.h"
#include "jev3d/system/mutex.h"
#include "jev3d/system/sharedPointer.h"
#include "jev3d/system/threadTimer.h"
#include "jev3d/system/windowGui.h"

namespace JEV {
namespace SYSTEM {
class application;
class inputContext;
class updateContext;
class winMain;
}  // namespace SYSTEM
namespace RENDERING {
class renderingContext;
}
namespace IO {
namespace XML {
class xmlElement;
}
}  // namespace IO

namespace GUI {

class canvas;
class font;
class label;
class menu;
class panel;
class widget;

enum GUI_SKIN {
  GUI_DEFAULT_SKIN = 0,
  GUI_XP_SKIN = 1,
  GUI_PLASTIQUE_SKIN = 2,
  GUI_RAG_SKIN = 3,
  GUI_IBRID_SKIN = 4,
  GUI_NO_SKIN = -1
};

enum GUI_COLOR_SCHEMA { GUI_COLOR_SCHEMA_0 = 0 };

// Owns every widget of one main window: a registry by id and a factory by class, the
// desktop that follows the window, the tooltip, the input schedule, the update and render
// passes and the colour schema. The window drives it from its update tick and its draw
// step; input reaches widgets only through the schedule, under the GUI lock.
class guiController : public SYSTEM::windowGui {
 public:
  static constexpr const wchar_t* DESKTOP_ID = L"GUICONTROLLER_WIDGET_DESKTOP";
  static constexpr const wchar_t* TITLE_BAR_ID = L"GUICONTROLLER_WIDGET_FULLSCREENTITLEBAR";
  static constexpr const wchar_t* TOOLTIP_ID = L"GUICONTROLLER_WIDGET_TOOLTIPS";
  // Widgets erased a frame at most: a big window falls apart over a few frames rather
  // than blocking one.
  static constexpr int ERASE_PER_FRAME = 32;
  static constexpr long TOOLTIP_DELAY = 900;

  // Takes the contexts from the window (which may be null, for a controller used alone).
  guiController(SYSTEM::winMain* window, SYSTEM::application* app);
  ~guiController() override;
  guiController(const guiController&) = delete;
  guiController& operator=(const guiController&) = delete;

  bool init(bool withTitleBar, bool withToolTip, const std::wstring& name) override;
  // Moves every widget of `other` into this controller, for `win` (this controller's
  // window when null): each takes this controller's colours and window, the widgets on
  // the other desktop come under this one, and the other's canvases are attached. A
  // widget whose id is taken here (the other's desktop, tooltip and title bar among them)
  // is reported on standard output with "Fail ADD: " and its id and stays with `other`.
  // Takes both GUI locks; call it holding neither.
  void addGuiCotroller(guiController* other, SYSTEM::winMain* win);
  void update() override;
  void render() override;
  bool discard() override;
  bool waitGuiMutex(unsigned long milliseconds) override;
  void releaseGuiMutex() override;
  widget* getWidgetBelowMouse(float x, float y) override;
  widget* getFocusedWidget() override;
  widget* getRootWidget() override;
  int getSkin() override;
  void setSkin(int skin) override;
  void showFullScreenTitleBar(bool show) override;
  void refreshFullScreenTitleBar() override;
  void registerInputEventCallBack(SYSTEM::EVENT_TYPE type, SYSTEM::inputEventDelegate& d) override;
  void unRegisterInputEventCallBack(SYSTEM::EVENT_TYPE type,
                                    SYSTEM::inputEventDelegate& d) override;
  void registerDropFileEventCallBack(SYSTEM::dropFileEventDelegate& d) override;
  void unRegisterDropFileEventCallBack(SYSTEM::dropFileEventDelegate& d) override;

  // The factory: a new widget of `cls` under `parent` (the desktop when null), or null for
  // a name in use or a class this library does not build.
  widget* add(WIDGET_CLASS cls, const std::wstring& name, widget* parent);
  widget* addWidget(const std::wstring& name, widget* parent);
  widget* addWidget(const std::string& name, widget* parent);
  widget* addWidget(widget* parent);
  panel* addPanel(const std::wstring& name, widget* parent);
  panel* addPanel(const std::string& name, widget* parent);
  panel* addPanel(widget* parent);
  label* addLabel(const std::wstring& name, widget* parent);
  label* addLabel(const std::string& name, widget* parent);
  label* addLabel(widget* parent);
  canvas* addCanvas(const std::wstring& name, widget* parent);
  canvas* addCanvas(const std::string& name, widget* parent);
  canvas* addCanvas(widget* parent);

  // The widget with that id, or null; the typed forms also null for another class.
  widget* getWidget(const std::wstring& name) const;
  widget* getWidget(const std::string& name) const;
  panel* getPanel(const std::wstring& name) const;
  panel* getPanel(const std::string& name) const;
  label* getLabel(const std::wstring& name) const;
  label* getLabel(const std::string& name) const;
  canvas* getCanvas(const std::wstring& name) const;
  canvas* getCanvas(const std::string& name) const;
  menu* getMenu(const std::wstring& name) const;
  menu* getMenu(const std::string& name) const;
  bool isValid(const std::wstring& name) const;
  virtual int getWidgetsCount() const;
  // A name not in use.
  std::wstring getUniqueName();

  canvas* getDesktop() const { return desktop; }
  // Canvases drawn and updated in this order; the first is the desktop.
  const std::vector<canvas*>& getCanvases() const { return canvases; }
  // Adds a canvas of kind 1 to the passes and the hit test, after the others.
  void attachCanvas(canvas* c);

  CORE::color getColor(WIDGET_CLASS_COLOR cls, int index) const;
  // Stores the colour and recolours every widget that takes the schema's colours.
  void setColor(WIDGET_CLASS_COLOR cls, const CORE::color& c, int index);
  void setColorSchema(GUI_COLOR_SCHEMA schema);
  GUI_COLOR_SCHEMA getColorSchema() const;
  const guiColorTable& getColorTable() const { return colorTable; }
  // The desktop's enabled field.
  void setEnable(bool on);
  bool getEnable() const;
  // Asks the window for a new update and frame.
  void refresh();

  SYSTEM::mutex* getGuiMutexHandle() { return &guiMutex; }
  // Queues an event as if the window procedure had; the caller holds the GUI lock.
  void simulateInputEvent(SYSTEM::EVENT_TYPE type,
                          const SYSTEM::sharedPointer<SYSTEM::inputEvent>& e);
  int getLastEvaluateEventype() const { return schedule.getLastEvaluateEventype(); }
  int getSecondLastEvaluateEventype() const { return schedule.getSecondLastEvaluateEventype(); }
  // The desktop's widget below (x, y); never a private one.
  widget* getWidgetAt(float x, float y);
  bool thereIsTexteditWithFocusEnter() const { return texteditWithFocusEnter; }
  eventSchedule& getSchedule() { return schedule; }

  // Project files: the colour table and the desktop's widgets (or those of `root`) as an
  // XML document with root "JEV_GUI_PROJECT". False when the file cannot be written.
  bool saveToFile(const std::wstring& path) const;
  bool saveToFile(const std::wstring& path, const widget* root) const;
  // Reads a project: its widgets go under `parent` (the desktop when null), each id with
  // `prefix` in front; `skipColors` leaves the colour table alone. A widget whose id is
  // taken is left out with its subtree, and one without class or id is skipped. A read is
  // all or nothing: false, with getProjectError() telling why and the controller as it
  // was, for a file that cannot be read, a text that is not well-formed, no root, a class
  // the factory does not build or is not a number, or widgets nested deeper than
  // MAX_PROJECT_DEPTH.
  bool openFromFile(const std::wstring& path, widget* parent, const std::wstring& prefix,
                    bool skipColors);
  bool openFromFile(const std::string& path, widget* parent, const std::wstring& prefix,
                    bool skipColors);
  bool openFromString(const std::wstring& text, widget* parent, const std::wstring& prefix,
                      bool skipColors);
  // The library's own resources: type "ZIP" names a file of the archive built into the
  // library (the one that holds the skins).
  bool openFromResource(const std::wstring& name, const std::wstring& type, widget* parent,
                        const std::wstring& prefix, bool skipColors);
  // The colour table alone, in the same document form. The open forms read the
  // "COLOR_CLASS" of a project and return false without one.
  bool saveColorTableToFile(const std::wstring& path) const;
  bool openColorTableFromFile(const std::wstring& path);
  bool openColorTableFromString(const std::wstring& text);
  bool openColorTableFromResource(const std::wstring& name, const std::wstring& type);
  bool openColorTableFromXmlProject(IO::XML::xmlElement* root);
  // Elements "<class>_<i>" with "Red", "Green", "Blue", "Alpha": an unknown name is
  // skipped, an absent attribute leaves the value. The writer puts the four text colours
  // first, then all classes in order.
  bool openColorTableFromXmlElement(IO::XML::xmlElement& element);
  void saveColorTableToXmlElement(IO::XML::xmlElement& parent) const;
  // One "WIDGET" element read under `parent` (see openFromString); false fails the read.
  // Called back by widget::openFromXML for child elements.
  bool openWidgetFromXML(IO::XML::xmlElement& element, widget* parent,
                         std::list<std::pair<widget*, std::wstring>>& pending,
                         const std::wstring& prefix);
  // Why the last project read failed; empty after one that succeeded.
  const std::wstring& getProjectError() const { return projectError; }
  static constexpr int MAX_PROJECT_DEPTH = 64;

  // Marks a widget top-most in its canvas's set, or takes it out.
  void setTopMost(widget* w, bool on);
  // The desktop's menu.
  void setPopUpMenu(const std::wstring& menuName);
  void removePopUpMenu();
  // Brings the widget to the front at the next render.
  void gotoInFirstPlaneNextRender(widget* w);
  // Erases at a later render, at most ERASE_PER_FRAME a frame; the widget stays drawn
  // in the frame that queued it.
  void eraseAfter(widget* w);
  // Erases a live widget at once: its children stay, unparented. The MT form takes the
  // GUI lock.
  bool eraseNow(widget* w);
  bool eraseNowMT(widget* w);

  // The tooltip: the widget entered, and the widget left (with their redirect chains).
  void toolTipEnter(widget* w);
  void toolTipLeave(widget* w);
  // What the tooltip timer runs once the delay is over: asks the next render to show it.
  void showToolTip();
  widget* getToolTip() const { return toolTip; }
  widget* getHoverToolTipWidget() const { return hoverToolTipWidget; }

  // The font of a caption by its id, on the window's device, or null when the device
  // cannot make it. There is no font storage: "ID_FONT1" is the renderer's default face,
  // DejaVuSans at DEFAULT_FONT_SIZE pixels, and other ids have no font (no text).
  GUI::font* getFont(const std::wstring& id);
  static constexpr int DEFAULT_FONT_SIZE = 12;
  // Called by a widget's destructor: drops every pointer the controller, the schedule and
  // the input context still hold to it.
  void widgetGone(widget* w);

  SYSTEM::inputContext* getInputContext() const { return inputContext; }
  SYSTEM::winMain* getWinMain() const { return window; }
  RENDERING::renderingContext* getRenderingContext() const { return renderingContext; }
  const std::wstring& getName() const { return name; }

  RENDERING::RENDERSTATE::alphastate alphaState;
  RENDERING::RENDERSTATE::blendstate blendState;
  SYSTEM::fieldBase<bool> showTextureNameTips{false};
  SYSTEM::fieldBase<bool, SYSTEM::dummyLinkerType, SYSTEM::mtLinker> showToolTipNowFlag{false};

 protected:
  // Puts a made widget in the registry and under its parent; null (and the widget gone)
  // when the id is in use.
  widget* registerWidget(widget* w, widget* parent);
  // Drops every pointer the controller and the schedule hold to `w`.
  void forgetWidget(widget* w);
  void showToolTipNow();
  canvas* canvasOf(widget* w) const;

  RENDERING::renderingContext* renderingContext;
  SYSTEM::updateContext* updateContext;
  SYSTEM::inputContext* inputContext;
  SYSTEM::mutex guiMutex;
  GUI_COLOR_SCHEMA colorSchema = GUI_COLOR_SCHEMA_0;
  CORE::mtStorage<SYSTEM::sharedPointer<widget>> widgets;
  canvas* desktop = nullptr;
  widget* fullScreenTitleBar = nullptr;
  widget* toolTip = nullptr;
  std::vector<canvas*> canvases;
  SYSTEM::winMain* window;
  SYSTEM::threadTimer toolTipTimer;
  RENDERING::INSTANCING::textureInstance skinTexture;
  std::list<widget*> eraseList;
  SYSTEM::application* application;
  widget* hoverToolTipWidget = nullptr;
  std::list<widget*> firstPlaneList;
  eventSchedule schedule;
  guiColorTable colorTable;
  bool texteditWithFocusEnter = false;
  // The registry's widgets, for walks over all of them: the registry is keyed by id.
  std::unordered_set<widget*> live;
  bool discarding = false;
  std::wstring name;
  // Fonts by id; a null entry is one the device could not make, not asked again.
  std::map<std::wstring, std::unique_ptr<GUI::font>> fonts;

 private:
  bool failProject(const std::wstring& message);
  std::wstring projectError;
  void onToolTipTick();
  template <class W>
  W* make(const std::wstring& name, widget* parent);
  template <class W>
  W* typed(const std::wstring& name, WIDGET_CLASS cls) const;
  // Set by the first timer tick after an enter; the tick after it shows the tooltip.
  std::atomic<bool> toolTipArmed{false};
  unsigned uniqueCounter = 0;
  int requestedSkin = GUI_XP_SKIN;
};

}  // namespace GUI
}  // namespace JEV
