// What the server knows about a top-level window, requested all at once.
#pragma once

#include <xcb/shape.h>
#include <xcb/xcb.h>

#include "platform/linux/top_level.h"

namespace tintora::platform {

// The questions about a window. All are sent before any answer is awaited.
struct Enquiry {
  xcb_window_t window;
  xcb_get_window_attributes_cookie_t attributes;
  xcb_get_geometry_cookie_t geometry;
  xcb_shape_query_extents_cookie_t extents;
  xcb_shape_get_rectangles_cookie_t rectangles;
  xcb_get_property_cookie_t opacity;
  xcb_get_property_cookie_t name;
};

// Sends the questions.
Enquiry enquire(xcb_window_t window);

// Waits for the answers and stores them. A window that is gone gets no pixels.
void readAnswers(TopLevel& topLevel, const Enquiry& enquiry);

// Returns the value of a property that is one 32-bit number, or a default.
std::uint32_t numberIn(const xcb_get_property_reply_t* reply, std::uint32_t otherwise);

}  // namespace tintora::platform
