#include "platform/graphics.h"

#include <bit>
#include <cstddef>
#include <vector>

#include "platform/linux/graphics_text.h"
#include "platform/linux/handles.h"
#include "platform/linux/open_gl.h"
#include "platform/linux/scale.h"

namespace tintora::platform {

struct GraphicsDevice {
  Window* window = nullptr;
  Size size;
  std::array<Matrix4x4, 3> transforms{};  // by TransformKind
  VertexBuffer* vertexBuffer = nullptr;   // drawn from
  IndexBuffer* indexBuffer = nullptr;
  OpenGl* gl = nullptr;  // while a picture is drawn; null if OpenGL is not available
};

struct VertexBuffer {
  std::vector<ColourVertex> vertices;
  GLuint name = 0;
  bool changed = true;  // since OpenGL last got the vertices
};

struct IndexBuffer {
  std::vector<std::uint16_t> indices;
  GLuint name = 0;
};

namespace {

// Points are row vectors, as in the program's matrices. In the program, depth starts at 0, and
// whole coordinates are pixel centres, counted downwards. In OpenGL, depth starts at -1, and whole
// coordinates are pixel corners.
constexpr const char* vertexShader = R"(#version 330 core
uniform mat4 world;
uniform mat4 view;
uniform mat4 projection;
uniform vec2 picture;
layout(location = 0) in vec3 position;
layout(location = 1) in vec4 colour;
out vec4 vertexColour;
void main() {
  vec4 place = vec4(position, 1.0) * world * view * projection;
  gl_Position = vec4(place.xy + vec2(1.0, -1.0) / picture * place.w, 2.0 * place.z - place.w,
                     place.w);
  vertexColour = colour;
}
)";
constexpr const char* fragmentShader = R"(#version 330 core
in vec4 vertexColour;
out vec4 result;
void main() {
  result = vec4(vertexColour.rgb, 1.0);
}
)";

struct SpaceProgram {
  GLuint program = 0;
  GLuint vertices = 0;
  std::array<GLint, 3> transforms{};  // by TransformKind
  GLint picture = 0;
};

const SpaceProgram& spaceProgram(OpenGl& gl) {
  static const SpaceProgram made = [&gl] {
    SpaceProgram space;
    space.program = makeProgram(gl, vertexShader, fragmentShader);
    gl.glGenVertexArrays(1, &space.vertices);
    gl.glBindVertexArray(space.vertices);
    gl.glEnableVertexAttribArray(0);
    gl.glEnableVertexAttribArray(1);
    space.transforms = {gl.glGetUniformLocation(space.program, "world"),
                        gl.glGetUniformLocation(space.program, "view"),
                        gl.glGetUniformLocation(space.program, "projection")};
    space.picture = gl.glGetUniformLocation(space.program, "picture");
    return space;
  }();
  return made;
}

void bindVertices(OpenGl& gl, VertexBuffer& buffer) {
  if (buffer.name == 0) gl.glGenBuffers(1, &buffer.name);
  gl.glBindBuffer(GL_ARRAY_BUFFER, buffer.name);
  if (buffer.changed) {
    gl.glBufferData(GL_ARRAY_BUFFER,
                    static_cast<GLsizeiptr>(buffer.vertices.size() * sizeof(ColourVertex)),
                    buffer.vertices.data(), GL_DYNAMIC_DRAW);
    buffer.changed = false;
  }
  const auto* const colour = std::bit_cast<const void*>(offsetof(ColourVertex, colour));
  gl.glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, sizeof(ColourVertex), nullptr);
  gl.glVertexAttribPointer(1, GL_BGRA, GL_UNSIGNED_BYTE, GL_TRUE, sizeof(ColourVertex), colour);
}

void bindIndices(OpenGl& gl, IndexBuffer& buffer) {
  if (buffer.name != 0) return gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer.name);
  gl.glGenBuffers(1, &buffer.name);
  gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer.name);
  gl.glBufferData(GL_ELEMENT_ARRAY_BUFFER,
                  static_cast<GLsizeiptr>(buffer.indices.size() * sizeof(std::uint16_t)),
                  buffer.indices.data(), GL_STATIC_DRAW);
}

void prepareToDraw(const GraphicsDevice& device) {
  OpenGl& gl = *device.gl;
  const SpaceProgram& space = spaceProgram(gl);
  gl.glUseProgram(space.program);
  gl.glBindVertexArray(space.vertices);
  for (std::size_t i = 0; i < device.transforms.size(); ++i) {
    gl.glUniformMatrix4fv(space.transforms[i], 1, GL_TRUE, device.transforms[i][0].data());
  }
  gl.glUniform2f(space.picture, static_cast<float>(device.size.width),
                 static_cast<float>(device.size.height));
  gl.glEnable(GL_DEPTH_TEST);
  gl.glDepthFunc(GL_LEQUAL);
  gl.glDisable(GL_BLEND);
  bindVertices(gl, *device.vertexBuffer);
}

struct DrawMode {
  GLenum primitive;
  int perPrimitive;  // vertices
  int more;          // vertices before the first primitive is complete
};

DrawMode drawModeOf(PrimitiveKind kind) {
  switch (kind) {
    case PrimitiveKind::IndexedLines:
    case PrimitiveKind::Lines:
      return {GL_LINES, 2, 0};
    case PrimitiveKind::LineStrip:
      return {GL_LINE_STRIP, 1, 1};
    case PrimitiveKind::IndexedTriangles:
    case PrimitiveKind::Triangles:
      break;
  }
  return {GL_TRIANGLES, 3, 0};
}

int verticesOf(const DrawMode& drawMode, int primitives) {
  return drawMode.perPrimitive * primitives + drawMode.more;
}

}  // namespace

GraphicsDevice* createGraphicsDevice(Window* window, const Size& size) {
  auto* const device = new GraphicsDevice{.window = window, .size = size};
  device->transforms.fill(identity4x4);
  return device;
}

void releaseGraphicsDevice(GraphicsDevice* device) {
  delete device;
}

TextFont* createTextFont(GraphicsDevice* /*device*/, const TextFontForm& form) {
  return new TextFont{.height = form.height, .outlinesOnly = form.outlinesOnly};
}

void releaseTextFont(TextFont* font) {
  discardImages(*font);
  delete font;
}

VertexBuffer* createVertexBuffer(GraphicsDevice* /*device*/, std::size_t vertices,
                                 BufferUse /*use*/) {
  return new VertexBuffer{.vertices = std::vector<ColourVertex>(vertices)};
}

IndexBuffer* createIndexBuffer(GraphicsDevice* /*device*/, std::span<const std::uint16_t> indices,
                               BufferUse /*use*/) {
  return new IndexBuffer{.indices = {indices.begin(), indices.end()}};
}

void releaseVertexBuffer(VertexBuffer* buffer) {
  discardBuffer(buffer->name);
  delete buffer;
}

void releaseIndexBuffer(IndexBuffer* buffer) {
  discardBuffer(buffer->name);
  delete buffer;
}

void fillVertexBuffer(VertexBuffer* buffer, std::span<const ColourVertex> vertices) {
  buffer->vertices.assign(vertices.begin(), vertices.end());
  buffer->changed = true;
}

void setTransform(GraphicsDevice* device, TransformKind kind, const Matrix4x4& matrix) {
  device->transforms[static_cast<std::size_t>(kind)] = matrix;
}

Matrix4x4 transform(const GraphicsDevice* device, TransformKind kind) {
  return device->transforms[static_cast<std::size_t>(kind)];
}

Rect viewport(const GraphicsDevice* device) {
  return scaled(Rect{0, 0, device->size.width, device->size.height}, 1.0 / desktopScale());
}

void clearPicture(GraphicsDevice* device, PackedColour colour) {
  device->gl = beginPicture(device->window->window.get(), device->size);
  if (device->gl == nullptr) return;
  const auto [red, green, blue, alpha] = components(colour);
  device->gl->glClearColor(red, green, blue, alpha);
  device->gl->glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void clearDepth(GraphicsDevice* device) {
  if (device->gl != nullptr) device->gl->glClear(GL_DEPTH_BUFFER_BIT);
}

// OpenGL needs neither the limits of a scene nor the format of vertices.
void beginScene(GraphicsDevice* /*device*/) {}
void endScene(GraphicsDevice* /*device*/) {}
void setVertexFormat(GraphicsDevice* /*device*/) {}

void present(GraphicsDevice* device) {
  if (device->gl != nullptr) showPicture();
}

void setVertexBuffer(GraphicsDevice* device, VertexBuffer* buffer) {
  device->vertexBuffer = buffer;
}

void setIndexBuffer(GraphicsDevice* device, IndexBuffer* buffer) {
  device->indexBuffer = buffer;
}

void drawIndexed(GraphicsDevice* device, PrimitiveKind kind, int /*vertices*/, int primitives) {
  if (device->gl == nullptr) return;
  prepareToDraw(*device);
  bindIndices(*device->gl, *device->indexBuffer);
  const DrawMode drawMode = drawModeOf(kind);
  device->gl->glDrawElements(drawMode.primitive, verticesOf(drawMode, primitives),
                             GL_UNSIGNED_SHORT, nullptr);
}

void drawUnindexed(GraphicsDevice* device, PrimitiveKind kind, int primitives) {
  if (device->gl == nullptr) return;
  prepareToDraw(*device);
  const DrawMode drawMode = drawModeOf(kind);
  device->gl->glDrawArrays(drawMode.primitive, 0, verticesOf(drawMode, primitives));
}

int drawText(GraphicsDevice* device, TextFont* font, const Rect& area, PackedColour colour,
             const std::string& text) {
  if (device->gl != nullptr) {
    drawTextImage(*device->gl, device->size, *font, scaled(area, desktopScale()), colour, text);
  }
  return font->height;
}

}  // namespace tintora::platform
