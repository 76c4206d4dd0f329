#include "jev3d/renderer/rendergl/glyphFont.h"

#include <GL/glew.h>
#include <ft2build.h>
#include FT_FREETYPE_H

#include "jev3d/renderer/renderer.h"

namespace JEV {
namespace RENDERING {

glyphFont* glyphFont::open(const std::string& file, int pixelSize, renderer* device) {
  if (pixelSize <= 0) return nullptr;
  FT_Library library = nullptr;
  if (FT_Init_FreeType(&library) != 0) return nullptr;
  FT_Face face = nullptr;
  if (FT_New_Face(library, file.c_str(), 0, &face) != 0 ||
      FT_Set_Pixel_Sizes(face, 0, FT_UInt(pixelSize)) != 0) {
    if (face) FT_Done_Face(face);
    FT_Done_FreeType(library);
    return nullptr;
  }
  glyphFont* f = new glyphFont();
  f->device = device;
  f->library = library;
  f->face = face;
  f->lineHeight = int(face->size->metrics.height >> 6);
  return f;
}

glyphFont::~glyphFont() {
  // The font may go on any thread: its textures go at the device's next frame.
  std::vector<unsigned> names = takeTextureNames();
  if (device && !names.empty()) device->addFontToDiscardList(names);
  if (face) FT_Done_Face(static_cast<FT_Face>(face));
  if (library) FT_Done_FreeType(static_cast<FT_Library>(library));
}

std::vector<unsigned> glyphFont::takeTextureNames() {
  std::vector<unsigned> names;
  for (auto& g : glyphs) {
    if (g.second.texture) names.push_back(g.second.texture);
  }
  glyphs.clear();
  return names;
}

const glyphFont::glyph& glyphFont::get(wchar_t c) {
  const auto found = glyphs.find(c);
  if (found != glyphs.end()) return found->second;
  glyph& g = glyphs[c];
  FT_Face f = static_cast<FT_Face>(face);
  // A character the face lacks, or that fails to render, takes no room.
  if (FT_Load_Char(f, FT_ULong(c), FT_LOAD_RENDER) != 0) return g;
  const FT_GlyphSlot slot = f->glyph;
  g.width = int(slot->bitmap.width);
  g.height = int(slot->bitmap.rows);
  g.left = slot->bitmap_left;
  g.top = slot->bitmap_top;
  g.advance = int(slot->advance.x >> 6);
  if (g.width == 0 || g.height == 0) return g;
  // Rows bottom first, as GL reads them, so texture v = 0 is the glyph's bottom.
  std::vector<unsigned char> pixels(size_t(g.width) * size_t(g.height));
  for (int row = 0; row < g.height; ++row) {
    const unsigned char* source = slot->bitmap.buffer + ptrdiff_t(row) * slot->bitmap.pitch;
    std::copy(source, source + g.width, pixels.begin() + ptrdiff_t(g.height - 1 - row) * g.width);
  }
  glGenTextures(1, &g.texture);
  glBindTexture(GL_TEXTURE_2D, g.texture);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA, g.width, g.height, 0, GL_ALPHA, GL_UNSIGNED_BYTE,
               pixels.data());
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  glBindTexture(GL_TEXTURE_2D, 0);
  return g;
}

void glyphFont::getBox(const std::wstring& text, int& width, int& height) {
  width = 0;
  for (wchar_t c : text) width += get(c).advance;
  height = lineHeight;
}

void glyphFont::draw(const std::wstring& text, int x, int y) {
  int pen = x;
  for (wchar_t c : text) {
    const glyph& g = get(c);
    if (g.texture) {
      const float x0 = float(pen + g.left), y1 = float(y + g.top);
      const float x1 = x0 + float(g.width), y0 = y1 - float(g.height);
      glBindTexture(GL_TEXTURE_2D, g.texture);
      glBegin(GL_QUADS);
      glTexCoord2f(0, 0);
      glVertex2f(x0, y0);
      glTexCoord2f(1, 0);
      glVertex2f(x1, y0);
      glTexCoord2f(1, 1);
      glVertex2f(x1, y1);
      glTexCoord2f(0, 1);
      glVertex2f(x0, y1);
      glEnd();
    }
    pen += g.advance;
  }
  glBindTexture(GL_TEXTURE_2D, 0);
}

}  // namespace RENDERING
}  // namespace JEV
