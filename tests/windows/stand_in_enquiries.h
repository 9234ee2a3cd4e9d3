// Reads facts that only the program's own process can tell.
#pragma once

#include <windows.h>

#include "magnifier_record.h"

namespace tintora::windows_test {

void readMenu(MagnifierRecord& record, HMENU menu);
void readClass(MagnifierRecord& record, HWND window);
void countObjects(MagnifierRecord& record);
void holdKey(BYTE key);
void changeResolution(MagnifierRecord& record, HWND window, WORD dpi);
bool keepsDroppedFile(HWND window);
void readProcessorTime(MagnifierRecord& record);
void queueKeys(HWND window, WPARAM key, LPARAM count);
void tellMoves(HWND window, WPARAM count);
void finishDrawing();

}  // namespace tintora::windows_test
