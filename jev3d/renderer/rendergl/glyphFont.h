#pragma once

#include <map>
#include <string>
#include <vector>

#include "jev3d/gui/font.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace RENDERING {

class renderer;

// A font drawn by renderGL: FreeType renders each character once, when it is first
// drawn or measured, into a texture of its own (alpha only), kept with its metrics.
// Belongs to the drawing thread.
class glyphFont : public GUI::fontObject {
 public:
  // Null when the file cannot be opened as a face or the size is not positive. Glyph
  // textures still held when the font goes are handed to `device`'s discard list.
  static glyphFont* open(const std::string& file, int pixelSize, renderer* device);
  ~glyphFont() override;
  glyphFont(const glyphFont&) = delete;
  glyphFont& operator=(const glyphFont&) = delete;

  void getBox(const std::wstring& text, int& width, int& height) override;
  int getMaxHeight() const override { return lineHeight; }
  // Draws with the pen's baseline starting at (x, y) in the current projection's pixels.
  void draw(const std::wstring& text, int x, int y);
  // Gives up the glyph textures, for deletion by the caller.
  std::vector<unsigned> takeTextureNames();

 private:
  struct glyph {
    unsigned texture = 0;
    int width = 0, height = 0;
    int left = 0, top = 0;  // bearing from the pen to the bitmap's top left
    int advance = 0;
  };

  glyphFont() = default;
  const glyph& get(wchar_t c);

  renderer* device = nullptr;
  void* library = nullptr;  // FT_Library
  void* face = nullptr;     // FT_Face
  int lineHeight = 0;
  std::map<wchar_t, glyph> glyphs;
};

}  // namespace RENDERING
}  // namespace JEV
