// tintora_reference_text WIDTH HEIGHT TEXT FILE: saves a picture of how the desktop shows a text in
// the middle of a view of this size.
#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <string>

int main(int count, char** arguments) {
  constexpr int needed = 5;
  if (count != needed) return 2;
  const QApplication application(count, arguments);
  QImage image(std::stoi(arguments[1]), std::stoi(arguments[2]), QImage::Format_RGB32);
  image.fill(QApplication::palette().color(QPalette::Window));
  QPainter painter(&image);
  painter.setPen(QApplication::palette().color(QPalette::WindowText));
  painter.setFont(QApplication::font());
  constexpr int margin = 12;
  painter.drawText(image.rect().adjusted(margin, margin, -margin, -margin),
                   Qt::AlignCenter | Qt::TextWordWrap, QString::fromUtf8(arguments[3]));
  painter.end();
  return image.save(QString::fromUtf8(arguments[4]), "PNG") ? 0 : 1;
}
