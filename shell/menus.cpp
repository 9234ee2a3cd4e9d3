#include "shell/menus.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>

#include "engine/colour_effects.h"
#include "engine/custom_transforms.h"
#include "engine/transform_display.h"
#include "engine/transform_settings.h"
#include "platform/menu.h"
#include "shell/command_ids.h"
#include "shell/shell_state.h"

namespace tintora {

namespace {

using platform::Menu;
using MenuSlot = Menu* ShellMenus::*;

int customCount() {
  return static_cast<int>(customTransforms.size());
}

enum class ItemKind { Item, Label, Separator, Submenu };
enum class Condition { Always, TritanEnabled, SimulationOptionsEnabled };

struct MenuItem {
  ItemKind kind;
  const char* text = "";
  int command = 0;
  bool relative = false;
  MenuSlot submenu = nullptr;
  Condition condition = Condition::Always;
  // Receives the item's position if the engine marks the item.
  int* position = nullptr;
};

constexpr MenuItem item(int command, const char* text, int* position = nullptr) {
  return {.kind = ItemKind::Item, .text = text, .command = command, .position = position};
}
constexpr MenuItem item(command_ids::Relative command, const char* text,
                        Condition condition = Condition::Always) {
  return {.kind = ItemKind::Item,
          .text = text,
          .command = command.offset,
          .relative = true,
          .condition = condition};
}
constexpr MenuItem label(const char* text) {
  return {.kind = ItemKind::Label, .text = text, .command = command_ids::label};
}
constexpr MenuItem separator() {
  return {.kind = ItemKind::Separator};
}
constexpr MenuItem submenu(MenuSlot menu, const char* text, Condition condition = Condition::Always,
                           int* position = nullptr) {
  return {.kind = ItemKind::Submenu,
          .text = text,
          .submenu = menu,
          .condition = condition,
          .position = position};
}

constexpr std::array colourSwapItems{
    item(command_ids::of(ColourSwap::RedGreen), "Swap Red and Green"),
    item(command_ids::of(ColourSwap::GreenBlue), "Swap Green and Blue"),
};

constexpr MenuItem algorithmItem(SimulationAlgorithm algorithm, const char* text) {
  const auto number = static_cast<std::size_t>(algorithm);
  // Does not compile for an algorithm that has no position.
  return item(command_ids::of(algorithm), text, &transformDisplay.algorithmPositions.at(number));
}

constexpr std::array alternativeTransformItems{
    label("Alternative transforms:"),
    algorithmItem(SimulationAlgorithm::Judd1948, "Judd, 1948"),
    algorithmItem(SimulationAlgorithm::Vienot1997Approximated,
                  "Vi\xE9not, Brettel && Mollon, 1997 - Approximated"),
    algorithmItem(SimulationAlgorithm::Vienot1999, "Vi\xE9not, Brettel && Mollon, 1999"),
    algorithmItem(SimulationAlgorithm::Yang2008, "Yang, Ro, Wong && Lee, 2008"),
    algorithmItem(SimulationAlgorithm::Machado2009, "Machado, Oliveira && Fernandes, 2009"),
};

constexpr std::array otherColourEffectItems{
    submenu(&ShellMenus::colourSwap, "Colour Swap"),
    submenu(&ShellMenus::colourFilter, "Colour Filter"),
    item(command_ids::invert, "Invert\tI"),
    item(command_ids::greyscale, "Greyscale\tG"),
    item(command_ids::brightness, "Brightness\tB"),
    item(command_ids::contrast, "Contrast\tO"),
    item(command_ids::saturation, "Saturation\tN"),
    item(command_ids::circadianLightBlock, "Circadian Light Block\tL"),
};

constexpr std::array helpItems{
    item(command_ids::of(ViewCode::Help), "Quick Help\tF1"),
    item(command_ids::openUserGuide, "User Guide (Website)"),
    separator(),
};

constexpr std::array viewOptionItems{
    item(command_ids::toggleHitTransparency, "Hit Transparent\tH"),
    item(command_ids::toggleFullScreen, "Full Screen\tF"),
    item(command_ids::toggleTransform, "Toggle Colour Transform\tTab"),
    item(command_ids::toggleFrame, "Toggle Window Frame\tSpace"),
    item(command_ids::copyToClipboard, "Copy to Clipboard (single monitor setup only)\tCtrl C"),
};

constexpr std::array colourSpaceItems{
    item(command_ids::of(ViewCode::RgbCube), "RGB Cube\tR"),
    item(command_ids::of(ViewCode::ChromaticityDiagram), "Chromaticity Diagram\tC"),
    item(command_ids::of(ViewCode::ResponseCurves), "Photoreceptor Response Curves\tE"),
    separator(),
    item(command_ids::toggleColourSpace, "Show/Hide Colour Space Window\tW"),
    item(command_ids::toggleDocking, "Dock to Main Window\tK"),
};

constexpr std::array mainItems{
    label("Colour Vision Deficiency Type and Severity:\tKey"),
    item(command_ids::protan, "Protan: Long-wave deficient, 2.6% males, 0.04% females\tP"),
    item(command_ids::deutan, "Deutan: Medium-wave deficient, 6.2% males, 0.36% females\tD"),
    item(command_ids::tritan, "Tritan: Short-wave deficient, 0.001% males, 0.03% females\tT",
         Condition::TritanEnabled),
    label("Severity\tmouse-wheel, +-"),
    separator(),
    label("For Colour Normal Viewers:\tKey"),
    item(command_ids::simulation, "Simulation\tS", &transformDisplay.positions.simulation),
    submenu(&ShellMenus::alternativeTransforms, "Simulation Option",
            Condition::SimulationOptionsEnabled),
    separator(),
    label("For Colour Deficient Viewers:\tKey"),
    item(command_ids::daltonize, "Daltonize\tA", &transformDisplay.positions.daltonize),
    item(command_ids::inverseTransform, "Inverse Transform",
         &transformDisplay.positions.inverseTransform),
    item(command_ids::of(ColourSwap::RedBlue), "Swap Red and Blue",
         &transformDisplay.positions.swapRedAndBlue),
    separator(),
    submenu(&ShellMenus::otherColourEffects, "Other Colour Effects", Condition::Always,
            &transformDisplay.positions.otherColourEffects),
    submenu(&ShellMenus::colourSpace, "Colour Space Window"),
    submenu(&ShellMenus::viewOptions, "View Options"),
    submenu(&ShellMenus::help, "Help"),
};

bool isMet(Condition condition) {
  switch (condition) {
    case Condition::TritanEnabled:
      return shellState.tritanEnabled;
    case Condition::SimulationOptionsEnabled:
      return shellState.simulationOptionsEnabled;
    case Condition::Always:
      break;
  }
  return true;
}

void append(Menu* menu, const MenuItem& entry) {
  switch (entry.kind) {
    case ItemKind::Item:
      platform::appendItem(menu, entry.command + (entry.relative ? customCount() : 0), entry.text);
      break;
    case ItemKind::Label:
      platform::appendLabel(menu, entry.command, entry.text);
      break;
    case ItemKind::Separator:
      platform::appendSeparator(menu);
      break;
    case ItemKind::Submenu:
      platform::appendSubmenu(menu, shellState.menus.*entry.submenu, entry.text);
      break;
  }
}

// Appends the items whose condition is met and records the positions of those that the engine
// marks.
void append(Menu* menu, std::span<const MenuItem> entries) {
  int position = 0;
  for (const MenuItem& entry : entries) {
    if (!isMet(entry.condition)) continue;
    append(menu, entry);
    if (entry.position != nullptr) *entry.position = position;
    ++position;
  }
}

// Replaces a menu by a new, empty one.
Menu* renew(MenuSlot slot) {
  Menu*& menu = shellState.menus.*slot;
  platform::destroyMenu(menu);
  menu = platform::createMenu();
  return menu;
}

void build(MenuSlot slot, std::span<const MenuItem> entries) {
  append(renew(slot), entries);
}

void buildColourFilter() {
  Menu* const menu = renew(&ShellMenus::colourFilter);
  for (const ColourFilter& filter : colourFilters) {
    platform::appendItem(menu, filter.command, std::string(filter.name));
  }
}

void buildAlternativeTransforms() {
  build(&ShellMenus::alternativeTransforms, alternativeTransformItems);
  platform::checkMenuItem(shellState.menus.alternativeTransforms, 1, true);
}

void buildHelp() {
  build(&ShellMenus::help, helpItems);
  Menu* const menu = shellState.menus.help;
  platform::appendLabel(menu, command_ids::label, "Tintora Version " + shellState.versionText);
  platform::appendLabel(menu, command_ids::label, "Tintora contributors");
}

void buildMain() {
  Menu* const menu = renew(&ShellMenus::main);
  if (!customTransforms.empty()) {
    platform::appendLabel(menu, command_ids::label, "Custom Colour Transforms:");
    for (int i = 0; i < customCount(); ++i) {
      platform::appendItem(menu, i, customTransforms[static_cast<std::size_t>(i)].name);
    }
    platform::appendSeparator(menu);
  }
  append(menu, mainItems);
  platform::checkMenuItem(menu, 1, true);
}

// In the order in which they are destroyed at shutdown.
constexpr std::array<MenuSlot, 9> slots{
    &ShellMenus::main,
    &ShellMenus::colourFilter,
    &ShellMenus::colourSwap,
    &ShellMenus::alternativeTransforms,
    &ShellMenus::help,
    &ShellMenus::viewOptions,
    &ShellMenus::otherColourEffects,
    &ShellMenus::spare,
    &ShellMenus::colourSpace,
};

}  // namespace

void createEmptyMenus() {
  for (const MenuSlot slot : slots) shellState.menus.*slot = platform::createMenu();
}

void buildMenus() {
  buildColourFilter();
  build(&ShellMenus::colourSwap, colourSwapItems);
  buildAlternativeTransforms();
  build(&ShellMenus::otherColourEffects, otherColourEffectItems);
  renew(&ShellMenus::spare);
  buildHelp();
  build(&ShellMenus::viewOptions, viewOptionItems);
  build(&ShellMenus::colourSpace, colourSpaceItems);
  buildMain();
}

void destroyMenus() {
  for (const MenuSlot slot : slots) {
    platform::destroyMenu(shellState.menus.*slot);
    shellState.menus.*slot = nullptr;
  }
}

}  // namespace tintora
