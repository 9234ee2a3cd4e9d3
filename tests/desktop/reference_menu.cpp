// Shows a menu with given texts for comparison: tintora_reference_menu HIGHLIGHTED MARKED TEXT...
// Texts are UTF-8, the numbers positions; MARKED may be -1. Prints the menu's window once it is
// shown.
#include <QAction>
#include <QApplication>
#include <QGuiApplication>
#include <QMenu>
#include <iostream>
#include <string>

int main(int count, char** arguments) {
  QApplication application(count, arguments);
  QMenu menu;
  const int highlighted = std::stoi(arguments[1]);
  const int marked = std::stoi(arguments[2]);
  for (int i = 3; i < count; ++i) {
    QAction* const item = menu.addAction(QString::fromUtf8(arguments[i]));
    item->setCheckable(i - 3 == marked);
    item->setChecked(i - 3 == marked);
  }
  menu.popup({0, 0}, nullptr);
  menu.setActiveAction(menu.actions().at(highlighted));
  std::cout << menu.winId() << std::endl;
  return QApplication::exec();
}
