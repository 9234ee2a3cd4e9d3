// The frames of a PipeWire stream, received on the event loop's thread. There is only one stream at
// a time.
#pragma once

#include <QRegion>
#include <QSize>
#include <cstddef>
#include <cstdint>

namespace tintora::platform {

// A frame in memory that belongs to PipeWire. Pixels have four bytes.
struct StreamFrame {
  const std::uint8_t* pixels;  // from the picture's top left corner
  std::ptrdiff_t stride;       // bytes from one row to the next, may be negative
  QSize size;
  bool redFirst;    // red, green, blue in memory; else blue, green, red
  QRegion changed;  // since the frame before; all of the first one
};

enum class StreamEnd {
  Source,    // it sends no more frames
  PipeWire,  // the connection is lost
};

struct StreamEvents {
  void (*frame)(const StreamFrame& frame);  // valid until the function returns
  void (*ended)(StreamEnd end);             // after the stream was stopped
};

// Starts receiving a node's frames over a connection to PipeWire. The stream owns the connection's
// descriptor from now on. Returns false if PipeWire cannot be used.
bool startStream(int connection, std::uint32_t node, const StreamEvents& events);

// Stops the stream and releases everything. Does nothing if there is no stream.
void stopStream();

}  // namespace tintora::platform
