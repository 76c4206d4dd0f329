#pragma once

#include <memory>
#include <string>

namespace JEV {
namespace GUI {

// What a device makes of a font to draw it: glyphs on the device and their metrics.
class fontObject {
 public:
  virtual ~fontObject() = default;
  // The size of `text` in pixels: the sum of the advances, and the line height.
  virtual void getBox(const std::wstring& text, int& width, int& height) = 0;
  virtual int getMaxHeight() const = 0;
};

// A typeface at a pixel size, by its file name without ".ttf" ("DejaVuSans"). The device
// copy (fontObject) is made by renderer::cacheFont and dropped by discardFont.
class font {
 public:
  font() = default;
  font(std::wstring face, int size) : face(std::move(face)), size(size) {}
  virtual ~font() = default;
  font(const font&) = delete;
  font& operator=(const font&) = delete;

  const std::wstring& getFace() const { return face; }
  int getSize() const { return size; }
  bool isCached() const { return object != nullptr; }
  fontObject* getObject() const { return object.get(); }
  void setObject(std::unique_ptr<fontObject> value) { object = std::move(value); }
  std::unique_ptr<fontObject> takeObject() { return std::move(object); }

 private:
  std::wstring face;
  int size = 0;
  std::unique_ptr<fontObject> object;
};

}  // namespace GUI
}  // namespace JEV
