#include "jev3d/renderer/renderstate/materialstate.h"

#include <cerrno>
#include <cmath>
#include <cwchar>

#include "jev3d/io/xml/xmlAttribute.h"
#include "jev3d/io/xml/xmlElement.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {
namespace {

struct preset {
  float ambient[3];
  float diffuse[3];
  float specular[3];
  float shininess;
};

const preset presets[materialstate::MATERIAL_TYPE_COUNT] = {
    {{.0215f, .1745f, .0215f}, {.07568f, .61424f, .07568f}, {.633f, .72781f, .633f}, 76.8f},
    {{.135f, .2225f, .1575f}, {.54f, .89f, .63f}, {.31623f, .31623f, .31623f}, 12.8f},
    {{.05375f, .05f, .06625f}, {.18275f, .17f, .22525f}, {.33274f, .32863f, .34644f}, 38.4f},
    {{.25f, .20725f, .20725f}, {1.f, .829f, .829f}, {.29665f, .29665f, .29665f}, 11.264f},
    {{.1745f, .01175f, .01175f}, {.61424f, .04136f, .04136f}, {.72781f, .62696f, .62696f}, 76.8f},
    {{.1f, .18725f, .1745f}, {.396f, .74151f, .69102f}, {.29725f, .30829f, .30668f}, 12.8f},
    {{.32941f, .22353f, .027451f},
     {.78039f, .56863f, .11372f},
     {.99216f, .94118f, .80784f},
     27.897f},
    {{.2125f, .1275f, .054f}, {.714f, .4284f, .18144f}, {.39355f, .27191f, .16672f}, 25.6f},
    {{.25f, .25f, .25f}, {.4f, .4f, .4f}, {.7746f, .7746f, .7746f}, 76.8f},
    {{.19125f, .0735f, .0225f}, {.7038f, .27048f, .0828f}, {.25678f, .13762f, .086014f}, 12.8f},
    {{.24725f, .1995f, .0745f}, {.75164f, .60648f, .22648f}, {.62828f, .5558f, .36606f}, 51.2f},
    {{.19225f, .19225f, .19225f}, {.50754f, .50754f, .50754f}, {.50827f, .50827f, .50827f}, 51.2f},
    {{0.f, 0.f, 0.f}, {.01f, .01f, .01f}, {.5f, .5f, .5f}, 32.f},
    {{0.f, .1f, .06f}, {0.f, .5098f, .5098f}, {.50196f, .50196f, .50196f}, 32.f},
    {{0.f, 0.f, 0.f}, {.1f, .35f, .1f}, {.45f, .55f, .45f}, 32.f},
    {{0.f, 0.f, 0.f}, {.5f, 0.f, 0.f}, {.7f, .6f, .6f}, 32.f},
    {{0.f, 0.f, 0.f}, {.55f, .55f, .55f}, {.7f, .7f, .7f}, 32.f},
    {{0.f, 0.f, 0.f}, {.5f, .5f, 0.f}, {.6f, .6f, .5f}, 32.f},
    {{.02f, .02f, .02f}, {.01f, .01f, .01f}, {.4f, .4f, .4f}, 10.f},
    {{0.f, .05f, .05f}, {.4f, .5f, .5f}, {.04f, .7f, .7f}, 10.f},
    {{0.f, .05f, 0.f}, {.4f, .5f, .4f}, {.04f, .7f, .04f}, 10.f},
    {{.05f, 0.f, 0.f}, {.5f, .4f, .4f}, {.7f, .04f, .04f}, 10.f},
    {{.05f, .05f, .05f}, {.5f, .5f, .5f}, {.7f, .7f, .7f}, 10.f},
    {{.05f, .05f, 0.f}, {.5f, .5f, .4f}, {.7f, .7f, .04f}, 10.f},
};

CORE::color scaled(const float (&rgb)[3]) {
  return CORE::color(uint8_t(rgb[0] * 255.0f), uint8_t(rgb[1] * 255.0f), uint8_t(rgb[2] * 255.0f),
                     255);
}

struct side {
  SYSTEM::fieldBase<CORE::color>& emissive;
  SYSTEM::fieldBase<CORE::color>& ambient;
  SYSTEM::fieldBase<CORE::color>& diffuse;
  SYSTEM::fieldBase<CORE::color>& specular;
  SYSTEM::fieldBase<float>& shininess;
};

void loadPreset(side s, materialstate::MATERIAL_TYPE type) {
  if (type < 0 || type >= materialstate::MATERIAL_TYPE_COUNT) return;
  const preset& p = presets[type];
  s.emissive = CORE::color(0, 0, 0, 0);
  s.ambient = scaled(p.ambient);
  s.diffuse = scaled(p.diffuse);
  s.specular = scaled(p.specular);
  s.shininess = p.shininess;
}

const wchar_t* const colourKeys[8] = {L"FrontEmissive", L"FrontAmbient", L"FrontDiffuse",
                                      L"FrontSpecular", L"BackEmissive", L"BackAmbient",
                                      L"BackDiffuse",   L"BackSpecular"};
const wchar_t* const channelKeys[4] = {L"Red", L"Green", L"Blue", L"Alpha"};

// Reads the channels present on `element` into `colour`; false for a channel that is not
// an integer in 0 to 255.
bool readColour(const IO::XML::xmlElement& element, CORE::color& colour) {
  uint8_t* channels[4] = {&colour.r, &colour.g, &colour.b, &colour.a};
  for (int i = 0; i < 4; ++i) {
    if (!element.isAttribute(channelKeys[i])) continue;
    int value = 0;
    if (!element.queryIntValue(channelKeys[i], value) || value < 0 || value > 255) return false;
    *channels[i] = uint8_t(value);
  }
  return true;
}

// The layer reads floats leniently (text that is no number reads as 0); a material takes
// only a whole finite number.
bool readShininess(const IO::XML::xmlElement& element, const wchar_t* key, float& value) {
  const IO::XML::xmlAttribute* attribute = element.getAttribute(std::wstring(key));
  if (!attribute) return true;
  const std::wstring& text = attribute->getValueW();
  wchar_t* end = nullptr;
  errno = 0;
  const float read = std::wcstof(text.c_str(), &end);
  if (end == text.c_str() || errno == ERANGE || !std::isfinite(read)) return false;
  while (*end == L' ' || *end == L'\t' || *end == L'\n' || *end == L'\r') ++end;
  if (*end != L'\0') return false;
  value = read;
  return true;
}

}  // namespace

materialstate::materialstate(CORE::color fe, CORE::color fa, CORE::color fd, CORE::color fs,
                             float fsh, CORE::color be, CORE::color ba, CORE::color bd,
                             CORE::color bs, float bsh) {
  set(fe, fa, fd, fs, fsh, be, ba, bd, bs, bsh);
}

void materialstate::set(CORE::color fe, CORE::color fa, CORE::color fd, CORE::color fs, float fsh,
                        CORE::color be, CORE::color ba, CORE::color bd, CORE::color bs, float bsh) {
  frontEmissive = fe;
  frontAmbient = fa;
  frontDiffuse = fd;
  frontSpecular = fs;
  frontShininess = fsh;
  backEmissive = be;
  backAmbient = ba;
  backDiffuse = bd;
  backSpecular = bs;
  backShininess = bsh;
}

void materialstate::clone(materialstate* target) const {
  target->set(frontEmissive.cV(), frontAmbient.cV(), frontDiffuse.cV(), frontSpecular.cV(),
              frontShininess.cV(), backEmissive.cV(), backAmbient.cV(), backDiffuse.cV(),
              backSpecular.cV(), backShininess.cV());
}

void materialstate::render(renderingContext* rc) { renderOnSlot(rc, MATERIAL_STATE); }

void materialstate::copyFrontToBack() {
  backEmissive = frontEmissive.cV();
  backAmbient = frontAmbient.cV();
  backDiffuse = frontDiffuse.cV();
  backSpecular = frontSpecular.cV();
  backShininess = frontShininess.cV();
}

void materialstate::setFrontMaterialType(MATERIAL_TYPE type) {
  loadPreset({frontEmissive, frontAmbient, frontDiffuse, frontSpecular, frontShininess}, type);
}

void materialstate::setBackMaterialType(MATERIAL_TYPE type) {
  loadPreset({backEmissive, backAmbient, backDiffuse, backSpecular, backShininess}, type);
}

void materialstate::setFrontAndBackMaterialType(MATERIAL_TYPE type) {
  setFrontMaterialType(type);
  setBackMaterialType(type);
}

void materialstate::saveToXML(IO::XML::xmlNode* parent, const std::wstring& name) const {
  if (!parent) return;
  IO::XML::xmlElement element(name);
  element.setAttribute(std::wstring(L"FrontShininess"), frontShininess.cV());
  element.setAttribute(std::wstring(L"BackShininess"), backShininess.cV());
  IO::XML::xmlElement* saved = element.connect(parent);
  if (!saved) return;
  const CORE::color colours[8] = {frontEmissive.cV(), frontAmbient.cV(), frontDiffuse.cV(),
                                  frontSpecular.cV(), backEmissive.cV(), backAmbient.cV(),
                                  backDiffuse.cV(),   backSpecular.cV()};
  for (int i = 0; i < 8; ++i) {
    IO::XML::xmlElement colour{std::wstring(colourKeys[i])};
    colour.setAttribute(std::wstring(channelKeys[0]), int(colours[i].r));
    colour.setAttribute(std::wstring(channelKeys[1]), int(colours[i].g));
    colour.setAttribute(std::wstring(channelKeys[2]), int(colours[i].b));
    colour.setAttribute(std::wstring(channelKeys[3]), int(colours[i].a));
    colour.connect(saved);
  }
}

bool materialstate::openFromXML(IO::XML::xmlElement& element) {
  // Read everything into copies first, so that a bad value leaves the state untouched.
  SYSTEM::fieldBase<CORE::color>* fields[8] = {&frontEmissive, &frontAmbient, &frontDiffuse,
                                               &frontSpecular, &backEmissive, &backAmbient,
                                               &backDiffuse,   &backSpecular};
  CORE::color colours[8];
  for (int i = 0; i < 8; ++i) {
    colours[i] = fields[i]->cV();
    const IO::XML::xmlNode* child = element.findNode(std::wstring(colourKeys[i]));
    if (!child) continue;
    if (child->getType() != IO::XML::XML_ELEMENT) return false;
    if (!readColour(static_cast<const IO::XML::xmlElement&>(*child), colours[i])) return false;
  }
  float front = frontShininess.cV();
  float back = backShininess.cV();
  if (!readShininess(element, L"FrontShininess", front)) return false;
  if (!readShininess(element, L"BackShininess", back)) return false;
  set(colours[0], colours[1], colours[2], colours[3], front, colours[4], colours[5], colours[6],
      colours[7], back);
  return true;
}

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
