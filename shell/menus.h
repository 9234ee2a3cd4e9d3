// The popup menu and its submenus.
#pragma once

namespace tintora {

// Creates the nine popup menus, empty.
void createEmptyMenus();

// Builds all menus anew for the custom transforms that are loaded and the options switched on, and
// records where the items that the engine marks stand.
void buildMenus();

// Destroys the nine popup menus.
void destroyMenus();

}  // namespace tintora
