#include "platform/linux/open_gl.h"

#include <QEvent>
#include <QOpenGLContext>
#include <QSurfaceFormat>
#include <vector>

namespace tintora::platform {

namespace {

// Everything lives as long as the window that shows the pictures.
struct Pictures {
  QWindow* window = nullptr;  // fills the client area of the program's
  QOpenGLContext* context = nullptr;
  OpenGl* gl = nullptr;
  bool sought = false;  // looks for OpenGL only once
  bool drawn = false;   // there is a picture to show
  Size size;
  GLuint framebuffer = 0;
  GLuint colours = 0;
  GLuint depths = 0;
  std::vector<GLuint> discardedBuffers;
  std::vector<GLuint> discardedTextures;
};
Pictures pictures;

QSurfaceFormat format() {
  QSurfaceFormat wanted;
  wanted.setRenderableType(QSurfaceFormat::OpenGL);
  wanted.setVersion(3, 3);
  wanted.setProfile(QSurfaceFormat::CoreProfile);
  wanted.setSwapInterval(0);
  return wanted;
}

// Shows the picture again when the window is uncovered, which happens without the program's doing.
class ExposureFilter : public QObject {
 public:
  using QObject::QObject;
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Expose && pictures.drawn) showPicture();
    return false;
  }
};

bool isRecentEnough(const QOpenGLContext& context) {
  return !context.isOpenGLES() && context.format().version() >= qMakePair(3, 3);
}

// Creates a window for OpenGL, because an ordinary window cannot become one later. Mouse input goes
// through it to the program's window.
void makeWindow(QWindow* parent) {
  auto* const window = new QWindow(parent);
  window->setSurfaceType(QSurface::OpenGLSurface);
  window->setFormat(format());
  window->setFlag(Qt::WindowTransparentForInput);
  window->setGeometry(QRect(QPoint(), parent->size()));
  window->create();
  auto* const context = new QOpenGLContext(window);
  context->setFormat(format());
  if (!context->create() || !isRecentEnough(*context) || !context->makeCurrent(window)) {
    delete window;
    return;
  }
  pictures.window = window;
  pictures.context = context;
  pictures.gl = context->extraFunctions();
  window->installEventFilter(new ExposureFilter(window));
  window->show();
}

void makeFramebuffer() {
  OpenGl& gl = *pictures.gl;
  gl.glGenFramebuffers(1, &pictures.framebuffer);
  gl.glGenRenderbuffers(1, &pictures.colours);
  gl.glGenRenderbuffers(1, &pictures.depths);
}

// Keeps the OpenGL window as large as the program's window, which may be resized while the picture
// keeps its size.
void fillClientArea() {
  const QRect area(QPoint(), pictures.window->parent()->size());
  if (pictures.window->geometry() != area) pictures.window->setGeometry(area);
}

void resizeFramebuffer(const Size& size) {
  OpenGl& gl = *pictures.gl;
  pictures.size = size;
  gl.glBindFramebuffer(GL_FRAMEBUFFER, pictures.framebuffer);
  const auto attach = [&](GLuint renderbuffer, GLenum contents, GLenum attachment) {
    gl.glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
    gl.glRenderbufferStorage(GL_RENDERBUFFER, contents, size.width, size.height);
    gl.glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, renderbuffer);
  };
  attach(pictures.colours, GL_RGBA8, GL_COLOR_ATTACHMENT0);
  attach(pictures.depths, GL_DEPTH_COMPONENT16, GL_DEPTH_ATTACHMENT);
}

void deleteDiscarded() {
  OpenGl& gl = *pictures.gl;
  gl.glDeleteBuffers(static_cast<GLsizei>(pictures.discardedBuffers.size()),
                     pictures.discardedBuffers.data());
  gl.glDeleteTextures(static_cast<GLsizei>(pictures.discardedTextures.size()),
                      pictures.discardedTextures.data());
  pictures.discardedBuffers.clear();
  pictures.discardedTextures.clear();
}

GLuint compiled(OpenGl& gl, GLenum kind, const char* source) {
  const GLuint shader = gl.glCreateShader(kind);
  gl.glShaderSource(shader, 1, &source, nullptr);
  gl.glCompileShader(shader);
  return shader;
}

}  // namespace

OpenGl* beginPicture(QWindow* window, const Size& size) {
  if (!pictures.sought) {
    pictures.sought = true;
    makeWindow(window);
    if (pictures.gl != nullptr) makeFramebuffer();
  }
  if (pictures.gl == nullptr || !pictures.context->makeCurrent(pictures.window)) return nullptr;
  deleteDiscarded();
  fillClientArea();
  if (pictures.size != size) resizeFramebuffer(size);
  pictures.gl->glBindFramebuffer(GL_FRAMEBUFFER, pictures.framebuffer);
  pictures.gl->glViewport(0, 0, size.width, size.height);
  return pictures.gl;
}

void showPicture() {
  pictures.drawn = true;
  if (!pictures.window->isExposed() || !pictures.context->makeCurrent(pictures.window)) return;
  OpenGl& gl = *pictures.gl;
  const Size& from = pictures.size;
  const QSize to = pictures.window->size();
  gl.glBindFramebuffer(GL_READ_FRAMEBUFFER, pictures.framebuffer);
  gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, pictures.context->defaultFramebufferObject());
  gl.glBlitFramebuffer(0, 0, from.width, from.height, 0, 0, to.width(), to.height(),
                       GL_COLOR_BUFFER_BIT, GL_NEAREST);
  pictures.context->swapBuffers(pictures.window);
}

void discardBuffer(GLuint buffer) {
  if (buffer != 0) pictures.discardedBuffers.push_back(buffer);
}

void discardTexture(GLuint texture) {
  if (texture != 0) pictures.discardedTextures.push_back(texture);
}

std::array<float, 4> components(PackedColour colour) {
  const auto component = [colour](unsigned int shift) {
    return static_cast<float>(colour >> shift & 0xFFU) / 255.0F;
  };
  return {component(16), component(8), component(0), component(24)};
}

GLuint makeProgram(OpenGl& gl, const char* vertexShader, const char* fragmentShader) {
  const GLuint program = gl.glCreateProgram();
  for (const GLuint shader : {compiled(gl, GL_VERTEX_SHADER, vertexShader),
                              compiled(gl, GL_FRAGMENT_SHADER, fragmentShader)}) {
    gl.glAttachShader(program, shader);
    gl.glDeleteShader(shader);
  }
  gl.glLinkProgram(program);
  return program;
}

}  // namespace tintora::platform
