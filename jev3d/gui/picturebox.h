#pragma once

#include <string>

#include "jev3d/gui/panel.h"

namespace JEV {
namespace GUI {

// A picture: an icon by resource id, or a tile of the skin sheet (the marks of check
// boxes, the layers of buttons). It draws the tile once one is set; an icon is kept by id
// for the controls that show one, and draws no background of its own.
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
  // Shows the skin tile at (u, v).
  void setTile(float u, float v);

 private:
  GUI_ICON icon = ICON_NULL;
  std::wstring idTexture;
};

}  // namespace GUI
}  // namespace JEV
