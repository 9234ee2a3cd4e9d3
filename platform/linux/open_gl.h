// OpenGL in the colour space window. Loading it takes tens of milliseconds, so it is loaded for the
// first picture.
#pragma once

#include <QOpenGLExtraFunctions>
#include <QWindow>
#include <array>

#include "platform/geometry.h"
#include "platform/graphics.h"

namespace tintora::platform {

using OpenGl = QOpenGLExtraFunctions;

// Prepares OpenGL to draw a picture of this size into a window's client area. Returns null if
// OpenGL 3.3 is not available. Only one of the program's windows has pictures.
OpenGl* beginPicture(QWindow* window, const Size& size);

// Shows the finished picture at once.
void showPicture();

// Delete buffers and textures the next time OpenGL is in use.
void discardBuffer(GLuint buffer);
void discardTexture(GLuint texture);

// Returns the red, green, blue and alpha of a colour, each from 0 to 1.
std::array<float, 4> components(PackedColour colour);

// Compiles and links a program. On failure, returns a program that draws nothing.
GLuint makeProgram(OpenGl& gl, const char* vertexShader, const char* fragmentShader);

}  // namespace tintora::platform
