#include "jev3d/gui/picturebox.h"

#include <algorithm>

#include "jev3d/gui/internal/projectXml.h"
#include "jev3d/io/xml/xmlElement.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderingContext.h"

namespace JEV {
namespace GUI {

picturebox::picturebox(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : panel(widgetId, owner, win), idTexture(iconToIdTexture(ICON_NULL)) {
  setClassIds(WC_PICTUREBOX, WCC_ICON);
  setMargin(0, 0, 0, 0);
  shadow = WS_NO_BACKGROUND;
  using RENDERING::INSTANCING::textureInstance;
  iconTexture.environment.mode = textureInstance::TEXTURE_MODULATE;
  iconTexture.environment.wrapS = textureInstance::WRAP_CLAMP_TO_EDGE;
  iconTexture.environment.wrapT = textureInstance::WRAP_CLAMP_TO_EDGE;
}

picturebox::~picturebox() = default;

void picturebox::setIcon(GUI_ICON value) {
  icon = value;
  idTexture = iconToIdTexture(value);
  iconChanged = true;
  stateFlags.setFlag(WF_UV_CHANGED);
  refresh();
}

void picturebox::setIcon(const std::wstring& texture) {
  icon = ICON_NULL;
  idTexture = texture;
  iconChanged = true;
  stateFlags.setFlag(WF_UV_CHANGED);
  refresh();
}

void picturebox::setIcon(const std::string& texture) {
  setIcon(std::wstring(texture.begin(), texture.end()));
}

void picturebox::setTile(float u, float v) {
  tileShown = true;
  setShadow(WS_NONE);
  adjustUV(u, v);
}

bool picturebox::showsIcon() const {
  return !tileShown && !idTexture.empty() && idTexture != iconToIdTexture(ICON_NULL);
}

void picturebox::_adjustUV(RENDERING::renderer* target) {
  if (tileShown) {
    panel::_adjustUV(target);
    return;
  }
  // The texture's coordinates follow the vertices, whose borders stay 4 pixels wide: the
  // icon is stretched evenly over the box.
  const float bx = size.x > 0 ? std::min(skinBorder, size.x * 0.5f) / size.x : 0.0f;
  const float by = size.y > 0 ? std::min(skinBorder, size.y * 0.5f) / size.y : 0.0f;
  const float us[4] = {0.0f, bx, 1.0f - bx, 1.0f};
  const float vs[4] = {0.0f, by, 1.0f - by, 1.0f};
  writeTexCoords(target, us, vs);
}

void picturebox::computeSizePositionChanged() {
  panel::computeSizePositionChanged();
  if (!tileShown) stateFlags.setFlag(WF_UV_CHANGED);
}

void picturebox::render(RENDERING::renderingContext* rc) {
  panel::render(rc);
  if (showsIcon()) drawIcon(rc);
}

void picturebox::drawIcon(RENDERING::renderingContext* rc) {
  RENDERING::RENDERSTATE::renderStateStack* states = rc ? rc->getRenderStateStack() : nullptr;
  RENDERING::renderer* device = rc ? rc->getRenderer() : nullptr;
  if (!states || !device) return;
  if (iconChanged) {
    iconTexture.setResourceStorage(rc->getTextureStorage());
    iconTexture.disconnectToResourceStorage();
    // An id not (yet) in the storage is asked again at the next frame.
    iconChanged = !iconTexture.connectToResourceStorage(idTexture);
  }
  if (iconTexture.isNull()) return;
  using RENDERING::RENDERSTATE::renderStateEnums;
  states->pushState(renderStateEnums::TEXTURE_STATE0, &iconTexture, false);
  iconTexture.cacheResource();
  device->setTextureState(iconTexture);
  drawPatchGeometry(rc);
  // Back to the skin sheet the rest of the widgets are cut from.
  states->popState(renderStateEnums::TEXTURE_STATE0, true);
}

void picturebox::saveAttrib(IO::XML::xmlElement& e) const {
  panel::saveAttrib(e);
  e.setAttribute(L"ICON_TEXTURE", idTexture);
}

void picturebox::openAttrib(IO::XML::xmlElement& e) {
  panel::openAttrib(e);
  if (e.isAttribute(L"ICON_TEXTURE")) {
    PROJECT::setIconFromProject(*this, e.getAttributeValueW(L"ICON_TEXTURE"));
  }
}

}  // namespace GUI
}  // namespace JEV
