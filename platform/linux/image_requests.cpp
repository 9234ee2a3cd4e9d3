#include "platform/linux/image_requests.h"

#include <cstdint>

namespace tintora::platform {

xcb_get_image_cookie_t requestImage(xcb_pixmap_t pixmap, const QRect& part) {
  return xcb_get_image(x(), XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, i16(part.x()), i16(part.y()),
                       u16(part.width()), u16(part.height()), ~0U);
}

Received<xcb_get_image_reply_t> receiveImage(xcb_get_image_cookie_t request, const QSize& size) {
  Received<xcb_get_image_reply_t> image(xcb_get_image_reply(x(), request, nullptr));
  const std::int64_t wanted = std::int64_t{4} * size.width() * size.height();
  if (image && xcb_get_image_data_length(image.get()) < wanted) image.reset();
  return image;
}

}  // namespace tintora::platform
