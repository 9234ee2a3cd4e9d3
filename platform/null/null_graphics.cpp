#include "platform/null/null_graphics.h"

#include <algorithm>

#include "platform/null/null_platform.h"

namespace tintora::platform {

namespace {

std::string text(std::size_t value) {
  return std::to_string(value);
}
std::string text(int value) {
  return std::to_string(value);
}
std::string text(const Size& size) {
  return text(size.width) + "x" + text(size.height);
}
std::string text(const Rect& rect) {
  return text(rect.left) + "," + text(rect.top) + "," + text(rect.right) + "," + text(rect.bottom);
}
std::string text(BufferUse use) {
  return use == BufferUse::Managed ? "managed" : "on device";
}
std::string text(TransformKind kind) {
  constexpr std::array names{"world", "view", "projection"};
  return names[static_cast<std::size_t>(kind)];
}
std::string text(PrimitiveKind kind) {
  return "kind " + std::to_string(static_cast<int>(kind));
}
std::string text(const std::string& value) {
  return value;
}
// Returns the number of a buffer, font or device.
template <typename Thing>
std::string text(const Thing* thing) {
  return thing == nullptr ? "none" : text(thing->number);
}

std::string text(const Window* window) {
  return window->name;
}

template <typename... Arguments>
std::string inWords(const char* function, const Arguments&... arguments) {
  std::string call = function;
  ((call += ' ' + text(arguments)), ...);
  return call;
}

template <typename... Arguments>
void record(const char* function, const Arguments&... arguments) {
  NullGraphics& graphics = nullGraphics();
  if (graphics.keepsCalls) graphics.calls.push_back(inWords(function, arguments...));
}

// Adds a call to the desktop's list of calls.
template <typename... Arguments>
void recordForDesktop(const char* function, const Arguments&... arguments) {
  nullDesktop().calls.push_back(inWords(function, arguments...));
}

template <typename Thing>
Thing* add(std::vector<std::unique_ptr<Thing>>& things, int& made) {
  things.push_back(std::make_unique<Thing>());
  things.back()->number = ++made;
  return things.back().get();
}

template <typename Thing>
void remove(std::vector<std::unique_ptr<Thing>>& things, const Thing* thing) {
  std::erase_if(things, [thing](const auto& each) { return each.get() == thing; });
}

void keepDrawn(const GraphicsDevice* device, PrimitiveKind kind, int vertices, int primitives) {
  const auto& [world, view, projection] = device->transforms;
  nullGraphics().drawn.push_back({kind, vertices, primitives, world, view, projection,
                                  device->vertexBuffer, device->indexBuffer});
}

}  // namespace

NullGraphics& nullGraphics() {
  return nullDesktop().graphics;
}

GraphicsDevice* createGraphicsDevice(Window* window, const Size& size) {
  GraphicsDevice* const device = add(nullGraphics().devices, nullGraphics().devicesMade);
  device->window = window;
  device->size = size;
  device->transforms.fill(identity4x4);
  record("createGraphicsDevice", size);
  recordForDesktop("createGraphicsDevice", window, size);
  return device;
}

void releaseGraphicsDevice(GraphicsDevice* device) {
  record("releaseGraphicsDevice", device);
  recordForDesktop("releaseGraphicsDevice");
  remove(nullGraphics().devices, device);
}

TextFont* createTextFont(GraphicsDevice* /*device*/, const TextFontForm& form) {
  TextFont* const font = add(nullGraphics().fonts, nullGraphics().fontsMade);
  font->face = form.face;
  font->height = form.height;
  font->outlinesOnly = form.outlinesOnly;
  record("createTextFont", font->face, font->height);
  return font;
}

void releaseTextFont(TextFont* font) {
  record("releaseTextFont", font);
  remove(nullGraphics().fonts, font);
}

VertexBuffer* createVertexBuffer(GraphicsDevice* /*device*/, std::size_t vertices, BufferUse use) {
  VertexBuffer* const buffer = add(nullGraphics().vertexBuffers, nullGraphics().vertexBuffersMade);
  buffer->capacity = vertices;
  buffer->use = use;
  record("createVertexBuffer", vertices, use);
  return buffer;
}

IndexBuffer* createIndexBuffer(GraphicsDevice* /*device*/, std::span<const std::uint16_t> indices,
                               BufferUse use) {
  IndexBuffer* const buffer = add(nullGraphics().indexBuffers, nullGraphics().indexBuffersMade);
  buffer->indices.assign(indices.begin(), indices.end());
  buffer->use = use;
  record("createIndexBuffer", indices.size(), use);
  return buffer;
}

void releaseVertexBuffer(VertexBuffer* buffer) {
  record("releaseVertexBuffer", buffer);
  remove(nullGraphics().vertexBuffers, buffer);
}

void releaseIndexBuffer(IndexBuffer* buffer) {
  record("releaseIndexBuffer", buffer);
  remove(nullGraphics().indexBuffers, buffer);
}

void fillVertexBuffer(VertexBuffer* buffer, std::span<const ColourVertex> vertices) {
  record("fillVertexBuffer", buffer, vertices.size());
  recordForDesktop("fillVertexBuffer", vertices.size());
  buffer->vertices.assign(vertices.begin(), vertices.end());
}

void setTransform(GraphicsDevice* device, TransformKind kind, const Matrix4x4& matrix) {
  record("setTransform", kind);
  device->transforms[static_cast<std::size_t>(kind)] = matrix;
}

Matrix4x4 transform(const GraphicsDevice* device, TransformKind kind) {
  return device->transforms[static_cast<std::size_t>(kind)];
}

Rect viewport(const GraphicsDevice* device) {
  const auto& [left, top] = nullGraphics().viewportCorner;
  return {left, top, left + device->size.width, top + device->size.height};
}

void clearPicture(GraphicsDevice* /*device*/, PackedColour colour) {
  record("clearPicture");
  nullGraphics().background = colour;
  nullGraphics().drawn.clear();
  nullGraphics().texts.clear();
}

void clearDepth(GraphicsDevice* /*device*/) {
  record("clearDepth");
}

void beginScene(GraphicsDevice* /*device*/) {
  record("beginScene");
}

void endScene(GraphicsDevice* /*device*/) {
  record("endScene");
}

void present(GraphicsDevice* /*device*/) {
  record("present");
  recordForDesktop("present");
  ++nullGraphics().picturesShown;
}

void setVertexFormat(GraphicsDevice* /*device*/) {
  record("setVertexFormat");
}

void setVertexBuffer(GraphicsDevice* device, VertexBuffer* buffer) {
  record("setVertexBuffer", buffer);
  device->vertexBuffer = buffer;
}

void setIndexBuffer(GraphicsDevice* device, IndexBuffer* buffer) {
  record("setIndexBuffer", buffer);
  device->indexBuffer = buffer;
}

void drawIndexed(GraphicsDevice* device, PrimitiveKind kind, int vertices, int primitives) {
  record("drawIndexed", kind, vertices, primitives);
  keepDrawn(device, kind, vertices, primitives);
}

void drawUnindexed(GraphicsDevice* device, PrimitiveKind kind, int primitives) {
  record("drawUnindexed", kind, primitives);
  keepDrawn(device, kind, 0, primitives);
}

int drawText(GraphicsDevice* /*device*/, TextFont* font, const Rect& area, PackedColour colour,
             const std::string& text) {
  record("drawText", font, area, text);
  nullGraphics().texts.push_back({font, area, colour, text});
  return font->height + nullGraphics().spaceBelowLine;
}

}  // namespace tintora::platform
