#include <GL/glew.h>

#include <filesystem>
#include <memory>

#include "jev3d/gui/font.h"
#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/renderer/rendergl/glyphFont.h"
#include "jev3d/renderer/rendergl/renderGL.h"

namespace JEV {
namespace RENDERING {
namespace {

// Where a face's file is looked for: "fonts" beside the program, then the system's
// DejaVu folder.
std::string findFontFile(const std::wstring& face) {
  const std::string name = IO::XML::wstringToUtf8(face) + ".ttf";
  std::error_code ec;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", ec);
  std::vector<std::filesystem::path> folders;
  if (!ec) folders.push_back(program.parent_path() / "fonts");
  folders.emplace_back("/usr/share/fonts/truetype/dejavu");
  for (const auto& folder : folders) {
    const std::filesystem::path file = folder / name;
    if (std::filesystem::is_regular_file(file, ec)) return file.string();
  }
  return std::string();
}

glyphFont* glyphsOf(const GUI::font* f) {
  return f ? static_cast<glyphFont*>(f->getObject()) : nullptr;
}

}  // namespace

bool renderGL::createFont(GUI::font* f) { return f && !f->getFace().empty() && f->getSize() > 0; }

bool renderGL::cacheFont(GUI::font* f) {
  if (!createFont(f)) return false;
  if (f->isCached()) return true;
  // A face name is a file name, never a path.
  if (f->getFace().find_first_of(L"/\\") != std::wstring::npos) return false;
  const std::string file = findFontFile(f->getFace());
  if (file.empty() || !makeCurrentContext(false)) return false;
  std::unique_ptr<glyphFont> glyphs(glyphFont::open(file, f->getSize(), this));
  if (!glyphs) return false;
  f->setObject(std::move(glyphs));
  return true;
}

bool renderGL::isCachedFont(const GUI::font* f) const { return f && f->isCached(); }

bool renderGL::discardFont(GUI::font* f) {
  if (!f || !f->isCached() || !makeCurrentContext(false)) return false;
  std::unique_ptr<GUI::fontObject> object = f->takeObject();
  for (unsigned name : static_cast<glyphFont&>(*object).takeTextureNames()) {
    if (glIsTexture(name)) glDeleteTextures(1, &name);
  }
  return true;
}

bool renderGL::getFontBox(GUI::font* f, const std::wstring& text, int& width, int& height) {
  glyphFont* glyphs = glyphsOf(f);
  if (!glyphs || !makeCurrentContext(false)) return false;
  glyphs->getBox(text, width, height);
  return true;
}

int renderGL::getFontMaxHeight(GUI::font* f) {
  glyphFont* glyphs = glyphsOf(f);
  return glyphs ? glyphs->getMaxHeight() : 0;
}

// Text is drawn in window pixels over whatever the states say, and leaves them as found.
bool renderGL::renderText(GUI::font* f, const std::wstring& text, int x, int y,
                          CORE::color colour) {
  glyphFont* glyphs = glyphsOf(f);
  if (!glyphs || !makeCurrentContext(false)) return false;
  glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT | GL_COLOR_BUFFER_BIT | GL_TEXTURE_BIT |
               GL_POLYGON_BIT);
  glDisable(GL_LIGHTING);
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_ALPHA_TEST);
  glDisable(GL_CULL_FACE);
  glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
  // Glyphs are coverage in alpha: blended over what is there.
  glEnable(GL_BLEND);
  glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  glActiveTexture(GL_TEXTURE0);
  glEnable(GL_TEXTURE_2D);
  glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
  glColor4ub(colour.r, colour.g, colour.b, colour.a);
  GLint viewport[4];
  glGetIntegerv(GL_VIEWPORT, viewport);
  glMatrixMode(GL_PROJECTION);
  glPushMatrix();
  glLoadIdentity();
  glOrtho(viewport[0], viewport[0] + viewport[2], viewport[1], viewport[1] + viewport[3], -1, 1);
  glMatrixMode(GL_MODELVIEW);
  glPushMatrix();
  glLoadIdentity();
  glyphs->draw(text, x, y);
  glPopMatrix();
  glMatrixMode(GL_PROJECTION);
  glPopMatrix();
  glMatrixMode(GL_MODELVIEW);
  glPopAttrib();
  // The texture binding of unit 0 went to the glyphs; the copy must not skip the next bind.
  current.store(RENDERSTATE::renderStateEnums::TEXTURE0, nullptr);
  return true;
}

}  // namespace RENDERING
}  // namespace JEV
