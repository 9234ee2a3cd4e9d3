// Another program that reads the clipboard.
#pragma once

#include <string>

#include "picture.h"
#include "x_client.h"

namespace tintora::desktop_test {

class ClipboardReader {
 public:
  explicit ClipboardReader(const std::string& display);

  // Returns the clipboard's contents in one of its formats.
  std::string ask(const std::string& format);
  // Returns the picture on the clipboard, empty if there is none.
  Picture picture();

 private:
  XClient x_;
  xcb_window_t asker_ = XCB_NONE;
};

}  // namespace tintora::desktop_test
