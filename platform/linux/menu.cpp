#include "platform/menu.h"

#include <QAction>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QPalette>
#include <algorithm>
#include <vector>

#include "platform/linux/event_loop.h"
#include "platform/linux/handles.h"
#include "platform/linux/screen_place.h"
#include "platform/linux/text.h"

namespace tintora::platform {

struct Menu {
  QMenu menu;
  std::vector<Menu*> submenus;
  Window* window = nullptr;  // receives the user's choice, once the menu was opened
};

namespace {

// A menu is destroyed with its parent menu, and may be released again by its own handle.
std::vector<Menu*> livingMenus;

// Restores the mark that Qt has changed, because only the program sets marks.
void keepMark(QAction* item) {
  if (item->isCheckable()) item->setChecked(!item->isChecked());
}

// Gives labels the look of ordinary items, although they cannot be chosen.
void showLabelsAsItems(QMenu& menu) {
  QPalette palette = menu.palette();
  for (const QPalette::ColorRole role :
       {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
    palette.setBrush(QPalette::Disabled, role, palette.brush(QPalette::Active, role));
  }
  menu.setPalette(palette);
}

// Sends the command after the menu has finished, because the command may destroy the menu.
void sendCommand(const Menu* menu, const QAction* item) {
  QMetaObject::invokeMethod(
      QCoreApplication::instance(),
      [window = menu->window, command = item->data().toInt()] {
        handOver({.kind = EventKind::Command, .window = window, .command = command});
      },
      Qt::QueuedConnection);
}

bool isOnOpenMenu(const QPoint& place) {
  return std::ranges::any_of(livingMenus, [&place](const Menu* menu) {
    return menu->menu.isVisible() && menu->menu.geometry().contains(place);
  });
}

// Returns the window that the open menu belongs to, or null if no menu is open.
Window* windowOfOpenMenu() {
  const auto open = std::ranges::find_if(livingMenus, [](const Menu* menu) {
    return menu->menu.isVisible() && menu->window != nullptr;
  });
  return open == livingMenus.end() ? nullptr : (*open)->window;
}

// Passes on the release that follows a right press beside the menu. The press closes the menu, and
// the release may reach the window or be lost with the menu's mouse grab. A menu that is open by
// then stays.
class PressesBesideMenus : public QObject {
 public:
  bool eventFilter(QObject* /*menu*/, QEvent* event) override {
    if (event->type() != QEvent::MouseButtonPress) return false;
    const auto& mouse = static_cast<const QMouseEvent&>(*event);
    const QPoint place = mouse.globalPosition().toPoint();
    Window* const window = windowOfOpenMenu();
    if (mouse.button() != Qt::RightButton || window == nullptr || isOnOpenMenu(place) ||
        QGuiApplication::topLevelAt(place) != window->window.get()) {
      return false;
    }
    const QPoint inside = window->window->mapFromGlobal(place);
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [window, inside] {
          handOver(
              {.kind = EventKind::RightUp, .window = window, .position = {inside.x(), inside.y()}});
        },
        Qt::QueuedConnection);
    return false;
  }
};

}  // namespace

Menu* createMenu() {
  static PressesBesideMenus pressesBesideMenus;
  auto* const menu = livingMenus.emplace_back(new Menu);
  showLabelsAsItems(menu->menu);
  menu->menu.installEventFilter(&pressesBesideMenus);
  // This signal reports choices in submenus too.
  QObject::connect(&menu->menu, &QMenu::triggered, &menu->menu, [menu](QAction* item) {
    if (menu->window == nullptr) return;
    keepMark(item);
    sendCommand(menu, item);
  });
  return menu;
}

void destroyMenu(Menu* menu) {
  if (std::erase(livingMenus, menu) == 0) return;
  for (Menu* const submenu : menu->submenus) destroyMenu(submenu);
  delete menu;
}

void appendItem(Menu* menu, int command, const std::string& text) {
  menu->menu.addAction(toUnicode(text))->setData(command);
}

void appendLabel(Menu* menu, int /*command*/, const std::string& text) {
  menu->menu.addAction(toUnicode(text))->setEnabled(false);
}

void appendSeparator(Menu* menu) {
  menu->menu.addSeparator();
}

void appendSubmenu(Menu* menu, Menu* submenu, const std::string& text) {
  submenu->menu.setTitle(toUnicode(text));
  menu->menu.addMenu(&submenu->menu);
  menu->submenus.push_back(submenu);
}

void checkMenuItem(Menu* menu, int position, bool checked) {
  const QList<QAction*> items = menu->menu.actions();
  if (position < 0 || position >= items.size()) return;
  QAction* const item = items[position];
  item->setCheckable(checked);
  item->setChecked(checked);
}

void trackMenu(Menu* menu, const Point& place, Window* window) {
  if (menu->menu.isVisible()) return;
  menu->window = window;
  menu->menu.popup(onRoot(place));
}

}  // namespace tintora::platform
