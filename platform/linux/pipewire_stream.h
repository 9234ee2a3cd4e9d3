// The frames of a PipeWire stream. There is only one stream at a time. Frames are copied on
// PipeWire's thread, so that their buffers go back at once even while the program is busy: a source
// that has no buffer left may stop for ever. All else happens on the event loop's thread.
#pragma once

#include <QImage>
#include <QRegion>
#include <cstdint>

namespace tintora::platform {

enum class StreamEnd {
  Source,    // it sends no more frames
  PipeWire,  // the connection is lost
};

struct StreamEvents {
  void (*frame)();               // there is a frame that was not taken yet
  void (*renewed)();             // the source begins anew, with a first frame
  void (*ended)(StreamEnd end);  // after the stream was stopped
};

// Starts receiving a node's frames over a connection to PipeWire. The stream owns the connection's
// descriptor from now on. Returns false if PipeWire cannot be used.
bool startStream(int connection, std::uint32_t node, const StreamEvents& events);

// Exchanges a frame that was taken before, or a null picture, for the newest. Returns where the two
// differ: nowhere if there is none that is newer. Pixels are blue, green, red in memory.
QRegion takeNewestFrame(QImage& frame);

// Pauses the stream, or has it go on: then the source begins anew, with a first frame.
void setStreamActive(bool active);

// Stops the stream and releases everything. Does nothing if there is no stream.
void stopStream();

}  // namespace tintora::platform
