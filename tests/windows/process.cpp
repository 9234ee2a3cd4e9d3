#include "process.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>

namespace tintora::windows_test {

namespace {

constexpr const char* magnificationPath = "C:\\windows\\system32\\magnification.dll";
constexpr const char* pathAway = "C:\\windows\\system32\\magnification.away";

std::wstring wide(const std::string& text) {
  std::wstring result(text.size(), L'\0');
  const auto size = static_cast<int>(text.size());
  result.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_ACP, 0, text.data(), size, result.data(), size)));
  return result;
}

}  // namespace

bool eventually(const std::function<bool()>& isTrue, ULONGLONG atMost) {
  const ULONGLONG end = GetTickCount64() + atMost;
  while (!isTrue()) {
    if (GetTickCount64() > end) return false;
    Sleep(5);
  }
  return true;
}

std::string programPath() {
  const char* const path = std::getenv("TINTORA_PROGRAM");
  return path == nullptr ? "Tintora.exe" : path;
}

std::string programFolder() {
  return programPath().substr(0, programPath().find_last_of('\\') + 1);
}

std::string customFile() {
  return programFolder() + "Tintora_custom.txt";
}

Process::Process(const Launch& launch) {
  const std::wstring program = launch.program.empty() ? wide(programPath()) : launch.program;
  const std::wstring& named = launch.named.empty() ? program : launch.named;
  std::wstring line = launch.pathGiven ? L'"' + named + L"\" " : L"Tintora.exe ";
  line += wide(launch.arguments);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESHOWWINDOW;
  startup.wShowWindow = launch.show;
  PROCESS_INFORMATION started{};
  const BOOL succeeded = CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0,
                                        nullptr, wide(launch.folder).c_str(), &startup, &started);
  if (succeeded == 0) return;
  CloseHandle(started.hThread);
  handle_ = started.hProcess;
  id_ = started.dwProcessId;
}

Process::~Process() {
  if (handle_ == nullptr) return;
  if (isRunning()) {
    TerminateProcess(handle_, 1);
    WaitForSingleObject(handle_, longestWait);
  }
  CloseHandle(handle_);
}

bool Process::hasEnded() const {
  return handle_ != nullptr && WaitForSingleObject(handle_, longestWait) == WAIT_OBJECT_0;
}

bool Process::isRunning() const {
  return handle_ != nullptr && WaitForSingleObject(handle_, 0) == WAIT_TIMEOUT;
}

DWORD Process::result() const {
  DWORD result = STILL_ACTIVE;
  GetExitCodeProcess(handle_, &result);
  return result;
}

MissingMagnification::MissingMagnification() {
  EXPECT_TRUE(MoveFileA(magnificationPath, pathAway));
}

MissingMagnification::~MissingMagnification() {
  EXPECT_TRUE(MoveFileA(pathAway, magnificationPath));
}

}  // namespace tintora::windows_test
