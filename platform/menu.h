// Popup menus. An item's text may hold an accelerator column behind a tab; "&&" shows one "&".
#pragma once

#include <string>

#include "platform/geometry.h"
#include "platform/window.h"

namespace tintora::platform {

struct Menu;

// Creates an empty popup menu.
Menu* createMenu();

// Destroys a menu with its submenus.
void destroyMenu(Menu* menu);

// Appends an item that sends its command, 0..65535, when it is chosen.
void appendItem(Menu* menu, int command, const std::string& text);

// Appends an item that cannot be chosen but is not greyed.
void appendLabel(Menu* menu, int command, const std::string& text);

// Appends a separator line.
void appendSeparator(Menu* menu);

// Appends an item that opens another menu. From then on, that menu belongs to this one.
void appendSubmenu(Menu* menu, Menu* submenu, const std::string& text);

// Sets or clears the check mark of the item at a position, from 0. Does nothing if there is no such
// item.
void checkMenuItem(Menu* menu, int position, bool checked);

// Opens the menu at a place on the screen. The user's choice arrives as a command of the window.
void trackMenu(Menu* menu, const Point& place, Window* window);

}  // namespace tintora::platform
