#include "clipboard_reader.h"

#include <gtest/gtest.h>
#include <png.h>

#include "process.h"

namespace tintora::desktop_test {

namespace {

Picture decode(const std::string& file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&image, file.data(), file.size()) == 0) return {};
  image.format = PNG_FORMAT_BGRA;
  Picture picture = solid(static_cast<int>(image.width), static_cast<int>(image.height), 0);
  png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr);
  return picture;
}

}  // namespace

ClipboardReader::ClipboardReader(const std::string& display) : x_(display) {
  asker_ = xcb_generate_id(x_.connection());
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_create_window(x_.connection(), XCB_COPY_FROM_PARENT, asker_, x_.root(), 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
}

std::string ClipboardReader::ask(const std::string& format) {
  const xcb_atom_t place = x_.atom("TINTORA_TEST");
  xcb_delete_property(x_.connection(), asker_, place);
  xcb_convert_selection(x_.connection(), asker_, x_.atom("CLIPBOARD"), x_.atom(format), place,
                        XCB_CURRENT_TIME);
  bool answered = false;
  EXPECT_TRUE(eventually([&] {
    x_.sync();
    x_.takeEvents([&](const xcb_generic_event_t& event) {
      answered |= (event.response_type & 0x7F) == XCB_SELECTION_NOTIFY;
    });
    return answered;
  }));
  return x_.property(asker_, place);
}

Picture ClipboardReader::picture() {
  return decode(ask("image/png"));
}

}  // namespace tintora::desktop_test
