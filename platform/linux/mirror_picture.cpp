#include "platform/linux/mirror_picture.h"

#include <QAbstractEventDispatcher>
#include <QFont>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QRegion>
#include <QScreen>
#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/linux/handles.h"
#include "platform/linux/pipewire_stream.h"
#include "platform/linux/screen_place.h"
#include "platform/linux/smooth_scaling.h"
#include "platform/linux/view_frames.h"
#include "platform/linux/window_frame.h"
#include "platform/linux/x_server.h"

namespace tintora::platform {

namespace {

struct MirrorPicture {
  Window* parent = nullptr;
  xcb_window_t window = XCB_NONE;
  QSize size;  // of the view
  PixelFilter filter{};
  ViewFrames frames;
  QImage source;          // the last frame, blue first
  QRect place;            // of the picture in the view
  QString text;           // shown while there is no frame
  QSize given;            // the client area that the main window got for the source's size
  bool unfitted = false;  // the main window has still to take it, because it was maximised
  QRegion toScale;        // parts of the view: to be scaled and filtered
  QRegion toFilter;       // to be filtered only
};
MirrorPicture mirrored;

QRect mirrorArea() {
  return {QPoint(), mirrored.size};
}

bool isScaled() {
  return mirrored.place.size() != mirrored.source.size();
}

// Returns the picture's place in the view. Only full screen enlarges a picture.
QRect placeInView() {
  const QSize source = mirrored.source.size();
  const bool fits = source.boundedTo(mirrored.size) == source;
  const bool fills = mirrored.parent->form == WindowForm::FullScreen;
  const QSize size = fits && !fills ? source
                                    : source.scaled(mirrored.size, Qt::KeepAspectRatio)
                                          .expandedTo(QSize(1, 1))
                                          .boundedTo(mirrored.size);
  return {QPoint((mirrored.size.width() - size.width()) / 2,
                 (mirrored.size.height() - size.height()) / 2),
          size};
}

void layOut() {
  if (mirrored.size.isEmpty()) return;
  if (!mirrored.source.isNull()) mirrored.place = placeInView();
  mirrored.toScale = mirrorArea();
}

void fitMainWindow() {
  Window* const window = mirrored.parent;
  mirrored.unfitted = isMaximised(window);
  if (mirrored.unfitted) return;
  const QSize frame = outerBounds(window).size() - window->window->size();
  // Keeps the size if the user has chosen it.
  const QSize client = boundsAskedFor(window).size() - frame;
  if (!mirrored.given.isEmpty() && client != mirrored.given) return;
  const QRect room = window->window->screen()->availableGeometry();
  const QSize most = room.size() - frame;
  constexpr QSize least(200, 100);  // leaves a title bar to drag the window by
  const QSize source = mirrored.source.size();
  const QSize fitting = source.boundedTo(most) == source ? source.expandedTo(least)
                                                         : source.scaled(most, Qt::KeepAspectRatio);
  QRect outer(boundsAskedFor(window).topLeft(), fitting + frame);
  outer.moveRight(std::min(outer.right(), room.right()));
  outer.moveBottom(std::min(outer.bottom(), room.bottom()));
  outer.moveLeft(std::max(outer.left(), room.left()));
  outer.moveTop(std::max(outer.top(), room.top()));
  mirrored.given = fitting;
  setWindowBounds(window, fromRoot(outer));
}

// Replaces many small parts by one part around them.
QRegion simplified(const QRegion& region) {
  constexpr int most = 16;
  return region.rectCount() > most ? QRegion(region.boundingRect()) : region;
}

// Handles events until there are none. Returns true if any was an exposure.
bool noteExposures(xcb_generic_event_t* (*poll)(xcb_connection_t*)) {
  bool any = false;
  while (const Received<xcb_generic_event_t> event{poll(x())}) {
    if ((event->response_type & 0x7F) != XCB_EXPOSE) continue;
    const auto& exposed = reinterpret_cast<const xcb_expose_event_t&>(*event);
    mirrored.toFilter += QRect(exposed.x, exposed.y, exposed.width, exposed.height);
    any = true;
  }
  return any;
}

void clearPart(const QRect& part) {
  const ViewFrames& frames = mirrored.frames;
  for (int y = part.top(); y <= part.bottom(); ++y) {
    std::memset(frames.filtered.bytes + frames.offset({part.left(), y}), 0,
                std::size_t{4} * static_cast<std::size_t>(part.width()));
  }
}

void scalePart(const QRect& part) {
  const QImage& source = std::as_const(mirrored.source);
  const ViewFrames& frames = mirrored.frames;
  scaleByArea({source.constBits(), source.bytesPerLine(), source.size()}, mirrored.place.size(),
              part.translated(-mirrored.place.topLeft()),
              frames.unfiltered.bytes + frames.offset(part.topLeft()), frames.stride());
}

// Filters a part of the view. A picture at its own size is read from the frame without scaling.
void filterPart(const QRect& part) {
  const QImage& source = std::as_const(mirrored.source);
  const ViewFrames& frames = mirrored.frames;
  const QPoint inPicture = part.topLeft() - mirrored.place.topLeft();
  const std::uint8_t* const from =
      isScaled() ? frames.unfiltered.bytes + frames.offset(part.topLeft())
                 : source.constBits() + inPicture.y() * source.bytesPerLine() + 4L * inPicture.x();
  filterRows(mirrored.filter, from, isScaled() ? frames.stride() : source.bytesPerLine(),
             frames.filtered.bytes + frames.offset(part.topLeft()), frames.stride(),
             static_cast<std::size_t>(part.width()), static_cast<std::size_t>(part.height()));
}

void drawText() {
  const ViewFrames& frames = mirrored.frames;
  QImage image(frames.filtered.bytes, mirrored.size.width(), mirrored.size.height(),
               static_cast<qsizetype>(frames.stride()), QImage::Format_RGB32);
  const QPalette colours = QGuiApplication::palette();
  image.fill(colours.color(QPalette::Window));
  QPainter painter(&image);
  painter.setPen(colours.color(QPalette::WindowText));
  painter.setFont(QGuiApplication::font());
  constexpr int margin = 12;
  painter.drawText(mirrorArea().adjusted(margin, margin, -margin, -margin),
                   Qt::AlignCenter | Qt::TextWordWrap, mirrored.text);
}

void show(const QRegion& region) {
  for (const QRect& part : inParts(region))
    showFiltered(mirrored.frames, mirrored.window, part, part.topLeft());
}

void drawPicture(const QRegion& toScale, const QRegion& toFilter) {
  for (const QRect& part : toScale - mirrored.place) clearPart(part);
  if (isScaled()) {
    for (const QRect& part : toScale& mirrored.place) scalePart(part);
  }
  for (const QRect& part : inParts((toScale + toFilter) & mirrored.place)) filterPart(part);
}

}  // namespace

void startMirrorPicture(Window* parent, xcb_window_t window) {
  mirrored.parent = parent;
  mirrored.window = window;
}

void stopMirrorPicture() {
  releaseFrames(mirrored.frames);
  xcb_destroy_window(x(), mirrored.window);
  mirrored = {};
}

void setMirrorSize(const QSize& size) {
  if (mirrored.unfitted && !mirrored.source.isNull()) fitMainWindow();
  const bool sameForm =
      mirrored.source.isNull() || size.isEmpty() || placeInView() == mirrored.place;
  if (size == mirrored.size && sameForm) return;
  mirrored.size = size;
  if (size.isEmpty()) return;
  makeRoom(mirrored.frames, size, xServer.sharing);
  layOut();
}

void setMirrorFilter(const PixelFilter& filter) {
  mirrored.filter = filter;
  mirrored.toFilter = mirrorArea();
}

void showNewestFrame() {
  const QSize before = mirrored.source.size();
  const QRegion changed = takeNewestFrame(mirrored.source);
  if (changed.isEmpty()) return;
  const QSize size = mirrored.source.size();
  if (size != before) {
    fitMainWindow();
    layOut();
  }
  if (mirrored.size.isEmpty()) return;
  for (const QRect& part : simplified(changed)) {
    mirrored.toScale +=
        scaledPart(part, size, mirrored.place.size()).translated(mirrored.place.topLeft());
  }
}

void showText(std::string_view text) {
  mirrored.source = QImage();
  mirrored.text = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  mirrored.toScale = mirrorArea();
}

void updateMirror() {
  if (mirrored.window == XCB_NONE) return;
  noteExposures(&xcb_poll_for_event);
  if (mirrored.size.isEmpty()) return;
  const QRegion toScale = std::exchange(mirrored.toScale, {}) & mirrorArea();
  const QRegion toFilter = std::exchange(mirrored.toFilter, {}) & mirrorArea();
  if (toScale.isEmpty() && toFilter.isEmpty()) return;
  // The server may still be reading the pixels that were shown before.
  waitForXServer();
  if (mirrored.source.isNull()) {
    drawText();
  } else {
    drawPicture(toScale, toFilter);
  }
  show(toScale + toFilter);
  xcb_flush(x());
  // Events that were read along with the reply leave the socket empty, so they would not wake the
  // loop.
  if (noteExposures(&xcb_poll_for_queued_event)) QAbstractEventDispatcher::instance()->wakeUp();
}

void finishMirror() {
  updateMirror();
  waitForXServer();
}

QImage filteredPicture() {
  const QImage& source = std::as_const(mirrored.source);
  if (source.isNull()) return {};
  QImage filtered(source.size(), QImage::Format_RGB32);
  filterRows(mirrored.filter, source.constBits(), source.bytesPerLine(), filtered.bits(),
             filtered.bytesPerLine(), static_cast<std::size_t>(source.width()),
             static_cast<std::size_t>(source.height()));
  return filtered;
}

}  // namespace tintora::platform
