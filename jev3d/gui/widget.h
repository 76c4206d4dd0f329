#pragma once

#include <list>
#include <string>
#include <utility>
#include <vector>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/fields/linkerBase.h"
#include "jev3d/fields/mtLinker.h"
#include "jev3d/gui/fontInstance.h"
#include "jev3d/gui/guiEnums.h"
#include "jev3d/gui/layout.h"
#include "jev3d/math/point3.h"
#include "jev3d/renderer/indexBuffer.h"
#include "jev3d/renderer/renderstate/scissorstate.h"
#include "jev3d/renderer/vertexBuffer.h"
#include "jev3d/renderer/vertexDeclaration.h"
#include "jev3d/system/color.h"
#include "jev3d/system/delegate.h"
#include "jev3d/system/eventDelegate.h"
#include "jev3d/system/flags.h"
#include "jev3d/system/inputEvent.h"

namespace JEV {
namespace SYSTEM {
class winBase;
class updateContext;
}  // namespace SYSTEM
namespace RENDERING {
class renderingContext;
class renderer;
}  // namespace RENDERING
namespace IO {
namespace XML {
class xmlElement;
class xmlNode;
}  // namespace XML
}  // namespace IO

namespace GUI {

class guiController;
class guiColorTable;
class label;
class menu;

// The state bits of a widget (its second flag word).
enum WIDGET_STATE_FLAG : int {
  WF_TREEVIEWITEM_OPEN = 1 << 1,
  WF_REFRESH = 1 << 4,
  WF_SKIP_NEXT_POPUP = 1 << 5,
  WF_LOCAL_COORDINATES = 1 << 6,
  WF_OWN_COLORS = 1 << 7,
  WF_STATE_TO_CHILDREN = 1 << 8,
  WF_SKIP_DISABLED = 1 << 9,
  WF_POPUP_AT_CORNER = 1 << 10,
  WF_TOP_MOST = 1 << 11,
  WF_COLOR_CHANGED = 1 << 12,
  WF_VERTEX_CHANGED = 1 << 13,
  WF_UV_CHANGED = 1 << 14,
  WF_SIZE_POSITION_CHANGED = 1 << 15,
  WF_ORIENTATION_CHANGED = 1 << 16,
  WF_VALUE_CHANGED = 1 << 17,
  WF_FADE = 1 << 19,
  WF_PRIVATE = 1 << 20,
  WF_FOCUS_ON_CLICK = 1 << 21,
  WF_LOCK_DOWN = 1 << 22,
  WF_FADE_HIGHLIGHTED = 1 << 23,
  WF_FADE_DOWN = 1 << 24,
  WF_NOT_DECORATION = 1 << 25,
  WF_PICKABLE = 1 << 26,
  WF_FIRST_PLANE = 1 << 27,
  WF_FREE_WIDTH = 1 << 28,
  WF_FREE_HEIGHT = 1 << 29,
  WF_SUB_MENU = 1 << 31
};

// The base of the toolkit: a rectangle in window pixels (origin bottom left) in a tree of
// widgets, with its state in fields, drawn as a 16-vertex nine-slice patch cut from the
// skin sheet, and clipping its children to its area less its margins. A child is a slave
// of its parent; the parent's child list runs back to front. Uploads to the device happen
// in render, only for what a state bit says changed. Everything belongs to the thread
// that holds the GUI lock.
class widget : public SYSTEM::linkerBase<SYSTEM::dummyLinkerType> {
 public:
  using linker = SYSTEM::linkerBase<SYSTEM::dummyLinkerType>;
  using point3f = MATH::point3<float>;
  using delegateList = std::list<SYSTEM::inputEventDelegate>;
  using dropDelegateList = std::list<SYSTEM::dropFileEventDelegate>;

  enum GUI_ICON {
    ICON_AXIS = 0,
    ICON_BUNNY,
    ICON_COPY,
    ICON_CUT,
    ICON_PASTE,
    ICON_EXIT,
    ICON_FILE_NEW,
    ICON_FILE_OPEN,
    ICON_FILE_SAVE,
    ICON_FILE_SAVE_AS,
    ICON_FULLSCREEN,
    ICON_HELP,
    ICON_LIST_ADD,
    ICON_LIST_REMOVE,
    ICON_MOUSE,
    ICON_PRINT,
    ICON_REDO,
    ICON_UNDO,
    ICON_REFRESH,
    ICON_SEARCH,
    ICON_TOOLS,
    ICON_TRACKBALL,
    ICON_ARROW_LEFT,
    ICON_ARROW_RIGHT,
    ICON_ARROW_UP,
    ICON_ARROW_DOWN,
    ICON_NULL
  };

  // The patch: 16 vertices in four rows of four, bottom row first, left to right.
  static constexpr int patchVertexCount = 16;
  static constexpr int patchIndexCount = 54;
  // Skin sheets are square, of this side in pixels; tiles are 16 pixels with 4-pixel
  // borders that stay unscaled.
  static constexpr float skinSize = 256.0f;
  static constexpr float skinBorder = 4.0f;
  static constexpr float skinTile = 16.0f;
  // A fade's length in milliseconds.
  static constexpr float fadeLength = 250.0f;

  // `id` is the registry key; `controller` and `window` may be null (a widget outside any
  // controller, as in tests). Sets state bits 12 to 17 and 25 to 27.
  widget(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~widget() override;
  widget(const widget&) = delete;
  widget& operator=(const widget&) = delete;

  // Only widgets are taken as children, so that the walks may treat every slave as one.
  bool addSlave(linker* slave) override;
  bool addSlaveBefore(linker* slave, linker* sibling) override;
  bool addSlaveAfter(linker* slave, linker* sibling) override;
  // Leaving the parent clears parentWidget.
  void disconnect(linker* master, bool notifyOther) override;

  virtual void registerInputEventCallBack(SYSTEM::EVENT_TYPE type, SYSTEM::inputEventDelegate& d);
  virtual void unRegisterInputEventCallBack(SYSTEM::EVENT_TYPE type, SYSTEM::inputEventDelegate& d);
  virtual void unRegisterAllInputEventCallBack();
  virtual void unRegisterAllInputEventCallBack(SYSTEM::EVENT_TYPE type);
  virtual void registerDropFileEventCallBack(SYSTEM::dropFileEventDelegate& d);
  virtual void unRegisterDropFileEventCallBack(SYSTEM::dropFileEventDelegate& d);
  virtual void unRegisterAllDropFileEventCallBack();
  // Sets the refresh bit, and asks the window for a frame; the enclosing group (a menu)
  // lays its widgets out again.
  virtual void refresh();
  virtual void setOrientation(WIDGET_ORIENTATION value);
  virtual WIDGET_ORIENTATION getOrientation() const;
  // Position and size at once.
  virtual void setRect2D(float x, float y, float width, float height);
  virtual void setPosition(float x, float y, float z);
  // These do not touch the layout's offsets: the next layout update may move it back.
  virtual void setPositionX(float x);
  virtual float getPositionX() const;
  virtual void setPositionY(float y);
  virtual float getPositionY() const;
  // Clamped to sizeMin and sizeMax.
  virtual void setSize(float width, float height);
  virtual void setWidth(float width);
  virtual float getWidth() const;
  virtual void setHeight(float height);
  virtual float getHeight() const;
  virtual void setShadow(WIDGET_SHADOW value);
  virtual WIDGET_SHADOW getShadow() const;
  virtual void setTextHorizontalAlign(TEXT_HORIZONTAL_ALIGN value);
  virtual TEXT_HORIZONTAL_ALIGN getTextHorizontalAlign() const;
  virtual void setTextVerticalAlign(TEXT_VERTICAL_ALIGN value);
  virtual TEXT_VERTICAL_ALIGN getTextVerticalAlign() const;
  virtual void setIdFont(const std::string& id);
  virtual void setIdFont(const std::wstring& id);
  virtual const std::wstring& getIdFont() const;
  // The caption as a number in `radix` (2 to 36), as a decimal, or as text. With `now`
  // the widget's text rectangle is recomputed at once, else at the next render.
  virtual void setCaption(int value, unsigned short radix, bool now);
  virtual void setCaption(int value, bool now);
  virtual void setCaption(float value, bool now);
  virtual void setCaption(const std::wstring& text, bool now);
  // As setCaption, then grows or shrinks the widget to the text box plus the margins.
  virtual void setCaptionAutosize(int value, unsigned short radix, bool now);
  virtual void setCaptionAutosize(int value, bool now);
  virtual void setCaptionAutosize(float value, bool now);
  virtual void setCaptionAutosize(const std::wstring& text, bool now);
  virtual const std::wstring& getCaption() const;
  // The caption parsed; `fallback` when it is not a number.
  virtual int getCaption2Int(int fallback) const;
  virtual float getCaption2Float(float fallback) const;
  // Rounded to `digits` decimals when digits >= 0.
  virtual double getCaption2Double(double fallback, int digits) const;
  virtual void setToolTip(const std::wstring& text);
  virtual const std::wstring& getToolTip() const;
  // True takes the colour class's colours from the schema (clears bit 7).
  virtual void setUseSchemaColor(bool use);
  virtual bool getUseSchemaColor() const;
  virtual void setColorNormal(const CORE::color& c);
  virtual void setColorHighlighted(const CORE::color& c);
  virtual void setColorDisabled(const CORE::color& c);
  virtual void setColorDown(const CORE::color& c);
  virtual void setTextColorNormal(const CORE::color& c);
  virtual void setTextColorHighlighted(const CORE::color& c);
  virtual void setTextColorDisabled(const CORE::color& c);
  virtual void setTextColorDown(const CORE::color& c);
  virtual const CORE::color& getColorNormal() const;
  virtual const CORE::color& getColorHighlighted() const;
  virtual const CORE::color& getColorDisabled() const;
  virtual const CORE::color& getColorDown() const;
  virtual const CORE::color& getTextColorNormal() const;
  virtual const CORE::color& getTextColorHighlighted() const;
  virtual const CORE::color& getTextColorDisabled() const;
  virtual const CORE::color& getTextColorDown() const;
  // Links this widget as the last (front-most) child of `parent` and lays it out. Null
  // when the link is refused (a null parent, or one already the parent).
  virtual widget* connect(widget* parent, bool follow);
  virtual widget* connectBefore(widget* parent, widget* sibling, bool follow);
  virtual widget* connectAfter(widget* parent, widget* sibling, bool follow);
  // Kept empty: a widget leaves its parent through linkerBase::disconnect.
  virtual void disconnect(widget* child);
  using linker::connect;
  using linker::connectAfter;
  using linker::connectBefore;
  using linker::disconnect;
  // Runs the uploads the state bits ask for; subclasses draw after it.
  virtual void render(RENDERING::renderingContext* rc);
  // The menu a right click opens; with `atCorner` it opens at the widget's corner instead
  // of at the mouse (bit 10). A widget of a controller holds the menu by its id and finds
  // it in the registry when it opens, so an erased menu is never reached; one outside any
  // controller holds the pointer.
  virtual void setPopUpMenu(menu* popUp, bool atCorner);
  virtual void setPopUpMenu(const std::wstring& menuId, bool atCorner);
  virtual const std::wstring& getPopUpMenu() const;
  // The menu, or null when none is set or the id names no menu.
  virtual menu* getPopUpMenuPointer();
  virtual const menu* getPopUpMenuPointer() const;
  virtual void removePopUpMenu();
  // Absolute position: the sum of the positions up to the root.
  virtual point3f getAbsolutePos() const;
  // Hides the widget.
  virtual void close();
  // Marks the widget and its subtree for a full upload and refresh.
  virtual void invalidate();
  virtual void setOnFocusOnClick(bool on);
  virtual void setRedirect(widget* target);
  virtual widget* getRedirect() const;
  // Takes the colours of `colorClass` from the schema; see the class comment of the .cpp.
  virtual void setjustColor(WIDGET_CLASS_COLOR colorClass);
  virtual void doRefresh();
  // The project file: a widget is one "WIDGET" element. saveAttrib writes this widget's
  // attributes and its fixed children (position, size, layout, colours, font); a subclass
  // calls the base first. saveChilds appends a "WIDGET" for each child in child order;
  // private widgets write nothing.
  virtual void saveChilds(IO::XML::xmlElement& element) const;
  virtual void saveAttrib(IO::XML::xmlElement& element) const;
  // Reads what saveAttrib wrote; an attribute that is absent leaves its value. Subclasses
  // call the base first, so they may override it.
  virtual void openAttrib(IO::XML::xmlElement& element);
  virtual void config();
  // The point, in window pixels, lies in this widget's rectangle cut by its parent's.
  virtual bool isInRect(float x, float y) const;
  // Runs a fade step; true when the widget is visible and so wants its update.
  virtual bool preUpdate(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc);
  // The widget's own update; empty in the base.
  virtual void update(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc);
  // Updates the children, then the hook.
  virtual void postUpdate(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc);
  // True when the widget and all its ancestors are visible.
  virtual bool preRender() const;
  // Draws the children inside the child clip, then calls sizePositionDelegate.
  virtual void postRender(RENDERING::renderingContext* rc);
  virtual void onCaptionAutosize();
  virtual void onCaptionChange();
  virtual void onEnabledChange();
  virtual void onCheckedChange();
  virtual void onValueChange();
  virtual void onValueMaxChange();
  virtual void onValueMinChange();
  virtual void onValueTypeChange();
  virtual void onGradientChange();
  virtual void onIdFontChange();
  virtual void sizePositionChanged();
  virtual void computeSizePositionChanged();
  virtual void computeOrientation();
  // Kept empty: subclasses with a value display redraw it here.
  virtual void computeVChange();
  // Sets bit 13; _adjustVertex writes the positions at the next render.
  virtual void adjustVertex();
  virtual void _adjustVertex(RENDERING::renderer* device);
  // Stores the tile's corner in skin pixels and sets bit 14.
  virtual void adjustUV(float u, float v);
  virtual void _adjustUV(RENDERING::renderer* device);
  // Writes the patch colours from `c`; clears bit 12.
  virtual void adjustColor(RENDERING::renderer* device, const CORE::color& c);
  virtual void doHighlighted();
  virtual void doNormal();
  virtual void doDown();
  // Draws the caption with the widget's font, when it has one on the device.
  virtual void renderText(RENDERING::renderingContext* rc);

  const std::wstring& getId() const { return id; }
  WIDGET_CLASS getClass() const { return widgetClass; }
  WIDGET_CLASS_COLOR getClassColor() const { return colorClass; }
  SYSTEM::flags<int>& getFlags() { return stateFlags; }
  const SYSTEM::flags<int>& getFlags() const { return stateFlags; }
  // Left, right, top, bottom.
  const float* getMargin() const { return margin; }
  void setMargin(float left, float right, float top, float bottom);
  bool isTopMost() const { return stateFlags.isFlagSet(WF_TOP_MOST); }
  void setTopMost(bool on) { stateFlags.setFlag(WF_TOP_MOST, on); }
  bool isPrivate() const { return stateFlags.isFlagSet(WF_PRIVATE); }
  bool isEnabled() const { return enabled.cV(); }
  bool isVisible() const { return visible.cV(); }
  bool isFlagSkipDisabled() const { return stateFlags.isFlagSet(WF_SKIP_DISABLED); }
  void setFlagSkipDisabled(bool on) { stateFlags.setFlag(WF_SKIP_DISABLED, on); }
  widget* getParent() const { return parentWidget; }
  // The parent's size, or for a widget without parent the window's.
  point3f getParentSize() const;
  point3f getAbsoluteParentPos() const;
  bool isMeOrMyChild(const widget* other) const;
  // True when an ancestor is of `cls`.
  bool isChildOfClassId(WIDGET_CLASS cls) const;
  // The child at `index` in back-to-front order, or null.
  widget* getChildAt(int index) const;
  // Moves the widget, and each ancestor marked for it (bit 27), to the front of its
  // parent, unless the parent is a menu or a widget group.
  void gotoInFirstPlane();
  // The same at the controller's next render, outside any walk of the child lists; at
  // once for a widget outside any controller.
  void gotoInFirstPlaneNextRender();
  // Opens the widget's menu at (x, y) as the open popup; closes it if it is the one open.
  void showPopUpMenu(float x, float y);
  void closePopUpMenu();
  void setUserString(const std::wstring& s) { userString = s; }
  void setUserString2(const std::wstring& s) { userString2 = s; }
  void setUserString3(const std::wstring& s) { userString3 = s; }
  const std::wstring& getUserString() const { return userString; }
  const std::wstring& getUserString2() const { return userString2; }
  const std::wstring& getUserString3() const { return userString3; }
  const point3f& getSizeMin() const { return sizeMin; }
  const point3f& getSizeMax() const { return sizeMax; }
  // The width the layout places; a checked checkable button adds its checked offset.
  virtual float getLayoutWidth() const { return size.x; }
  // Value, minimum and maximum at once.
  void setValues(float value, float minimum, float maximum);
  // The resource id of an icon; empty for a value out of range.
  static std::wstring iconToIdTexture(GUI_ICON icon);

  // Widgets and the id they name ("SUB_MENU", "TREE_PARENT"), resolved once a whole
  // project has been read, since the target may come later in the file.
  using pendingList = std::list<std::pair<widget*, std::wstring>>;
  // Appends this widget's "WIDGET" element, with its subtree, to `parent`; nothing for a
  // private widget.
  void saveToXML(IO::XML::xmlNode* parent) const;
  // A project document holding only this widget (and no colour table entries but the
  // controller's). False when the file cannot be written.
  bool saveToXML(const std::wstring& path) const;
  // openAttrib, then the element's children by name; child "WIDGET" elements are built
  // through the controller with ids `prefix` + "WIDGET_ID". False when the controller
  // refused a child (see guiController::openFromString); what was built stays for the
  // controller to take back.
  bool openFromXML(guiController* gc, IO::XML::xmlElement& element, pendingList& pending,
                   const std::wstring& prefix);

  // Calls the delegates of `type` with `event`, for an enabled widget or for
  // WIDGET_DESTROY. The event takes the type, and local coordinates with bit 6.
  void invokeDelegate(SYSTEM::EVENT_TYPE type, SYSTEM::inputEvent& event);
  // The same, then along the redirect chain, each step with a fresh copy of `event`.
  void invokeDelegateAndRedirect(SYSTEM::EVENT_TYPE type, const SYSTEM::inputEvent& event);
  void setRegisterEventMultithreading(bool on) { registerMultithreading = on; }
  // The table setjustColor reads; the controller hands it over when it adds the widget.
  void setColorTable(const guiColorTable* table) { colorTable = table; }
  // The controller and window the widget now belongs to, as a controller taking another's
  // widgets sets them.
  void setOwner(guiController* owner, SYSTEM::winBase* win) {
    controller = owner;
    window = win;
  }

  // The patch as last written: positions (x, y, z), skin coordinates (u, v) and colours.
  const float* getPatchPositions() const { return patchPositions; }
  const float* getPatchTexCoords() const { return patchTexCoords; }
  const CORE::color* getPatchColors() const { return patchColors; }
  static const unsigned short* getPatchIndices();
  float getU() const { return uv[0]; }
  float getV() const { return uv[1]; }
  const CORE::color& getCurrentColor() const { return currentColor; }
  const CORE::color& getCurrentTextColor() const { return currentTextColor; }
  const RENDERING::RENDERSTATE::scissorstate& getScissor() const { return scissor; }
  const fontInstance& getFontInstance() const { return font; }
  fontInstance& getFontInstance() { return font; }

 private:
  // Declared ahead of the fields, beside the object's first line: the render walk reads
  // these of every widget in every frame, and the fields spread a widget over kilobytes.
  // The device the patch buffers live on, known from the first render.
  RENDERING::renderer* device = nullptr;
  // computedClip has been given to the scissor.
  bool scissorSet = false;
  // True while postRender draws the children, so that theirs need not test this widget.
  bool walkingChildren = false;
  bool patchCached = false;
  bool autosizePending = false;

 public:
  GUI::layout layout;
  SYSTEM::fieldBase<bool> enabled{true};
  SYSTEM::fieldBase<bool> visible{true};
  SYSTEM::fieldBase<bool> checked{false};
  WIDGET_VALUE_TYPE valueType = WVT_FLOAT;
  SYSTEM::fieldBase<float, SYSTEM::dummyLinkerType, SYSTEM::mtLinker> value{0.0f};
  SYSTEM::fieldBase<float> valueMin{0.0f};
  SYSTEM::fieldBase<float> valueMax{100.0f};
  // Added to red, green and blue of the lower half of the patch.
  SYSTEM::fieldBase<unsigned char> gradient{0};
  guiController* controller;
  widget* parentWidget = nullptr;
  // Free for the application.
  SYSTEM::flags<int> publicFlags;
  // Called at the end of postRender.
  SYSTEM::delegate sizePositionDelegate;
  point3f position{0, 0, 0};
  point3f size{50, 50, 1};

 protected:
  // Lays out, fades and recolours; see the .cpp.
  void startFade(const CORE::color& to, const CORE::color& textTo);
  void updatejustColor();
  // The text rectangle: the widget's less its margins, in whole pixels.
  void computeTextRect();
  // Makes the patch's device buffers on first use.
  void cachePatch(RENDERING::renderer* device);
  void askRepaint();
  // Draws the patch (9 quads) unless the shadow says no background.
  void drawPatch(RENDERING::renderingContext* rc);
  // Draws the patch whatever the shadow says, with the texture bound now.
  void drawPatchGeometry(RENDERING::renderingContext* rc);
  // Writes the patch's texture coordinates from its four columns and four rows, and
  // uploads them when there is a device.
  void writeTexCoords(RENDERING::renderer* device, const float (&us)[4], const float (&vs)[4]);
  // The hook postUpdate runs after the children; empty in the base.
  virtual void afterChildrenUpdate(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc);
  // colorNormal, colorHighlighted, colorDisabled, colorDown by table index.
  CORE::color* stateColor(int index);
  // The caption of a number by valueType.
  std::wstring formatValue(float v) const;
  // The common end of the connect forms.
  widget* attached(widget* parent);
  void setClassIds(WIDGET_CLASS cls, WIDGET_CLASS_COLOR colorCls);

  std::wstring id;
  std::wstring caption;
  std::wstring toolTip;
  std::wstring userString;
  std::wstring userString2;
  std::wstring userString3;
  CORE::color currentColor{255, 255, 255, 255};
  CORE::color currentTextColor{0, 0, 0, 255};
  float fadeTime = 0;
  WIDGET_CLASS widgetClass = WC_WIDGET;
  WIDGET_CLASS_COLOR colorClass = WCC_CUSTOM_WIDGET;
  WIDGET_SHADOW shadow = WS_NONE;
  WIDGET_ORIENTATION orientation = WO_HORIZONTAL;
  float margin[4] = {5, 5, 5, 5};
  CORE::color colorNormal{255, 255, 255, 255};
  CORE::color colorDisabled{150, 150, 150, 200};
  CORE::color colorHighlighted{255, 255, 255, 255};
  CORE::color colorDown{160, 160, 160, 255};
  CORE::color textColorNormal{0, 0, 0, 255};
  CORE::color textColorDisabled{100, 100, 100, 255};
  CORE::color textColorHighlighted{100, 100, 255, 255};
  CORE::color textColorDown{80, 80, 80, 255};
  SYSTEM::winBase* window;
  label* textWidget = nullptr;
  std::list<widget*> childDelegates;
  dropDelegateList dropFileDelegates;
  widget* redirect = nullptr;
  std::wstring autosizeCaption;
  point3f textOffset{0, 0, 0};
  CORE::color fadeFrom, fadeTo, textFadeFrom, textFadeTo;
  point3f sizeMin{16, 16, 0};
  point3f sizeMax{65536, 65536, 0};
  delegateList eventDelegates[SYSTEM::EVENT_TYPE_COUNT];
  dropDelegateList dropDelegates;
  float uv[2] = {48, 0};
  SYSTEM::flags<int> stateFlags;
  std::wstring popUpMenuName;
  menu* popUpMenu = nullptr;
  RENDERING::vertexDeclaration declaration;
  RENDERING::vertexBuffer vertexBuffer;
  RENDERING::indexBuffer indexBuffer;
  fontInstance font;
  point3f textPosition{0, 0, 0};
  int computedClip[4] = {0, 0, 0, 0};
  RENDERING::RENDERSTATE::scissorstate scissor;
  point3f absoluteClip[2];

 private:
  bool registerMultithreading = false;
  // Runs `visit` on each child over a snapshot of the list, so that what a child runs may
  // change the list; `spill` holds the snapshot of a long list, kept from frame to frame.
  template <class Visit>
  void forEachChild(std::vector<linker*>& spill, Visit visit);

  // The child lists the render and update walks run over, reused from frame to frame.
  std::vector<linker*> renderWalk;
  std::vector<linker*> updateWalk;
  const guiColorTable* colorTable = nullptr;
  float patchPositions[patchVertexCount * 3] = {};
  float patchTexCoords[patchVertexCount * 2] = {};
  CORE::color patchColors[patchVertexCount];
  std::vector<SYSTEM::sharedPointer<SYSTEM::delegate>> fieldObservers;
};

}  // namespace GUI
}  // namespace JEV
