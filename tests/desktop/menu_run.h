// The popup menu as a user operates it: right mouse button, arrow keys and Return.
#pragma once

#include <string>
#include <vector>

#include "program_run.h"

namespace tintora::desktop_test {

class MenuTest : public ProgramTest {
 protected:
  using Path = std::vector<std::string>;

  // The items that the main menu has.
  struct Contents {
    std::vector<std::string> customs;
    bool tritan = false;
    bool simulationOptions = false;
  };

  void openMenu();
  // Opens the main menu and the submenus of a path.
  void openSubmenus(const Path& path);
  void closeMenus();
  void pressTimes(xcb_keysym_t symbol, int times = 1);
  // Chooses an item by its path from the main menu.
  void choose(const Path& path);
  // Returns the marked items of the main menu, or of the submenu at a path.
  std::vector<std::string> markedItems(const Path& path = {});
  // Returns the items of a menu that can be chosen.
  std::vector<std::string> itemsOf(const std::string& menu) const;

  Contents contents;

 private:
  // Moves the highlight down to an item of the deepest open menu.
  void highlight(const std::string& menu, const std::string& item, bool firstIsHighlighted);
};

}  // namespace tintora::desktop_test
