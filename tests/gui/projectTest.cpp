#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "jev3d/gui/button.h"
#include "jev3d/gui/buttongroup.h"
#include "jev3d/gui/canvas.h"
#include "jev3d/gui/checkbox.h"
#include "jev3d/gui/combobox.h"
#include "jev3d/gui/guiController.h"
#include "jev3d/gui/item.h"
#include "jev3d/gui/label.h"
#include "jev3d/gui/menu.h"
#include "jev3d/gui/panel.h"
#include "jev3d/gui/picturebox.h"
#include "jev3d/gui/progressbar.h"
#include "jev3d/gui/radiobutton.h"
#include "jev3d/gui/scrollbar.h"
#include "jev3d/gui/separator.h"
#include "jev3d/gui/slider.h"
#include "jev3d/gui/tab.h"
#include "jev3d/io/xml/stringConversion.h"
#include "support/tempDir.h"

using namespace JEV;
using namespace JEV::GUI;

namespace {

std::string readBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

std::wstring wide(const std::string& s) { return IO::XML::utf8ToWstring(s); }

// A controller outside any window, with its desktop and tooltip.
std::unique_ptr<guiController> makeController() {
  auto gc = std::make_unique<guiController>(nullptr, nullptr);
  EXPECT_TRUE(gc->init(false, true, L"project test"));
  return gc;
}

// One widget of each kind the factory builds, with fields set away from their defaults,
// some nested.
void buildProject(guiController& gc) {
  widget* w = gc.addWidget(L"plain", nullptr);
  w->setPosition(12, 34, 0);
  w->setSize(120, 80);
  w->setShadow(WS_STRONG);
  w->setOrientation(WO_VERTICAL);
  w->enabled = false;
  w->setValues(42.7f, -1.5f, 99.9f);
  w->setToolTip(L"lost on saving");
  w->setUseSchemaColor(false);
  w->setColorNormal(CORE::color(10, 20, 30, 40));
  w->setColorHighlighted(CORE::color(11, 21, 31, 41));
  w->setColorDisabled(CORE::color(12, 22, 32, 42));
  w->setColorDown(CORE::color(13, 23, 33, 43));
  w->setTextColorNormal(CORE::color(14, 24, 34, 44));
  w->setTextColorHighlighted(CORE::color(15, 25, 35, 45));
  w->setTextColorDisabled(CORE::color(16, 26, 36, 46));
  w->setTextColorDown(CORE::color(17, 27, 37, 47));
  w->setTextHorizontalAlign(TEXT_RIGHT);
  w->setTextVerticalAlign(TEXT_TOP);
  w->setIdFont(std::wstring(L"SOME_FONT"));

  panel* p = gc.addPanel(L"panel", nullptr);
  p->setPosition(200, 10, 0);
  p->setSize(300, 200);
  p->layout.width = WSL_HALF;
  p->layout.widthOffset = 7.9f;  // written truncated
  p->layout.widthPerc = true;
  p->layout.setHorizontal(HA_RIGHT);
  p->layout.horizontalOffset = 3;
  p->layout.setVertical(VA_CENTER);
  p->layout.verticalPerc = true;
  p->layout.height = HSL_THIRD;
  p->layout.heightOffset = -2;

  label* l = gc.addLabel(L"label", p);
  l->setPosition(5, 6, 0);
  l->visible = false;
  auto* b = static_cast<button*>(gc.add(WC_BUTTON, L"button", p));
  b->setCheckable(true);
  b->setFlat(true);
  b->setIcon(widget::ICON_HELP);
  b->setSizeIcon(24);
  b->setButtonStyle(BS_ICON_ABOVE);
  auto* plainButton = static_cast<button*>(gc.add(WC_BUTTON, L"button2", p));
  plainButton->setIcon(std::wstring(L"MY_OWN_TEXTURE"));
  widget* cb = gc.add(WC_CHECKBOX, L"checkbox", p);
  cb->checked = true;
  gc.add(WC_RADIOBUTTON, L"radio", p);
  static_cast<picturebox*>(gc.add(WC_PICTUREBOX, L"picture", nullptr))
      ->setIcon(widget::ICON_ARROW_UP);
  widget* s = gc.add(WC_SLIDER, L"slider", nullptr);
  s->valueType = WVT_INTEGER;
  s->setValues(42.7f, -10, 300);
  gc.add(WC_SCROLLBAR, L"scroll", nullptr);
  gc.add(WC_SEPARATOR, L"separator", nullptr);
  gc.add(WC_PROGRESSBAR, L"progress", nullptr)->setValues(30, 0, 60);
  gc.add(WC_CANVAS, L"canvas", gc.getDesktop());
  gc.add(WC_ITEM, L"item", nullptr);
  auto* m = static_cast<menu*>(gc.add(WC_MENU, L"menu", nullptr));
  m->notClosable = true;
  m->addItem(widget::ICON_COPY, L"copy");
  m->addSubMenu(widget::ICON_TOOLS, L"more")->addItem(widget::ICON_UNDO, L"undo");
  // Items added by code are private parts of these and not in the file.
  gc.add(WC_COMBOBOX, L"combo", nullptr);
  static_cast<tab*>(gc.add(WC_TAB, L"tab", nullptr))->addTab(L"page");
  gc.add(WC_BUTTONGROUP, L"group", nullptr);
  gc.setColor(WCC_BUTTON, CORE::color(1, 2, 3, 4), WCI_DOWN);
  gc.setColor(WCC_TEXT, CORE::color(5, 6, 7, 8), WCI_NORMAL);
}

// The fields a project file holds, compared between two widgets.
void expectSameFields(const widget& a, const widget& b) {
  SCOPED_TRACE(IO::XML::wstringToUtf8(a.getId()));
  EXPECT_EQ(a.getClass(), b.getClass());
  EXPECT_EQ(a.getShadow(), b.getShadow());
  EXPECT_EQ(a.getOrientation(), b.getOrientation());
  EXPECT_EQ(a.isEnabled(), b.isEnabled());
  EXPECT_EQ(a.isVisible(), b.isVisible());
  EXPECT_EQ(a.checked.cV(), b.checked.cV());
  EXPECT_EQ(a.valueType, b.valueType);
  EXPECT_EQ(int(a.value.cV()), b.value.cV());
  EXPECT_EQ(int(a.valueMin.cV()), b.valueMin.cV());
  EXPECT_EQ(int(a.valueMax.cV()), b.valueMax.cV());
  EXPECT_EQ(a.getUseSchemaColor(), b.getUseSchemaColor());
  EXPECT_EQ(a.position.x, b.position.x);
  EXPECT_EQ(a.position.y, b.position.y);
  EXPECT_EQ(a.size.x, b.size.x);
  EXPECT_EQ(a.size.y, b.size.y);
  EXPECT_EQ(a.layout.horizontal, b.layout.horizontal);
  EXPECT_EQ(a.layout.vertical, b.layout.vertical);
  EXPECT_EQ(a.layout.width, b.layout.width);
  EXPECT_EQ(a.layout.height, b.layout.height);
  EXPECT_EQ(int(a.layout.horizontalOffset), b.layout.horizontalOffset);
  EXPECT_EQ(int(a.layout.widthOffset), b.layout.widthOffset);
  EXPECT_EQ(int(a.layout.heightOffset), b.layout.heightOffset);
  EXPECT_EQ(a.layout.widthPerc, b.layout.widthPerc);
  EXPECT_EQ(a.layout.verticalPerc, b.layout.verticalPerc);
  EXPECT_EQ(a.getColorNormal(), b.getColorNormal());
  EXPECT_EQ(a.getColorHighlighted(), b.getColorHighlighted());
  EXPECT_EQ(a.getColorDisabled(), b.getColorDisabled());
  EXPECT_EQ(a.getColorDown(), b.getColorDown());
  EXPECT_EQ(a.getTextColorNormal(), b.getTextColorNormal());
  EXPECT_EQ(a.getTextColorHighlighted(), b.getTextColorHighlighted());
  EXPECT_EQ(a.getTextColorDisabled(), b.getTextColorDisabled());
  EXPECT_EQ(a.getTextColorDown(), b.getTextColorDown());
  EXPECT_EQ(a.getTextHorizontalAlign(), b.getTextHorizontalAlign());
  EXPECT_EQ(a.getTextVerticalAlign(), b.getTextVerticalAlign());
  EXPECT_EQ(a.getIdFont(), b.getIdFont());
  const widget* parentA = a.getParent();
  const widget* parentB = b.getParent();
  ASSERT_TRUE(parentA && parentB);
  EXPECT_EQ(parentA->getId(), parentB->getId());
}

const wchar_t* const projectIds[] = {L"plain",     L"panel",    L"label",   L"button", L"button2",
                                     L"checkbox",  L"radio",    L"picture", L"slider", L"scroll",
                                     L"separator", L"progress", L"canvas",  L"item",   L"menu",
                                     L"combo",     L"tab",      L"group"};

const char* const smallProject =
    "<?xml version=\"1.0\" ?>\n"
    "<JEV_GUI_PROJECT>\n"
    "  <COLOR_CLASS>\n"
    "    <WCC_PANEL_0 Red=\"9\" Green=\"8\" Blue=\"7\" Alpha=\"6\" />\n"
    "    <WCC_NO_SUCH_CLASS_0 Red=\"1\" />\n"
    "  </COLOR_CLASS>\n"
    "  <MAIN_WINDOW WIDGET_ID=\"ignored\" WIDGET_CLASS=\"4\" />\n"
    "  <WIDGET WIDGET_ID=\"outer\" WIDGET_CLASS=\"4\">\n"
    "    <WIDGET_POSITION X=\"10\" Y=\"20\" Z=\"0\" />\n"
    "    <WIDGET WIDGET_ID=\"inner\" WIDGET_CLASS=\"2\" WIDGET_TOOLTIP=\"tip\" />\n"
    "  </WIDGET>\n"
    "  <WIDGET WIDGET_CLASS=\"4\" />\n"
    "</JEV_GUI_PROJECT>\n"
    "<JEV_GUI_PROJECT><WIDGET WIDGET_ID=\"second_root\" WIDGET_CLASS=\"4\" />"
    "</JEV_GUI_PROJECT>\n";

}  // namespace

TEST(guiProject, RoundTripGivesTheSameBytesAndFields) {
  tempDir dir;
  auto a = makeController();
  buildProject(*a);
  const std::wstring first = wide(dir.file("first.xml"));
  ASSERT_TRUE(a->saveToFile(first));

  auto b = makeController();
  ASSERT_TRUE(b->openFromFile(first, nullptr, L"", false))
      << IO::XML::wstringToUtf8(b->getProjectError());
  EXPECT_TRUE(b->getProjectError().empty());
  const std::wstring second = wide(dir.file("second.xml"));
  ASSERT_TRUE(b->saveToFile(second));
  const std::string bytes = readBytes(dir.file("first.xml"));
  EXPECT_EQ(bytes, readBytes(dir.file("second.xml")));

  // The document's frame and the table written twice over for the text colours.
  EXPECT_NE(bytes.find("<!--JEV - gui descriptor-->"), std::string::npos);
  EXPECT_NE(bytes.find("<?xml version=\"1.0\" ?>"), std::string::npos);
  EXPECT_LT(bytes.find("JEV - gui descriptor"), bytes.find("<?xml"));
  EXPECT_LT(bytes.find("WCC_TEXT_0"), bytes.find("WCC_BUTTON_0"));
  EXPECT_NE(bytes.find("<FONT_ISTANCE"), std::string::npos);
  EXPECT_EQ(bytes.find("WIDGET_TOOLTIP"), std::string::npos);
  EXPECT_EQ(bytes.find("GUICONTROLLER_WIDGET_TOOLTIPS"), std::string::npos);  // private
  size_t colorEntries = 0;
  for (size_t at = bytes.find("Alpha="); at != std::string::npos; at = bytes.find("Alpha=", at + 1))
    ++colorEntries;
  // 80 table entries, the eight own colours of "plain", and one font colour a widget.
  EXPECT_EQ(colorEntries, 80u + 8u + 22u);

  // Items added by code to combo boxes, tabs and button groups are private parts: not
  // in the file. What was read reads back to as many widgets.
  auto c = makeController();
  ASSERT_TRUE(c->openFromFile(second, nullptr, L"", false));
  EXPECT_EQ(c->getWidgetsCount(), b->getWidgetsCount());
  for (const wchar_t* id : projectIds) {
    const widget* wa = a->getWidget(std::wstring(id));
    const widget* wb = b->getWidget(std::wstring(id));
    ASSERT_TRUE(wa && wb);
    expectSameFields(*wa, *wb);
  }
  // Truncated values and the tooltip are what a save loses.
  EXPECT_EQ(b->getWidget(std::wstring(L"plain"))->value.cV(), 42.0f);
  EXPECT_EQ(b->getWidget(std::wstring(L"plain"))->valueMin.cV(), -1.0f);
  EXPECT_EQ(b->getWidget(std::wstring(L"panel"))->layout.widthOffset, 7.0f);
  EXPECT_TRUE(b->getWidget(std::wstring(L"plain"))->getToolTip().empty());
  EXPECT_EQ(b->getColor(WCC_BUTTON, WCI_DOWN), CORE::color(1, 2, 3, 4));
  EXPECT_EQ(b->getColor(WCC_TEXT, WCI_NORMAL), CORE::color(5, 6, 7, 8));
  // The controls' own attributes.
  for (const wchar_t* id : {L"button", L"button2"}) {
    const auto* ba = static_cast<const button*>(a->getWidget(std::wstring(id)));
    const auto* bb = static_cast<const button*>(b->getWidget(std::wstring(id)));
    EXPECT_EQ(ba->getCheckable(), bb->getCheckable());
    EXPECT_EQ(ba->getFlat(), bb->getFlat());
    EXPECT_EQ(ba->getIcon(), bb->getIcon());
    EXPECT_EQ(ba->getIconPart()->getIdTexture(), bb->getIconPart()->getIdTexture());
    EXPECT_EQ(ba->getSizeIcon(), bb->getSizeIcon());
    EXPECT_EQ(ba->getButtonStyle(), bb->getButtonStyle());
  }
  const auto* readButton = static_cast<const button*>(b->getWidget(std::wstring(L"button")));
  EXPECT_TRUE(readButton->getCheckable());
  EXPECT_EQ(readButton->getIcon(), widget::ICON_HELP);
  EXPECT_EQ(readButton->getButtonStyle(), BS_ICON_ABOVE);
  EXPECT_EQ(readButton->getSizeIcon(), 24);
  EXPECT_EQ(static_cast<const button*>(b->getWidget(std::wstring(L"button2")))
                ->getIconPart()
                ->getIdTexture(),
            L"MY_OWN_TEXTURE");
  EXPECT_EQ(static_cast<const picturebox*>(b->getWidget(std::wstring(L"picture")))->getIcon(),
            widget::ICON_ARROW_UP);
  EXPECT_NE(bytes.find("BUTTON_STYLE=\"2\""), std::string::npos);
  // Check boxes and radio buttons write the button attributes too.
  EXPECT_NE(bytes.find("BUTTON_CHECKABLE=\"1\" BUTTON_FLAT=\"0\" BUTTON_STYLE=\"0\""),
            std::string::npos);
  // Menu items read back are the menu's items, and the sub-menu is found again.
  const auto* menuB = static_cast<const menu*>(b->getWidget(std::wstring(L"menu")));
  ASSERT_EQ(menuB->getItems().size(), 2u);
  EXPECT_EQ(menuB->getItems()[0]->getId(), L"menu_ITEM0");
  const menu* subB = menuB->getItems()[1]->getSubMenu();
  ASSERT_NE(subB, nullptr);
  EXPECT_EQ(subB->getId(), L"menu_ITEM1_MENU");
  ASSERT_EQ(subB->getItems().size(), 1u);
  EXPECT_EQ(subB->getItems()[0]->treeParent, menuB->getItems()[1]);
  EXPECT_EQ(menuB->getItems()[0]->getIconPart()->getIcon(), widget::ICON_COPY);
  // Children keep their order.
  const widget* panelB = b->getWidget(std::wstring(L"panel"));
  EXPECT_EQ(panelB->getChildAt(0)->getId(), L"label");
  EXPECT_EQ(panelB->getChildAt(1)->getId(), L"button");
}

TEST(guiProject, ReadsFromAStringWithPrefixesSkippingWhatItDoesNotKnow) {
  auto gc = makeController();
  const int before = gc->getWidgetsCount();
  ASSERT_TRUE(gc->openFromString(wide(smallProject), nullptr, L"p_", false));
  // Only the first root is read; MAIN_WINDOW and the widget without id are passed over.
  EXPECT_EQ(gc->getWidgetsCount(), before + 2);
  widget* outer = gc->getWidget(std::wstring(L"p_outer"));
  widget* inner = gc->getWidget(std::wstring(L"p_inner"));
  ASSERT_TRUE(outer && inner);
  EXPECT_EQ(gc->getWidget(std::wstring(L"outer")), nullptr);
  EXPECT_EQ(gc->getWidget(std::wstring(L"p_second_root")), nullptr);
  EXPECT_EQ(gc->getWidget(std::wstring(L"p_ignored")), nullptr);
  EXPECT_EQ(inner->getParent(), outer);
  EXPECT_EQ(outer->getParent(), gc->getDesktop());
  EXPECT_EQ(outer->position.x, 10.0f);
  EXPECT_EQ(outer->position.y, 20.0f);
  EXPECT_EQ(inner->getToolTip(), L"tip");
  EXPECT_EQ(gc->getColor(WCC_PANEL, WCI_NORMAL), CORE::color(9, 8, 7, 6));

  // The same prefix again adds nothing; another prefix adds a second copy under a parent.
  ASSERT_TRUE(gc->openFromString(wide(smallProject), nullptr, L"p_", false));
  EXPECT_EQ(gc->getWidgetsCount(), before + 2);
  ASSERT_TRUE(gc->openFromString(wide(smallProject), inner, L"q_", false));
  EXPECT_EQ(gc->getWidgetsCount(), before + 4);
  EXPECT_EQ(gc->getWidget(std::wstring(L"q_outer"))->getParent(), inner);
  EXPECT_EQ(gc->getWidget(std::wstring(L"q_inner"))->getParent()->getId(), L"q_outer");
}

TEST(guiProject, ItemsFindTheirSubMenusAfterTheWholeTree) {
  const std::wstring text =
      L"<JEV_GUI_PROJECT>"
      L"<WIDGET WIDGET_ID=\"top\" WIDGET_CLASS=\"3\" NOTCLOSABLE=\"1\">"
      L"<WIDGET WIDGET_ID=\"opens\" WIDGET_CLASS=\"22\" SUB_MENU=\"later\" "
      L"ICON_TEXTURE=\"GUI_UNDO_ICON\" WFLAGS_TREEVIEWITEM_OPEN=\"1\"/>"
      L"<WIDGET WIDGET_ID=\"child\" WIDGET_CLASS=\"22\" TREE_PARENT=\"opens\"/>"
      L"<WIDGET WIDGET_ID=\"dangling\" WIDGET_CLASS=\"22\" SUB_MENU=\"nowhere\"/>"
      L"</WIDGET>"
      L"<WIDGET WIDGET_ID=\"later\" WIDGET_CLASS=\"3\"/>"
      L"</JEV_GUI_PROJECT>";
  auto gc = makeController();
  ASSERT_TRUE(gc->openFromString(text, nullptr, L"m_", false));
  auto* opens = dynamic_cast<item*>(gc->getWidget(std::wstring(L"m_opens")));
  auto* later = dynamic_cast<menu*>(gc->getWidget(std::wstring(L"m_later")));
  ASSERT_TRUE(opens && later);
  EXPECT_EQ(opens->getSubMenu(), later);
  EXPECT_TRUE(opens->getFlags().isFlagSet(WF_TREEVIEWITEM_OPEN));
  EXPECT_EQ(opens->getIconPart()->getIcon(), widget::ICON_UNDO);
  EXPECT_EQ(dynamic_cast<item*>(gc->getWidget(std::wstring(L"m_child")))->treeParent, opens);
  // A name no widget bears is passed over.
  EXPECT_EQ(dynamic_cast<item*>(gc->getWidget(std::wstring(L"m_dangling")))->getSubMenu(), nullptr);
  EXPECT_TRUE(dynamic_cast<menu*>(gc->getWidget(std::wstring(L"m_top")))->notClosable);

  // Written back with the names, the prefixed ones, and the selection of a combo box.
  tempDir dir;
  auto* box = static_cast<combobox*>(gc->add(WC_COMBOBOX, L"box", nullptr));
  box->addItem(L"one");
  box->addItem(L"two");
  box->setItemSelect(1, false);
  ASSERT_TRUE(gc->saveToFile(wide(dir.file("menus.xml"))));
  const std::string bytes = readBytes(dir.file("menus.xml"));
  EXPECT_NE(bytes.find("SUB_MENU=\"m_later\""), std::string::npos);
  EXPECT_NE(bytes.find("TREE_PARENT=\"m_opens\""), std::string::npos);
  EXPECT_NE(bytes.find("NOTCLOSABLE=\"1\""), std::string::npos);
  EXPECT_NE(bytes.find("ITEM_SELECT=\"1\""), std::string::npos);
  EXPECT_NE(bytes.find("ICON_TEXTURE=\"GUI_UNDO_ICON\""), std::string::npos);
}

TEST(guiProject, SkipColorsLeavesTheTable) {
  auto gc = makeController();
  const CORE::color before = gc->getColor(WCC_PANEL, WCI_NORMAL);
  ASSERT_NE(before, CORE::color(9, 8, 7, 6));
  ASSERT_TRUE(gc->openFromString(wide(smallProject), nullptr, L"", true));
  EXPECT_EQ(gc->getColor(WCC_PANEL, WCI_NORMAL), before);
  EXPECT_TRUE(gc->openColorTableFromString(wide(smallProject)));
  EXPECT_EQ(gc->getColor(WCC_PANEL, WCI_NORMAL), CORE::color(9, 8, 7, 6));
}

TEST(guiProject, ColorTableAndSingleWidgetFiles) {
  tempDir dir;
  auto a = makeController();
  buildProject(*a);
  ASSERT_TRUE(a->saveColorTableToFile(wide(dir.file("colors.xml"))));
  auto b = makeController();
  ASSERT_TRUE(b->openColorTableFromFile(wide(dir.file("colors.xml"))));
  for (int cls = 0; cls < WCC_COUNT; ++cls) {
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(a->getColor(WIDGET_CLASS_COLOR(cls), i), b->getColor(WIDGET_CLASS_COLOR(cls), i));
    }
  }
  EXPECT_FALSE(b->openColorTableFromFile(wide(dir.file("absent.xml"))));

  // A widget saved alone carries its subtree and nothing else.
  ASSERT_TRUE(a->getWidget(std::wstring(L"panel"))->saveToXML(wide(dir.file("panel.xml"))));
  auto c = makeController();
  const int before = c->getWidgetsCount();
  ASSERT_TRUE(c->openFromFile(dir.file("panel.xml"), nullptr, L"", false));
  EXPECT_NE(c->getWidget(std::wstring(L"panel")), nullptr);
  EXPECT_NE(c->getWidget(std::wstring(L"label")), nullptr);
  EXPECT_EQ(c->getWidget(std::wstring(L"plain")), nullptr);
  EXPECT_EQ(c->getWidget(std::wstring(L"slider")), nullptr);
  EXPECT_GT(c->getWidgetsCount(), before + 5);
}

// Each bad input fails with a message and leaves the controller as it was: the same
// widgets, the same colours, the same saved bytes.
TEST(guiProject, BadInputFailsAndChangesNothing) {
  tempDir dir;
  auto gc = makeController();
  buildProject(*gc);
  ASSERT_TRUE(gc->saveToFile(wide(dir.file("before.xml"))));
  const std::string good = readBytes(dir.file("before.xml"));
  const int count = gc->getWidgetsCount();

  auto expectFails = [&](const std::string& what, const std::wstring& text,
                         const std::string& messagePart) {
    SCOPED_TRACE(what);
    EXPECT_FALSE(gc->openFromString(text, nullptr, L"x_", false));
    const std::string message = IO::XML::wstringToUtf8(gc->getProjectError());
    EXPECT_NE(message.find(messagePart), std::string::npos) << message;
    EXPECT_EQ(gc->getWidgetsCount(), count);
    ASSERT_TRUE(gc->saveToFile(wide(dir.file("after.xml"))));
    EXPECT_EQ(readBytes(dir.file("after.xml")), good);
  };

  // Cut in the middle of the widget tree, after the colour table was complete.
  const size_t cut = good.find("WIDGET_ID=\"slider\"");
  ASSERT_NE(cut, std::string::npos);
  expectFails("truncated", wide(good.substr(0, cut)), "not well-formed");
  expectFails("empty", L"", "not well-formed");
  expectFails("no root", L"<OTHER><WIDGET WIDGET_ID=\"a\" WIDGET_CLASS=\"4\"/></OTHER>",
              "no JEV_GUI_PROJECT");

  // A bad class after widgets (and colours) were read: everything made is taken back.
  std::string unknown = good;
  const std::string lastClose = "</JEV_GUI_PROJECT>";
  unknown.insert(unknown.rfind(lastClose),
                 "<WIDGET WIDGET_ID=\"deep\" WIDGET_CLASS=\"4\">"
                 "<WIDGET WIDGET_ID=\"odd\" WIDGET_CLASS=\"99\"/></WIDGET>");
  // Colours changed by the same file must come back too.
  const size_t red = unknown.find("<WCC_BUTTON_0 ");
  ASSERT_NE(red, std::string::npos);
  unknown.insert(red, "<WCC_PANEL_1 Red=\"1\" Green=\"1\" Blue=\"1\" Alpha=\"1\" />");
  expectFails("unknown class", wide(unknown), "unknown widget class 99");
  std::string notNumber = good;
  notNumber.insert(notNumber.rfind(lastClose), "<WIDGET WIDGET_ID=\"n\" WIDGET_CLASS=\"panel\"/>");
  expectFails("class not a number", wide(notNumber), "is not a number");

  std::wstring deep = L"<JEV_GUI_PROJECT>";
  const int levels = guiController::MAX_PROJECT_DEPTH + 10;
  for (int i = 0; i < levels; ++i) {
    deep += L"<WIDGET WIDGET_ID=\"d" + std::to_wstring(i) + L"\" WIDGET_CLASS=\"4\">";
  }
  for (int i = 0; i < levels; ++i) deep += L"</WIDGET>";
  deep += L"</JEV_GUI_PROJECT>";
  expectFails("too deep", deep, "nest deeper");

  EXPECT_FALSE(gc->openFromFile(wide(dir.file("absent.xml")), nullptr, L"", false));
  EXPECT_NE(gc->getProjectError().find(L"cannot open"), std::wstring::npos);
  {
    std::ofstream out(dir.file("cut.xml"), std::ios::binary);
    out << good.substr(0, good.size() / 2);
  }
  EXPECT_FALSE(gc->openFromFile(wide(dir.file("cut.xml")), nullptr, L"x_", false));
  EXPECT_EQ(gc->getWidgetsCount(), count);

  // The library's resources: a picture of the skin archive is no project, a missing
  // name or another type is refused.
  EXPECT_FALSE(gc->openFromResource(L"logo.png", L"ZIP", nullptr, L"", false));
  EXPECT_FALSE(gc->openFromResource(L"noSuchProject.xml", L"ZIP", nullptr, L"", false));
  EXPECT_NE(gc->getProjectError().find(L"not found"), std::wstring::npos);
  EXPECT_FALSE(gc->openFromResource(L"#2000", L"RCDATA", nullptr, L"", false));
  EXPECT_EQ(gc->getWidgetsCount(), count);
  ASSERT_TRUE(gc->saveToFile(wide(dir.file("after.xml"))));
  EXPECT_EQ(readBytes(dir.file("after.xml")), good);
}

// A saved project cut short anywhere, or with a byte broken, is refused or read whole:
// never half a tree.
TEST(guiProject, DamagedProjectsAreAllOrNothing) {
  tempDir dir;
  auto source = makeController();
  buildProject(*source);
  ASSERT_TRUE(source->saveToFile(wide(dir.file("whole.xml"))));
  const std::string good = readBytes(dir.file("whole.xml"));
  auto gc = makeController();
  const int count = gc->getWidgetsCount();
  int refused = 0;
  for (size_t cut = 0; cut + 1 < good.size(); cut += 131) {
    EXPECT_FALSE(gc->openFromString(wide(good.substr(0, cut)), nullptr, L"", false)) << cut;
    EXPECT_FALSE(gc->getProjectError().empty());
    EXPECT_EQ(gc->getWidgetsCount(), count);
    ++refused;
  }
  EXPECT_GT(refused, 50);
  for (size_t at = 0; at < good.size(); at += 89) {
    for (char bad : {'<', '"', '9', '\0'}) {
      std::string broken = good;
      broken[at] = bad;
      auto fresh = makeController();
      const int before = fresh->getWidgetsCount();
      if (!fresh->openFromString(wide(broken), nullptr, L"", false)) {
        EXPECT_EQ(fresh->getWidgetsCount(), before) << at;
        EXPECT_FALSE(fresh->getProjectError().empty());
      }
    }
  }
}
