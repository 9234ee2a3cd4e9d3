// A folder whose path has more than 260 characters.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tintora::windows_test {

// This prefix gives access to paths of any length.
inline constexpr const wchar_t* literally = L"\\\\?\\";

// Creates the folder and removes it when it goes out of scope. It must be empty then.
class DeepFolder {
 public:
  DeepFolder() {
    constexpr std::size_t length = 300;
    while (path_.size() < length) {
      path_ += L"\\Gr\u00f6\u00dfe und \u041f\u0440\u043e\u0432\u0430";
      folders_.push_back(literally + path_);
      CreateDirectoryW(folders_.back().c_str(), nullptr);
    }
  }
  ~DeepFolder() {
    while (!folders_.empty()) {
      RemoveDirectoryW(folders_.back().c_str());
      folders_.pop_back();
    }
  }
  DeepFolder(const DeepFolder&) = delete;
  DeepFolder& operator=(const DeepFolder&) = delete;

  // Returns the path of a file in the folder, without the prefix.
  std::wstring file(const std::wstring& name) const { return path_ + L'\\' + name; }

 private:
  std::wstring path_ = L"C:";
  std::vector<std::wstring> folders_;  // each inside the previous one
};

}  // namespace tintora::windows_test
