#pragma once

#include <string>

#include "jev3d/gui/panel.h"

namespace JEV {
namespace GUI {

class label;
class picturebox;

// Where a button puts its icon and its caption.
enum BUTTON_STYLE {
  BS_ICON_LEFT = 0,   // icon left, caption left after it
  BS_ICON_RIGHT = 1,  // icon right, caption right before it
  BS_ICON_ABOVE = 2,  // icon centred above, caption centred below
  BS_ICON_ONLY = 3,   // icon centred, no caption
  BS_TEXT_ONLY = 4    // caption centred, no icon
};

// A push button: a skin tile for each of normal, pressed and checked, a caption part
// ("_CAPTION") and an icon part ("_ICON"), both redirecting to the button. A checkable
// button toggles `checked` on each click and stays down while checked.
//
// The mouse: pressing shows the down tile until the button is released or left; a flat
// button draws no background until the mouse is over it; a click toggles a checkable
// button. Everything else (colours, fades) is the widget's state change.
class button : public panel {
 public:
  button(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~button() override;

  // Sizes the button, makes its parts and registers its mouse handlers.
  void config() override;
  // The button attributes of the project file, after the widget's.
  void saveAttrib(IO::XML::xmlElement& element) const override;
  void openAttrib(IO::XML::xmlElement& element) override;
  void setButtonStyle(BUTTON_STYLE style);
  BUTTON_STYLE getButtonStyle() const { return buttonStyle; }
  void setCheckable(bool on);
  bool getCheckable() const { return checkable; }
  void setFlat(bool on);
  bool getFlat() const { return flat; }
  void setIcon(GUI_ICON icon);
  void setIcon(const std::wstring& idTexture);
  void setIcon(const std::string& idTexture);
  // The icon part's icon; ICON_NULL for none or an icon given by resource id.
  GUI_ICON getIcon() const;
  int getSizeIcon() const { return sizeIcon; }
  void setSizeIcon(int pixels);
  // The caption lives in the caption part.
  void setCaption(const std::wstring& text, bool now) override;
  using widget::setCaption;
  // Includes the checked offset while a checkable button with a caption is checked.
  float getWidth() const override;
  float getLayoutWidth() const override { return getWidth(); }
  // Item look: the item tiles and colours; only the locked-down bit follows `checked`.
  void setSkinAsItem();
  void setSkinAsWinButtonClose();
  // A window button's tiles in colour class `cls`, with the glyph at (glyphU, glyphV) of
  // the sheet over them.
  void setSkinAsWinButton(WIDGET_CLASS_COLOR cls, float glyphU, float glyphV);
  void setSkinAsToolTip();

  label* getCaptionPart() const { return captionPart; }
  picturebox* getIconPart() const { return iconPart; }
  picturebox* getLayerPart() const { return layerPart; }

  float tileNormal[2] = {48, 0};
  float tileDown[2] = {64, 0};
  float tileChecked[2] = {80, 0};
  point3f checkedTextOffset{2, 0, 0};

 protected:
  // A picture over the button (the cross of a close button), in colour class `cls`.
  void addLayer(float u, float v, WIDGET_CLASS_COLOR cls);
  void setLayer(float u, float v);
  void setTiles(float u, float v, float downU, float downV, float checkedU, float checkedV);
  // Locks or unlocks the down look and shifts the contents, following `checked`.
  virtual void doCheckedChange();
  void onCheckedChange() override;
  void sizePositionChanged() override;
  virtual void onMouseEnter(const SYSTEM::inputEvent* e);
  virtual void onMouseLeave(const SYSTEM::inputEvent* e);
  virtual void onMouseLeftButtonDown(const SYSTEM::inputEvent* e);
  virtual void onMouseLeftButtonUp(const SYSTEM::inputEvent* e);
  virtual void onMouseLeftButtonClick(const SYSTEM::inputEvent* e);
  // Lays the parts out for the style, with the checked shift.
  void applyStyle();
  // The tile for the present state, not pressed.
  void restTile();

  bool checkable = false;
  bool flat = false;
  BUTTON_STYLE buttonStyle = BS_ICON_LEFT;
  int sizeIcon = 16;
  point3f shift{0, 0, 0};
  label* captionPart = nullptr;
  picturebox* iconPart = nullptr;
  picturebox* layerPart = nullptr;
};

}  // namespace GUI
}  // namespace JEV
