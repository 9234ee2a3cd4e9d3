#include "platform/menu.h"

#include <QAction>
#include <QCoreApplication>
#include <QLabel>
#include <QMenu>
#include <QWidgetAction>
#include <vector>

#include "platform/linux/event_loop.h"
#include "platform/linux/text.h"

namespace tintora::platform {

struct Menu {
  QMenu menu;
  std::vector<Menu*> submenus;
  Window* window = nullptr;  // whom a choice is told to, once the menu was opened
};

namespace {

// Qt has changed the mark itself; marks are the program's.
void keepMark(QAction* item) {
  if (item->isCheckable()) item->setChecked(!item->isChecked());
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
  auto* const menu = new Menu;
  // Told of the choices in its submenus too.
  QObject::connect(&menu->menu, &QMenu::triggered, &menu->menu, [menu](QAction* item) {
    if (menu->window == nullptr) return;
    keepMark(item);
    sendCommand(menu, item);
  });
  return menu;
}

void destroyMenu(Menu* menu) {
  for (Menu* const submenu : menu->submenus) destroyMenu(submenu);
  delete menu;
}

void appendItem(Menu* menu, int command, const std::string& text) {
  menu->menu.addAction(toUnicode(text))->setData(command);
}

void appendLabel(Menu* menu, int /*command*/, const std::string& text) {
  auto* const label = new QLabel(toUnicode(text).replace("&&", "&"));
  // Where the text of the items begins, behind the column of the marks.
  const int indent = label->fontMetrics().height() + label->fontMetrics().averageCharWidth();
  label->setContentsMargins(indent, 2, indent, 2);
  auto* const action = new QWidgetAction(&menu->menu);
  action->setDefaultWidget(label);
  menu->menu.addAction(action);
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
  menu->menu.popup({place.x, place.y});
}

}  // namespace tintora::platform
