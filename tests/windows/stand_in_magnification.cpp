// A magnification.dll for desktops without one. It has the entry points and the window class of the
// documented API, records every call for the tests and shows what lies beneath.
#include <windows.h>

#include <algorithm>
#include <cwchar>

#include "magnifier_record.h"
#include "stand_in_calls.h"
#include "stand_in_device.h"
#include "stand_in_enquiries.h"
#include "stand_in_picture.h"

using namespace tintora::windows_test;

namespace {

constexpr const char* className = "Magnifier";

MagnifierRecord* record = nullptr;
RECT source{};
ColourEffect effect = identityEffect;

void write(RecordedCall call) {
  const auto place = static_cast<std::size_t>(record->calls % recordedCalls);
  record->call[place] = call;
  ++record->calls;
}

RecordedCall callOn(MagnifierCall call, HWND window) {
  RecordedCall recorded{.call = call, .window = reinterpret_cast<std::uintptr_t>(window)};
  GetWindowTextA(GetAncestor(window, GA_ROOT), recorded.title.data(),
                 static_cast<int>(recorded.title.size()));
  return recorded;
}

// Waits for the screen's next picture, as a control limited by the refresh rate does.
void awaitNextPicture() {
  constexpr ULONGLONG millisecondsPerPicture = 16;
  static ULONGLONG last = 0;
  const ULONGLONG due = last + millisecondsPerPicture;
  const ULONGLONG now = GetTickCount64();
  if (now < due) Sleep(static_cast<DWORD>(due - now));
  last = GetTickCount64();
}

bool isModal() {
  GUITHREADINFO facts{};
  facts.cbSize = sizeof facts;
  GetGUIThreadInfo(GetCurrentThreadId(), &facts);
  return (facts.flags &
          (GUI_INMENUMODE | GUI_INMOVESIZE | GUI_POPUPMENUMODE | GUI_SYSTEMMENUMODE)) != 0;
}

void writePaint(HWND window, bool modal) {
  RecordedPaint paint{.source = source, .modal = modal};
  ClientToScreen(window, &paint.corner);
  record->paint[static_cast<std::size_t>(record->paints % recordedPaints)] = paint;
  ++record->paints;
}

void paint(HWND window) {
  const MagnifierHabits& habits = record->habits;
  const bool modal = isModal();
  if (habits.throttled) awaitNextPicture();
  PAINTSTRUCT painting{};
  BeginPaint(window, &painting);
  if (!modal || !habits.restsWhenModal) {
    writePaint(window, modal);
    if (!habits.drawsNothing) {
      showBeneath(window, painting.hdc, source, effect, habits.showsLastPicture);
    }
  }
  EndPaint(window, &painting);
}

void writeTitle(HWND window, const wchar_t* title) {
  ++record->titleSets;
  if (std::wcscmp(title, copyConfirmation) == 0) {
    record->copiedAt = GetTickCount64();
    ++record->copies;
  } else if (FindWindowExA(window, nullptr, className, nullptr) != nullptr) {
    record->renamedAt = GetTickCount64();
  }
}

// Records the messages that the program's thread sends to its own windows.
LRESULT CALLBACK watchMessages(int code, WPARAM first, LPARAM second) {
  const auto* const sent = reinterpret_cast<const CWPSTRUCT*>(second);
  if (code == HC_ACTION && sent->message == WM_SETTEXT) {
    writeTitle(sent->hwnd, reinterpret_cast<const wchar_t*>(sent->lParam));
  }
  if (code == HC_ACTION && sent->message == WM_EXITMENULOOP) {
    record->menuLeftAt = GetTickCount64();
    ++record->menusLeft;
  }
  return CallNextHookEx(nullptr, code, first, second);
}

LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  switch (message) {
    case WM_NCCREATE:
      if (record->refusal == Refusal::MagnifierWindow) return FALSE;
      return DefWindowProcA(window, message, first, second);
    case WM_PAINT:
      paint(window);
      return 0;
    case WM_ERASEBKGND:
      return 1;
    case WM_NCHITTEST:
      return record->habits.keepsMouse ? HTCLIENT : HTTRANSPARENT;
    case ReachMarker:
      record->marker = static_cast<std::uint32_t>(first);
      return 0;
    case ReadMenu:
      readMenu(*record, reinterpret_cast<HMENU>(first));
      return 1;
    case ReadClass:
      readClass(*record, reinterpret_cast<HWND>(first));
      return 1;
    case CountObjects:
      countObjects(*record);
      return 1;
    case HoldKey:
      holdKey(static_cast<BYTE>(first));
      return 1;
    case ChangeResolution:
      changeResolution(*record, reinterpret_cast<HWND>(first), static_cast<WORD>(second));
      return 1;
    case DropFile:
      return keepsDroppedFile(reinterpret_cast<HWND>(first)) ? 1 : 0;
    case ReadProcessorTime:
      readProcessorTime(*record);
      return 1;
    case QueueKeys:
      record->paintsAtKeys = record->paints.load();
      queueKeys(GetAncestor(window, GA_ROOT), first, second);
      PostMessageW(window, EndKeys, 0, 0);
      return 1;
    case EndKeys:
      record->paintsOverKeys = record->paints - record->paintsAtKeys;
      return 0;
    case TellMoves:
      tellMoves(GetAncestor(window, GA_ROOT), first);
      return 1;
    case FinishDrawing:
      finishDrawing();
      return 1;
    case LoseDevices:
      loseDevices();
      return 1;
    case KeepDevices:
      keepDevices();
      return 1;
    default:
      return DefWindowProcA(window, message, first, second);
  }
}

// Opens the shared record, which exists while tests run.
void openRecord() {
  const HANDLE section = OpenFileMappingA(FILE_MAP_WRITE, FALSE, magnifierRecordName);
  if (section == nullptr) return;
  record = static_cast<MagnifierRecord*>(MapViewOfFile(section, FILE_MAP_WRITE, 0, 0, 0));
  CloseHandle(section);
}

}  // namespace

extern "C" {

__declspec(dllexport) BOOL WINAPI MagInitialize() {
  openRecord();
  if (record == nullptr) return FALSE;
  write({.call = MagnifierCall::Initialize});
  watchCalls(*record);
  SetWindowsHookExW(WH_CALLWNDPROC, &watchMessages, nullptr, GetCurrentThreadId());
  WNDCLASSA facts{};
  facts.style = CS_GLOBALCLASS;
  facts.lpfnWndProc = &procedure;
  facts.hInstance = GetModuleHandleA("magnification.dll");
  facts.lpszClassName = className;
  // Register the class even if refused. A program that ignores the refusal then goes on, and the
  // test sees it.
  return RegisterClassA(&facts) != 0 && record->refusal != Refusal::Initialize ? TRUE : FALSE;
}

__declspec(dllexport) BOOL WINAPI MagUninitialize() {
  write({.call = MagnifierCall::Uninitialize});
  return UnregisterClassA(className, GetModuleHandleA("magnification.dll"));
}

__declspec(dllexport) BOOL WINAPI MagSetWindowTransform(HWND window, float (*transform)[3][3]) {
  RecordedCall call = callOn(MagnifierCall::SetWindowTransform, window);
  std::copy_n(&(*transform)[0][0], 9, call.values.begin());
  write(call);
  if (record->refusal == Refusal::SetWindowTransform) return FALSE;
  return TRUE;
}

__declspec(dllexport) BOOL WINAPI MagSetWindowSource(HWND window, RECT rectangle) {
  RecordedCall call = callOn(MagnifierCall::SetWindowSource, window);
  call.source = rectangle;
  write(call);
  if (record->refusal == Refusal::SetWindowSource) return FALSE;
  source = rectangle;
  return TRUE;
}

__declspec(dllexport) BOOL WINAPI MagSetColorEffect(HWND window, float (*matrix)[5][5]) {
  RecordedCall call = callOn(MagnifierCall::SetColorEffect, window);
  std::copy_n(&(*matrix)[0][0], effect.size(), call.values.begin());
  write(call);
  if (record->refusal == Refusal::SetColorEffect) return FALSE;
  effect = call.values;
  return TRUE;
}

// Called by the stand-in for composition: brings the latest drawing to the screen.
__declspec(dllexport) void composePicture() {
  if (record == nullptr) return;
  ++record->composed;
  showDrawn();
}

__declspec(dllexport) void recordCorners(std::uint32_t preference) {
  if (record != nullptr) record->corners = preference;
}

}  // extern "C"
