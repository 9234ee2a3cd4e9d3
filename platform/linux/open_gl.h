// OpenGL in the colour space window. Loading it takes tens of milliseconds, so nothing of it is
// there before the first picture is drawn.
#pragma once

#include <QOpenGLExtraFunctions>
#include <QWindow>
#include <array>

#include "platform/geometry.h"
#include "platform/graphics.h"

namespace tintora::platform {

using OpenGl = QOpenGLExtraFunctions;

// Makes OpenGL ready to draw a picture of this size into a window's client area; null where
// OpenGL 3.3 cannot be had. One window of the program has pictures.
OpenGl* beginPicture(QWindow* window, const Size& size);

// Shows the picture that was drawn, at once.
void showPicture();

// Has buffers and textures deleted when OpenGL is in use again.
void discardBuffer(GLuint buffer);
void discardTexture(GLuint texture);

// Red, green, blue and alpha of a colour, each from 0 to 1.
std::array<float, 4> components(PackedColour colour);

// Compiles and links a program; ends in one that draws nothing where that fails.
GLuint makeProgram(OpenGl& gl, const char* vertexShader, const char* fragmentShader);

}  // namespace tintora::platform
