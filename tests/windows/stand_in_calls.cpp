#include "stand_in_calls.h"

#include <objbase.h>
#include <shellapi.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "replaced_pointer.h"

namespace tintora::windows_test {

namespace {

MagnifierRecord* record = nullptr;

// Returns the place where a module keeps the address of an imported function, or null if it does
// not import one of that name.
void** importOf(HMODULE module, const char* function) {
  auto* const base = reinterpret_cast<std::byte*>(module);
  const auto at = [base](auto* kind, auto offset) {
    return reinterpret_cast<decltype(kind)>(base + offset);
  };
  const auto* const start = at(static_cast<IMAGE_DOS_HEADER*>(nullptr), 0);
  const auto* const headers = at(static_cast<IMAGE_NT_HEADERS*>(nullptr), start->e_lfanew);
  const IMAGE_DATA_DIRECTORY& imports =
      headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  const auto* library = at(static_cast<IMAGE_IMPORT_DESCRIPTOR*>(nullptr), imports.VirtualAddress);
  for (; library->Name != 0; ++library) {
    const auto* name = at(static_cast<IMAGE_THUNK_DATA*>(nullptr), library->OriginalFirstThunk);
    auto* place = at(static_cast<IMAGE_THUNK_DATA*>(nullptr), library->FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++place) {
      if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
      const auto* const entry =
          at(static_cast<IMAGE_IMPORT_BY_NAME*>(nullptr), name->u1.AddressOfData);
      if (std::strcmp(reinterpret_cast<const char*>(entry->Name), function) == 0) {
        return reinterpret_cast<void**>(&place->u1.Function);
      }
    }
  }
  return nullptr;
}

// Redirects the program's calls of a function to another one. Returns the original function.
template <typename Function>
Function* replace(const char* name, Function* replacement) {
  void** const place = importOf(GetModuleHandleA(nullptr), name);
  if (place == nullptr) return nullptr;
  return reinterpret_cast<Function*>(replacePointer(place, reinterpret_cast<void*>(replacement)));
}

struct Originals {
  decltype(CoInitializeEx)* initialiseCom = nullptr;
  decltype(CoUninitialize)* uninitialiseCom = nullptr;
  decltype(ShellExecuteW)* open = nullptr;
  decltype(ShowWindow)* show = nullptr;
  decltype(SetTimer)* setTimer = nullptr;
  decltype(DefWindowProcW)* handleByDefault = nullptr;
  decltype(PeekMessageW)* look = nullptr;
  decltype(EnumDisplaySettingsW)* readMode = nullptr;
  decltype(SystemParametersInfoW)* readSetting = nullptr;
  decltype(GetModuleFileNameW)* nameModule = nullptr;
  decltype(GetCapture)* capture = nullptr;
  decltype(GetProcAddress)* find = nullptr;
  decltype(GetDpiForWindow)* dpiForWindow = nullptr;
  decltype(SetWindowPos)* place = nullptr;
  decltype(MonitorFromWindow)* monitorOfWindow = nullptr;
  decltype(MonitorFromRect)* monitorOfBounds = nullptr;
  decltype(_wfopen)* openFile = nullptr;
  decltype(RegOpenKeyExA)* openKey = nullptr;
  decltype(RegCreateKeyExA)* createKey = nullptr;
};
Originals originals;

constexpr std::wstring_view literally = L"\\\\?\\";

DWORD comFlags = 0;  // the flags that COM was initialised with; 0 if it is not

bool isMainWindow(HWND window) {
  return FindWindowExA(window, nullptr, "Magnifier", nullptr) != nullptr;
}

HRESULT WINAPI initialiseCom(LPVOID reserved, DWORD flags) {
  const HRESULT result = originals.initialiseCom(reserved, flags);
  if (SUCCEEDED(result)) comFlags = flags;
  return result;
}

void WINAPI uninitialiseCom() {
  comFlags = 0;
  originals.uninitialiseCom();
}

HINSTANCE WINAPI open(HWND window, LPCWSTR verb, LPCWSTR path, LPCWSTR arguments, LPCWSTR folder,
                      INT show) {
  RecordedPage& page = record->page;
  page = {.com = comFlags, .show = show};
  const std::wstring_view text(path);
  std::copy_n(text.begin(), std::min(text.size(), page.path.size() - 1), page.path.begin());
  // Unlike Wine's shell, that of Windows opens neither long paths nor those with the prefix.
  if (text.size() < MAX_PATH && !text.starts_with(literally)) {
    const HINSTANCE answer = originals.open(window, verb, path, arguments, folder, show);
    page.answer = reinterpret_cast<std::uintptr_t>(answer);
  }
  ++record->pagesOpened;
  return reinterpret_cast<HINSTANCE>(page.answer);
}

BOOL WINAPI show(HWND window, int command) {
  if (isMainWindow(window)) record->mainShown = command;
  return originals.show(window, command);
}

UINT_PTR WINAPI setTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure) {
  if (isMainWindow(window)) {
    record->titleTimer = milliseconds;
    record->timedAt = GetTickCount64();
    ++record->titleTimers;
  }
  return originals.setTimer(window, id, milliseconds, procedure);
}

LRESULT WINAPI handleByDefault(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_KEYDOWN) record->unhandledKey = static_cast<std::uint32_t>(first);
  return originals.handleByDefault(window, message, first, second);
}

BOOL WINAPI look(LPMSG message, HWND window, UINT first, UINT last, UINT remove) {
  ++record->looks;
  return originals.look(message, window, first, last, remove);
}

bool isPrimary(LPCWSTR device) {
  MONITORINFOEXW facts{};
  facts.cbSize = sizeof facts;
  GetMonitorInfoW(MonitorFromPoint({}, MONITOR_DEFAULTTOPRIMARY), &facts);
  return std::wstring_view(device) == facts.szDevice;
}

BOOL WINAPI readMode(LPCWSTR device, DWORD which, LPDEVMODEW mode) {
  const BOOL result = originals.readMode(device, which, mode);
  const std::int32_t rate = isPrimary(device) ? record->refreshRate : record->otherRefreshRate;
  if (rate != 0) mode->dmDisplayFrequency = static_cast<DWORD>(rate);
  return result;
}

BOOL WINAPI readSetting(UINT setting, UINT number, PVOID value, UINT change) {
  if (setting != SPI_GETUIEFFECTS && setting != SPI_GETSELECTIONFADE) {
    return originals.readSetting(setting, number, value, change);
  }
  *static_cast<BOOL*>(value) = record->menusFade ? TRUE : FALSE;
  return TRUE;
}

DWORD WINAPI nameModule(HMODULE module, LPWSTR name, DWORD size) {
  const std::wstring_view path(record->programPath.data());
  if (path.empty()) return originals.nameModule(module, name, size);
  std::copy_n(path.begin(), path.size() + 1, name);
  return static_cast<DWORD>(path.size());
}

// Nobody documents that the desktop captures the mouse for the program when it moves a window.
HWND WINAPI capture() {
  GUITHREADINFO facts{};
  facts.cbSize = sizeof facts;
  GetGUIThreadInfo(GetCurrentThreadId(), &facts);
  return (facts.flags & GUI_INMOVESIZE) != 0 ? nullptr : originals.capture();
}

bool isOnTheRight(const RECT& bounds) {
  return record->border != 0 && (bounds.left + bounds.right) / 2 >= record->border;
}

UINT WINAPI dpiForWindow(HWND window) {
  RECT bounds{};
  GetWindowRect(window, &bounds);
  const std::int32_t dpi = isOnTheRight(bounds) ? record->rightDpi : record->dpi;
  return dpi != 0 ? static_cast<UINT>(dpi) : originals.dpiForWindow(window);
}

FARPROC WINAPI find(HMODULE library, LPCSTR name) {
  const FARPROC found = originals.find(library, name);
  if (found == nullptr || IS_INTRESOURCE(name) || std::strcmp(name, "GetDpiForWindow") != 0) {
    return found;
  }
  originals.dpiForWindow =
      reinterpret_cast<decltype(GetDpiForWindow)*>(reinterpret_cast<void*>(found));
  return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&dpiForWindow));
}

// Two monitors of different resolutions. When a window comes to the other one, it is told before
// the call that moved it returns.
BOOL WINAPI place(HWND window, HWND after, int x, int y, int width, int height, UINT flags) {
  constexpr std::uint32_t most = 40;  // a program that goes back and forth would never end
  const UINT before = dpiForWindow(window);
  const BOOL result = originals.place(window, after, x, y, width, height, flags);
  const UINT now = dpiForWindow(window);
  if (now == before || GetAncestor(window, GA_ROOT) != window ||
      record->resolutionChanges == most) {
    return result;
  }
  ++record->resolutionChanges;
  const auto scaled = [&](LONG length) {
    return MulDiv(length, static_cast<int>(now), static_cast<int>(before));
  };
  RECT bounds{};
  GetWindowRect(window, &bounds);
  bounds.right = bounds.left + scaled(bounds.right - bounds.left);
  bounds.bottom = bounds.top + scaled(bounds.bottom - bounds.top);
  SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(now, now), reinterpret_cast<LPARAM>(&bounds));
  return result;
}

HMONITOR monitorAt(const RECT& bounds) {
  return reinterpret_cast<HMONITOR>(isOnTheRight(bounds) ? std::uintptr_t{2} : std::uintptr_t{1});
}

HMONITOR WINAPI monitorOfWindow(HWND window, DWORD otherwise) {
  RECT bounds{};
  if (record->border == 0) return originals.monitorOfWindow(window, otherwise);
  GetWindowRect(GetAncestor(window, GA_ROOT), &bounds);
  return monitorAt(bounds);
}

HMONITOR WINAPI monitorOfBounds(LPCRECT bounds, DWORD otherwise) {
  return record->border == 0 ? originals.monitorOfBounds(bounds, otherwise) : monitorAt(*bounds);
}

// Wine opens paths of any length. Windows opens those of 260 characters or more only with the
// prefix.
FILE* openFile(const wchar_t* path, const wchar_t* mode) {
  const std::wstring_view text(path);
  if (text.size() >= MAX_PATH && !text.starts_with(literally)) return nullptr;
  return originals.openFile(path, mode);
}

LSTATUS WINAPI openKey(HKEY root, LPCSTR path, DWORD options, REGSAM access, PHKEY key) {
  if (record->refusal == Refusal::SettingsKey) return ERROR_ACCESS_DENIED;
  return originals.openKey(root, path, options, access, key);
}

LSTATUS WINAPI createKey(HKEY root, LPCSTR path, DWORD reserved, LPSTR kind, DWORD options,
                         REGSAM access, LPSECURITY_ATTRIBUTES security, PHKEY key, LPDWORD made) {
  if (record->refusal == Refusal::SettingsKey) return ERROR_ACCESS_DENIED;
  return originals.createKey(root, path, reserved, kind, options, access, security, key, made);
}

}  // namespace

void watchCalls(MagnifierRecord& written) {
  record = &written;
  originals = {
      .initialiseCom = replace("CoInitializeEx", &initialiseCom),
      .uninitialiseCom = replace("CoUninitialize", &uninitialiseCom),
      .open = replace("ShellExecuteW", &open),
      .show = replace("ShowWindow", &show),
      .setTimer = replace("SetTimer", &setTimer),
      .handleByDefault = replace("DefWindowProcW", &handleByDefault),
      .look = replace("PeekMessageW", &look),
      .readMode = replace("EnumDisplaySettingsW", &readMode),
      .readSetting = replace("SystemParametersInfoW", &readSetting),
      .nameModule = replace("GetModuleFileNameW", &nameModule),
      .capture = replace("GetCapture", &capture),
      .find = replace("GetProcAddress", &find),
      .place = replace("SetWindowPos", &place),
      .monitorOfWindow = replace("MonitorFromWindow", &monitorOfWindow),
      .monitorOfBounds = replace("MonitorFromRect", &monitorOfBounds),
      .openFile = replace("_wfopen", &openFile),
      .openKey = replace("RegOpenKeyExA", &openKey),
      .createKey = replace("RegCreateKeyExA", &createKey),
  };
}

}  // namespace tintora::windows_test
