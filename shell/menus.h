// The popup menu and its submenus.
#pragma once

namespace tintora {

// Creates the nine popup menus, empty.
void createEmptyMenus();

// Builds all menus for the loaded custom transforms and the enabled options, and records the
// positions of the items that the engine marks.
void buildMenus();

// Destroys the nine popup menus.
void destroyMenus();

}  // namespace tintora
