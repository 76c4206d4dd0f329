#pragma once

#include <string>

#include "jev3d/gui/panel.h"
#include "jev3d/renderer/instancing/textureInstance.h"

namespace JEV {
namespace GUI {

// A picture: an icon by resource id, stretched over the box, or a tile of the skin sheet
// (the marks of check boxes, the layers of buttons). An icon is drawn from the window's
// texture storage in the box's colour (the icon colours of the schema dim a disabled
// one) and draws no background of its own; an id the storage does not hold draws nothing.
// "GUI_NULL_ICON" stands for no icon in the controls (a button's default) and is not
// drawn.
class picturebox : public panel {
 public:
  picturebox(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~picturebox() override;

  void setIcon(GUI_ICON icon);
  void setIcon(const std::wstring& idTexture);
  void setIcon(const std::string& idTexture);
  // ICON_NULL for an icon given by a resource id of its own.
  GUI_ICON getIcon() const { return icon; }
  const std::wstring& getIdTexture() const { return idTexture; }
  // "ICON_TEXTURE" in the project file, after the widget's attributes.
  void saveAttrib(IO::XML::xmlElement& element) const override;
  void openAttrib(IO::XML::xmlElement& element) override;
  // Shows the skin tile at (u, v) instead of the icon.
  void setTile(float u, float v);
  // True while an icon, not a tile, is what the box shows.
  bool showsIcon() const;
  // The patch, then the icon over it.
  void render(RENDERING::renderingContext* rc) override;

 protected:
  // An icon takes the whole picture, stretched with the patch; a tile its piece of sheet.
  void _adjustUV(RENDERING::renderer* device) override;
  void computeSizePositionChanged() override;

 private:
  void drawIcon(RENDERING::renderingContext* rc);

  GUI_ICON icon = ICON_NULL;
  std::wstring idTexture;
  bool tileShown = false;
  // The icon is looked up again in the storage at the next render.
  bool iconChanged = true;
  RENDERING::INSTANCING::textureInstance iconTexture;
};

}  // namespace GUI
}  // namespace JEV
