// A graphics device for tests. It draws nothing and records the calls made to it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/graphics.h"

namespace tintora::platform {

struct GraphicsDevice {
  int number = 0;  // in the order of creation, from 1
  Window* window = nullptr;
  Size size;
  std::array<Matrix4x4, 3> transforms{};  // by TransformKind
  VertexBuffer* vertexBuffer = nullptr;   // drawn from
  IndexBuffer* indexBuffer = nullptr;
};

struct VertexBuffer {
  int number = 0;
  BufferUse use = BufferUse::OnDevice;
  std::size_t capacity = 0;  // vertices
  std::vector<ColourVertex> vertices;
};

struct IndexBuffer {
  int number = 0;
  BufferUse use = BufferUse::OnDevice;
  std::vector<std::uint16_t> indices;
};

struct TextFont {
  int number = 0;
  std::string face;
  int height = 0;
  bool outlinesOnly = false;
};

struct DrawnPrimitives {
  PrimitiveKind kind;
  int vertices = 0;  // 0 without indices
  int primitives = 0;
  Matrix4x4 world;
  Matrix4x4 view;
  Matrix4x4 projection;
  const VertexBuffer* vertexBuffer = nullptr;
  const IndexBuffer* indexBuffer = nullptr;
};

struct DrawnText {
  const TextFont* font = nullptr;
  Rect area;
  PackedColour colour = 0;
  std::string text;
};

struct NullGraphics {
  // Set before drawing.
  bool keepsCalls = false;
  int spaceBelowLine = 0;  // by which a line of text is higher than its font
  Point viewportCorner{};  // where drawing begins in the window

  // Every call with its name and arguments, if keepsCalls is set.
  std::vector<std::string> calls;

  // Everything that was created and is not yet released.
  std::vector<std::unique_ptr<GraphicsDevice>> devices;
  std::vector<std::unique_ptr<VertexBuffer>> vertexBuffers;
  std::vector<std::unique_ptr<IndexBuffer>> indexBuffers;
  std::vector<std::unique_ptr<TextFont>> fonts;
  int devicesMade = 0;
  int vertexBuffersMade = 0;
  int indexBuffersMade = 0;
  int fontsMade = 0;

  // The last picture. Its primitives can be read while their buffers exist.
  PackedColour background = 0;
  std::vector<DrawnPrimitives> drawn;
  std::vector<DrawnText> texts;
  int picturesShown = 0;
};

NullGraphics& nullGraphics();

}  // namespace tintora::platform
