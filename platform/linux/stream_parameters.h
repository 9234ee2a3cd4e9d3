// What the program and the source of a PipeWire stream agree on.
#pragma once

#include <pipewire/stream.h>

#include <QSize>
#include <cstdint>
#include <optional>

namespace tintora::platform {

// The longest side of a frame, in pixels.
inline constexpr std::uint32_t largestFrame = 16384;

struct FrameFormat {
  QSize size;
  bool redFirst = false;  // red, green, blue in memory; else blue, green, red
};

// Reads the format that was agreed on. Returns nothing if it is not one that was offered.
std::optional<FrameFormat> readFormat(const spa_pod& parameter);

// Connects a stream to a node and offers all formats. Frames are processed on PipeWire's thread.
// Returns false on failure.
bool connectStream(pw_stream* stream, std::uint32_t node);

// Requests buffers in shared memory, with the facts about each frame.
void acceptBuffers(pw_stream* stream);

}  // namespace tintora::platform
