#include "platform/menu.h"

#include <windows.h>

#include "platform/windows/handles.h"
#include "platform/windows/magnifier.h"
#include "platform/windows/menu_fade.h"
#include "platform/windows/text.h"

namespace tintora::platform {

namespace {

ULONGLONG closed = 0;  // when the latest menu was closed, by GetTickCount64

bool isOn(UINT setting) {
  BOOL on = FALSE;
  return SystemParametersInfoW(setting, 0, &on, 0) != 0 && on != FALSE;
}

// Appends an item. Labels use MF_DISABLED, which does not grey them.
void append(Menu* menu, UINT flags, UINT_PTR id, const std::string& text) {
  AppendMenuW(native(menu), flags, id, wide(text).c_str());
}

}  // namespace

Menu* createMenu() {
  return fromNative(CreatePopupMenu());
}

void destroyMenu(Menu* menu) {
  DestroyMenu(native(menu));
}

void appendItem(Menu* menu, int command, const std::string& text) {
  append(menu, MF_STRING, static_cast<UINT_PTR>(command), text);
}

void appendLabel(Menu* menu, int command, const std::string& text) {
  append(menu, MF_DISABLED, static_cast<UINT_PTR>(command), text);
}

void appendSeparator(Menu* menu) {
  append(menu, MF_SEPARATOR, 0, {});
}

void appendSubmenu(Menu* menu, Menu* submenu, const std::string& text) {
  append(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(native(submenu)), text);
}

void checkMenuItem(Menu* menu, int position, bool checked) {
  const UINT mark = checked ? MF_CHECKED : MF_UNCHECKED;
  CheckMenuItem(native(menu), static_cast<UINT>(position), MF_BYPOSITION | mark);
}

void trackMenu(Menu* menu, const Point& place, Window* window) {
  TrackPopupMenu(native(menu), 0, place.x, place.y, 0, native(window), nullptr);
  closed = GetTickCount64();
}

void awaitMenuFade() {
  // Windows documents no duration; it is about a third of a second.
  constexpr ULONGLONG longestFade = 400;
  constexpr DWORD pictureTime = 15;
  if (!isOn(SPI_GETUIEFFECTS) || !isOn(SPI_GETSELECTIONFADE)) return;
  while (GetTickCount64() < closed + longestFade) {
    refreshView();
    UpdateWindow(viewWindow());
    Sleep(pictureTime);
  }
}

}  // namespace tintora::platform
