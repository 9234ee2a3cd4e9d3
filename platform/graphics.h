// Drawing in space with the graphics device of one window: coloured vertices in buffers,
// transforms, lines and triangles with depth, and lines of text over them. No call reports a
// failure: if the desktop cannot draw, calls on its devices, buffers and fonts do nothing.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "platform/geometry.h"
#include "platform/window.h"

namespace tintora::platform {

// Each of these is created and released by its own pair of calls. None of the calls returns null.
struct GraphicsDevice;
struct VertexBuffer;  // of ColourVertex
struct IndexBuffer;   // of 16-bit indices
struct TextFont;

// [row][column]. Points are row vectors, so that transforms apply from left to right; space is
// left-handed, and depth runs from 0 at the near plane to 1 at the far one.
using Matrix4x4 = std::array<std::array<float, 4>, 4>;

inline constexpr Matrix4x4 identity4x4{{{1.0F, 0.0F, 0.0F, 0.0F},
                                        {0.0F, 1.0F, 0.0F, 0.0F},
                                        {0.0F, 0.0F, 1.0F, 0.0F},
                                        {0.0F, 0.0F, 0.0F, 1.0F}}};

// 0xAARRGGBB
using PackedColour = std::uint32_t;

struct ColourVertex {
  float x = 0.0F;
  float y = 0.0F;
  float z = 0.0F;
  PackedColour colour = 0;
  bool operator==(const ColourVertex&) const = default;
};

enum class TransformKind { World, View, Projection };

enum class PrimitiveKind {
  IndexedTriangles = 0,
  IndexedLines = 1,
  LineStrip = 2,
  Lines = 3,
  Triangles = 4,
};

// Where a buffer is kept: on the device only, or also in the program's memory, from which the
// device fetches it as needed.
enum class BufferUse { OnDevice, Managed };

struct TextFontForm {
  const char* face;
  int height;         // of a line, in pixels
  bool outlinesOnly;  // refuses bitmap fonts
};

// Creates a device that draws into a window's client area of this size in pixels. Pictures appear
// at once, without waiting for the screen. Both faces of a triangle are drawn, unlit and in the
// vertices' colours. Nearer points hide farther ones. All transforms start as the identity.
GraphicsDevice* createGraphicsDevice(Window* window, const Size& size);

// Releases a device. Release its buffers and fonts first.
void releaseGraphicsDevice(GraphicsDevice* device);

// Creates a font in the weight and width it was designed in.
TextFont* createTextFont(GraphicsDevice* device, const TextFontForm& form);
void releaseTextFont(TextFont* font);

// Create a buffer for this number of vertices, or for these indices.
VertexBuffer* createVertexBuffer(GraphicsDevice* device, std::size_t vertices, BufferUse use);
IndexBuffer* createIndexBuffer(GraphicsDevice* device, std::span<const std::uint16_t> indices,
                               BufferUse use);
void releaseVertexBuffer(VertexBuffer* buffer);
void releaseIndexBuffer(IndexBuffer* buffer);

// Replaces the contents of a buffer. Pass as many vertices as it was created for.
void fillVertexBuffer(VertexBuffer* buffer, std::span<const ColourVertex> vertices);

// Set the transform for all later drawing; return the one last set.
void setTransform(GraphicsDevice* device, TransformKind kind, const Matrix4x4& matrix);
Matrix4x4 transform(const GraphicsDevice* device, TransformKind kind);

// Returns the part of the window that is drawn into, which has the size of the device.
Rect viewport(const GraphicsDevice* device);

// Fills the picture with a colour and its depth with 1, or its depth alone.
void clearPicture(GraphicsDevice* device, PackedColour colour);
void clearDepth(GraphicsDevice* device);

// Begin and end a frame. Draw only between these two calls.
void beginScene(GraphicsDevice* device);
void endScene(GraphicsDevice* device);

// Shows the picture in the window.
void present(GraphicsDevice* device);

// Sets the format of vertices to ColourVertex.
void setVertexFormat(GraphicsDevice* device);

// Set the buffers to draw from. The index buffer may be null if no indices are used.
void setVertexBuffer(GraphicsDevice* device, VertexBuffer* buffer);
void setIndexBuffer(GraphicsDevice* device, IndexBuffer* buffer);

// Draws this number of primitives from the start of the indices, which refer to that many vertices.
void drawIndexed(GraphicsDevice* device, PrimitiveKind kind, int vertices, int primitives);

// Draws this number of primitives from the start of the vertices.
void drawUnindexed(GraphicsDevice* device, PrimitiveKind kind, int primitives);

// Draws one line of text from the top left corner of a rectangle, clipped at its edges. Returns the
// line's height in pixels.
int drawText(GraphicsDevice* device, TextFont* font, const Rect& area, PackedColour colour,
             const std::string& text);

}  // namespace tintora::platform
