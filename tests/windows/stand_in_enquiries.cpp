#include "stand_in_enquiries.h"

namespace tintora::windows_test {

namespace {

void appendMenu(MagnifierRecord& record, HMENU menu, int depth) {
  const int count = GetMenuItemCount(menu);
  for (int position = 0; position < count; ++position) {
    if (record.menuItems == recordedMenuItems) return;
    RecordedMenuItem& item = record.menuItem[record.menuItems++];
    item = {.depth = depth};
    MENUITEMINFOA facts{};
    facts.cbSize = sizeof facts;
    facts.fMask = MIIM_FTYPE | MIIM_STATE | MIIM_ID | MIIM_SUBMENU | MIIM_STRING;
    facts.dwTypeData = item.text.data();
    facts.cch = static_cast<UINT>(item.text.size());
    GetMenuItemInfoA(menu, static_cast<UINT>(position), TRUE, &facts);
    item.type = facts.fType;
    item.state = facts.fState;
    item.command = facts.wID;
    item.submenu = facts.hSubMenu != nullptr;
    if (item.submenu) appendMenu(record, facts.hSubMenu, depth + 1);
  }
}

// Where the desktop counts nothing, its handles can still be asked for one by one by their low
// words.
std::uint32_t countGraphicsHandles() {
  std::uint32_t count = 0;
  for (std::uintptr_t handle = 1; handle <= 0xffff; ++handle) {
    if (GetObjectType(reinterpret_cast<HGDIOBJ>(handle)) != 0) ++count;
  }
  return count;
}

BOOL CALLBACK countWindow(HWND window, LPARAM count) {
  ++*reinterpret_cast<std::uint32_t*>(count);
  EnumChildWindows(window, &countWindow, count);
  return TRUE;
}

// Children are counted at every level above them, which is the same at every count.
std::uint32_t countWindows() {
  std::uint32_t count = 0;
  EnumThreadWindows(GetCurrentThreadId(), &countWindow, reinterpret_cast<LPARAM>(&count));
  return count;
}

bool isIcon(HICON icon) {
  ICONINFO facts{};
  if (GetIconInfo(icon, &facts) == 0) return false;
  DeleteObject(facts.hbmMask);
  DeleteObject(facts.hbmColor);
  return true;
}

std::uint32_t countUserHandles() {
  std::uint32_t count = countWindows();
  for (std::uintptr_t handle = 1; handle <= 0xffff; ++handle) {
    if (IsMenu(reinterpret_cast<HMENU>(handle)) || isIcon(reinterpret_cast<HICON>(handle))) {
      ++count;
    }
  }
  return count;
}

}  // namespace

void readMenu(MagnifierRecord& record, HMENU menu) {
  record.menuItems = 0;
  appendMenu(record, menu, 0);
}

void readClass(MagnifierRecord& record, HWND window) {
  const auto icon = LoadIconA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(101));
  const auto arrow = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));
  const auto entry = [&](int index) { return GetClassLongPtrA(window, index); };
  record.windowClass = {
      .style = static_cast<std::uint32_t>(entry(GCL_STYLE)),
      .ownIcon = icon != nullptr && entry(GCLP_HICON) == reinterpret_cast<ULONG_PTR>(icon),
      .arrowCursor = entry(GCLP_HCURSOR) == reinterpret_cast<ULONG_PTR>(arrow),
      .background = entry(GCLP_HBRBACKGROUND) != 0,
      .menu = entry(GCLP_MENUNAME) != 0,
  };
}

void countObjects(MagnifierRecord& record) {
  record.graphicsObjects = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  record.userObjects = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
  if (record.graphicsObjects == 0) record.graphicsObjects = countGraphicsHandles();
  if (record.userObjects == 0) record.userObjects = countUserHandles();
}

void holdKey(BYTE key) {
  constexpr BYTE down = 0x80;
  BYTE keys[256]{};
  if (key != 0) keys[key] = down;
  SetKeyboardState(keys);
}

}  // namespace tintora::windows_test
