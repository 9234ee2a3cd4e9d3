// The PipeWire stream of the tests' source: what it offers, its buffers, and frames in them.
#pragma once

#include <pipewire/pipewire.h>
#include <spa/pod/builder.h>

#include <cstdint>
#include <set>
#include <string>

#include "../desktop/picture.h"

namespace tintora::mirror_test {

// How frames lie in their buffers. Lengths are pixels; offset and padding are bytes.
struct FrameLayout {
  std::string format = "BGRx";  // or BGRA, RGBx, RGBA
  int width = 64;
  int height = 48;
  int offset = 0;   // before the first row
  int padding = 0;  // at the end of each row
  desktop_test::Area crop;

  int stride() const { return 4 * width + padding; }
  int size() const { return offset + stride() * height; }
};

class SourceStream {
 public:
  enum class Kind { Whole, Written, Empty, Broken };

  // Connects to PipeWire. Prints the number of the stream's node once it has one.
  explicit SourceStream(pw_main_loop* loop);

  int buffers = 4;              // in the next format
  std::uint32_t transform = 0;  // PipeWire's number for pictures that are turned or flipped

  const FrameLayout& layout() const { return layout_; }
  // A layout with longer rows or another offset needs another format or size too.
  void setLayout(const FrameLayout& layout);
  // Returns true if frames can be sent: there is a reader, and both sides agree on the format.
  bool flows() const;
  // Returns how often the stream began to flow.
  int beginnings() const { return beginnings_; }
  // Returns a buffer for a picture, or null. While both sides agree on a new format, buffers of the
  // old one may still come: those go back without pixels.
  pw_buffer* suitableBuffer();
  // Returns the buffer's first pixel.
  std::uint8_t* pixelsOf(const pw_buffer* buffer) const;
  // Sends the buffer with a picture, or with the pixels that were written to it. Reports this part
  // as changed.
  void send(pw_buffer* buffer, const desktop_test::Picture& picture,
            const desktop_test::Area& changed, Kind kind);

 private:
  const spa_pod* offeredFormat(spa_pod_builder& builder) const;
  const spa_pod* offeredBuffers(spa_pod_builder& builder) const;
  bool isWanted(const spa_pod& parameter) const;
  void write(std::uint8_t* bytes, const desktop_test::Picture& picture) const;
  void onParameterChanged(std::uint32_t id, const spa_pod* parameter);
  void onBufferAdded(pw_buffer* buffer);
  void onBufferRemoved(pw_buffer* buffer);
  void onStateChanged(pw_stream_state now, const char* error);

  FrameLayout layout_;
  pw_stream* stream_ = nullptr;
  pw_stream_events events_{};
  bool agreed_ = false;            // both sides agree on the format of the layout
  std::set<pw_buffer*> suitable_;  // the buffers that were made since then
  int beginnings_ = 0;
};

}  // namespace tintora::mirror_test
