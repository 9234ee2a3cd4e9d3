#include "platform/menu.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <QPalette>
#include <vector>

#include "platform/linux/event_loop.h"
#include "platform/linux/screen_place.h"
#include "platform/linux/text.h"

namespace tintora::platform {

struct Menu {
  QMenu menu;
  std::vector<Menu*> submenus;
  Window* window = nullptr;  // whom a choice is told to, once the menu was opened
};

namespace {

// A menu goes with the one it belongs to, and may be let go once more under its own handle.
std::vector<Menu*> livingMenus;

// Qt has changed the mark itself; marks are the program's.
void keepMark(QAction* item) {
  if (item->isCheckable()) item->setChecked(!item->isChecked());
}

// Labels are items that cannot be chosen; they are not to look it.
void showLabelsAsItems(QMenu& menu) {
  QPalette palette = menu.palette();
  for (const QPalette::ColorRole role :
       {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
    palette.setBrush(QPalette::Disabled, role, palette.brush(QPalette::Active, role));
  }
  menu.setPalette(palette);
}

// Once the menu has done with it: the command may destroy the menu.
void sendCommand(const Menu* menu, const QAction* item) {
  QMetaObject::invokeMethod(
      QCoreApplication::instance(),
      [window = menu->window, command = item->data().toInt()] {
        handOver({.kind = EventKind::Command, .window = window, .command = command});
      },
      Qt::QueuedConnection);
}

}  // namespace

Menu* createMenu() {
  auto* const menu = livingMenus.emplace_back(new Menu);
  showLabelsAsItems(menu->menu);
  // Told of the choices in its submenus too.
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
  menu->window = window;
  menu->menu.popup(onRoot(place));
}

}  // namespace tintora::platform
