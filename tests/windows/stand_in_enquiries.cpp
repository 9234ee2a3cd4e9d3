#include "stand_in_enquiries.h"

#include <shellapi.h>
#include <shlobj.h>

#include <cstring>

namespace tintora::windows_test {

namespace {

void appendMenu(MagnifierRecord& record, HMENU menu, int depth) {
  const int count = GetMenuItemCount(menu);
  for (int position = 0; position < count; ++position) {
    if (record.menuItems == recordedMenuItems) return;
    RecordedMenuItem& item = record.menuItem[record.menuItems++];
    item = {.depth = depth};
    MENUITEMINFOW facts{};
    facts.cbSize = sizeof facts;
    facts.fMask = MIIM_FTYPE | MIIM_STATE | MIIM_ID | MIIM_SUBMENU | MIIM_STRING;
    facts.dwTypeData = item.text.data();
    facts.cch = static_cast<UINT>(item.text.size());
    GetMenuItemInfoW(menu, static_cast<UINT>(position), TRUE, &facts);
    item.type = facts.fType;
    item.state = facts.fState;
    item.command = facts.wID;
    item.submenu = facts.hSubMenu != nullptr;
    if (item.submenu) appendMenu(record, facts.hSubMenu, depth + 1);
  }
}

// Counts graphics objects by trying every handle, for desktops that do not count them.
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

// Counts a child once for each level above it. This is the same every time, so counts can be
// compared.
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
    if (IsMenu(reinterpret_cast<HMENU>(handle)) != 0 || isIcon(reinterpret_cast<HICON>(handle))) {
      ++count;
    }
  }
  return count;
}

// Counts handles by trying every one, for desktops that do not count them.
std::uint32_t countHandles() {
  std::uint32_t count = 0;
  for (std::uintptr_t handle = 4; handle <= 0xffff; handle += 4) {
    DWORD flags = 0;
    if (GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != 0) ++count;
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
  DWORD handles = 0;
  GetProcessHandleCount(GetCurrentProcess(), &handles);
  record.handles = handles == 0 ? countHandles() : handles;
  if (record.graphicsObjects == 0) record.graphicsObjects = countGraphicsHandles();
  if (record.userObjects == 0) record.userObjects = countUserHandles();
}

void holdKey(BYTE key) {
  constexpr BYTE down = 0x80;
  BYTE keys[256]{};
  if (key != 0) keys[key] = down;
  SetKeyboardState(keys);
}

void changeResolution(MagnifierRecord& record, HWND window, WORD dpi) {
  record.dpi = dpi;
  RECT suggested = record.suggested;
  SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
}

bool keepsDroppedFile(HWND window) {
  constexpr char name[] = "C:\\dropped.txt\0";
  const HGLOBAL drop = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, sizeof(DROPFILES) + sizeof name);
  auto* const files = static_cast<DROPFILES*>(GlobalLock(drop));
  files->pFiles = sizeof(DROPFILES);
  std::memcpy(files + 1, name, sizeof name);
  GlobalUnlock(drop);
  SendMessageW(window, WM_DROPFILES, reinterpret_cast<WPARAM>(drop), 0);
  const bool kept = GlobalSize(drop) != 0;
  GlobalFree(drop);
  return kept;
}

void readProcessorTime(MagnifierRecord& record) {
  FILETIME created{};
  FILETIME ended{};
  FILETIME kernel{};
  FILETIME user{};
  GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user);
  const auto units = [](const FILETIME& time) {
    return ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart;
  };
  record.processorTime = units(kernel) + units(user);
}

void queueKeys(HWND window, WPARAM key, LPARAM count) {
  for (LPARAM i = 0; i < count; ++i) PostMessageW(window, WM_KEYDOWN, key, 0);
}

void tellMoves(HWND window, WPARAM count) {
  for (WPARAM i = 0; i < count; ++i) SendMessageW(window, WM_MOVE, 0, 0);
}

void finishDrawing() {
  GdiFlush();
  // Wine sends both requests to the display: one on the connection for pictures, one on the
  // thread's connection for windows. The display answers in order, so all earlier requests are
  // done.
  const HDC screen = GetDC(nullptr);
  GetPixel(screen, 0, 0);
  ReleaseDC(nullptr, screen);
  POINT cursor{};
  GetCursorPos(&cursor);
}

}  // namespace tintora::windows_test
