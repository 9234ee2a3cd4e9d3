#include "platform/linux/graphics_text.h"

#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cstddef>

#include "platform/linux/fonts.h"
#include "platform/linux/scale.h"
#include "platform/linux/text.h"

namespace tintora::platform {

namespace {

// Letters may reach to the left and right of their advance.
constexpr int overhang = 4;
// The most images that a font keeps. Text changes, so old images are discarded.
constexpr std::size_t mostImages = 128;

// Coordinates are pixels from the top left corner.
constexpr const char* textVertexShader = R"(#version 330 core
uniform ivec2 picture;
uniform ivec4 area;
void main() {
  vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1);
  vec2 place = mix(vec2(area.xy), vec2(area.zw), corner) / vec2(picture);
  gl_Position = vec4(2.0 * place.x - 1.0, 1.0 - 2.0 * place.y, 0.0, 1.0);
}
)";
constexpr const char* textFragmentShader = R"(#version 330 core
uniform ivec2 picture;
uniform ivec2 origin;
uniform vec4 colour;
uniform sampler2D coverage;
out vec4 result;
void main() {
  ivec2 pixel = ivec2(gl_FragCoord.x, float(picture.y) - gl_FragCoord.y);
  result = vec4(colour.rgb, colour.a * texelFetch(coverage, pixel - origin, 0).r);
}
)";

struct TextProgram {
  GLuint program = 0;
  GLuint noVertices = 0;
  GLint picture = 0;
  GLint area = 0;
  GLint origin = 0;
  GLint colour = 0;
};

const TextProgram& textProgram(OpenGl& gl) {
  static const TextProgram made = [&gl] {
    TextProgram text;
    text.program = makeProgram(gl, textVertexShader, textFragmentShader);
    gl.glGenVertexArrays(1, &text.noVertices);
    text.picture = gl.glGetUniformLocation(text.program, "picture");
    text.area = gl.glGetUniformLocation(text.program, "area");
    text.origin = gl.glGetUniformLocation(text.program, "origin");
    text.colour = gl.glGetUniformLocation(text.program, "colour");
    return text;
  }();
  return made;
}

const QFont& fontOf(TextFont& font) {
  if (!font.font) {
    font.font = fontOfHeight(scaled(font.height, desktopScale()));
    if (font.outlinesOnly) font.font->setStyleStrategy(QFont::ForceOutline);
  }
  return *font.font;
}

QImage coverageOf(const QFont& font, int baseline, const QString& text) {
  const QFontMetrics metrics(font);
  QImage image(metrics.horizontalAdvance(text) + 2 * overhang, metrics.height(),
               QImage::Format_Alpha8);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setFont(font);
  painter.setPen(Qt::white);
  painter.drawText(overhang, baseline, text);
  return image;
}

TextImage makeImage(OpenGl& gl, TextFont& font, const std::string& text) {
  const int baseline = baselineOfHeight(scaled(font.height, desktopScale()));
  const QImage coverage = coverageOf(fontOf(font), baseline, toUnicode(text));
  TextImage image{.size = {coverage.width(), coverage.height()}};
  gl.glGenTextures(1, &image.texture);
  gl.glBindTexture(GL_TEXTURE_2D, image.texture);
  gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_R8, image.size.width, image.size.height, 0, GL_RED,
                  GL_UNSIGNED_BYTE, coverage.constBits());
  gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  return image;
}

const TextImage& imageOf(OpenGl& gl, TextFont& font, const std::string& text) {
  const auto known = font.images.find(text);
  if (known != font.images.end()) return known->second;
  if (font.images.size() >= mostImages) discardImages(font);
  return font.images.emplace(text, makeImage(gl, font, text)).first->second;
}

}  // namespace

void drawTextImage(OpenGl& gl, const Size& picture, TextFont& font, const Rect& area,
                   PackedColour colour, const std::string& text) {
  const TextImage& image = imageOf(gl, font, text);
  const int left = area.left - overhang;
  const int right = std::min(area.right, left + image.size.width);
  const int bottom = std::min(area.bottom, area.top + image.size.height);
  if (right <= area.left || bottom <= area.top) return;

  const TextProgram& program = textProgram(gl);
  gl.glUseProgram(program.program);
  gl.glBindVertexArray(program.noVertices);
  gl.glBindTexture(GL_TEXTURE_2D, image.texture);
  gl.glUniform2i(program.picture, picture.width, picture.height);
  gl.glUniform4i(program.area, area.left, area.top, right, bottom);
  gl.glUniform2i(program.origin, left, area.top);
  gl.glUniform4fv(program.colour, 1, components(colour).data());
  gl.glDisable(GL_DEPTH_TEST);
  gl.glEnable(GL_BLEND);
  gl.glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
  gl.glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

void discardImages(TextFont& font) {
  for (const auto& [text, image] : font.images) discardTexture(image.texture);
  font.images.clear();
}

}  // namespace tintora::platform
