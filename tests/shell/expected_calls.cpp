#include "expected_calls.h"

#include "platform/window.h"
#include "shell/shell_state.h"

namespace tintora {

namespace {

using platform::nullDesktop;
using platform::Point;
using platform::Rect;

std::string mark(const char* menu, int position, bool checked) {
  return std::string("checkMenuItem ") + menu + ' ' + std::to_string(position) +
         (checked ? " true" : " false");
}

// The menus are created in a fixed order: nine empty ones first, the alternative transforms as the
// third of those that are filled and the main menu as the last.
constexpr const char* mainMenu = "menu 18";
constexpr const char* alternativeTransformsMenu = "menu 12";

Calls caption(int view) {
  switch (view) {
    case 702:
      return {"setTitle colour space Photoreceptor Response Curves"};
    case 703:
      return {"setTitle colour space RGB Cube"};
    case 704:
      return {"setTitle colour space Chromaticity Diagram"};
    case 705:
      return {"setTitle colour space Help"};
    default:
      return {};
  }
}

// What the message loop does after every event.
Calls turnOfLoop() {
  Calls calls = sourceSet(expectedSource());
  if (colourSpaceWindow().shown == platform::ShowState::Hidden) return calls;
  return joined({calls, caption(static_cast<int>(shellState.view)), frameDrawn()});
}

}  // namespace

Calls joined(std::initializer_list<Calls> lists) {
  Calls all;
  for (const Calls& list : lists) all.insert(all.end(), list.begin(), list.end());
  return all;
}

Calls mainMark(int position, bool checked) {
  return {mark(mainMenu, position, checked)};
}

Calls algorithmMark(int position, bool checked) {
  return {mark(alternativeTransformsMenu, position, checked)};
}

Calls marksCleared(const ViewerItems& items) {
  Calls calls;
  for (const int position : {1, 2, 3, items.simulation, items.daltonize, items.inverseTransform,
                             items.swapRedAndBlue, items.otherColourEffects}) {
    calls.push_back(mark(mainMenu, position, false));
  }
  for (const int position : {0, 1, 2, 3, 4, 5, 6}) {
    calls.push_back(mark(alternativeTransformsMenu, position, false));
  }
  return calls;
}

Calls applied(const Application& application, const ViewerItems& items) {
  Calls calls = joined({marksCleared(items), algorithmMark(application.algorithmItem, true),
                        mainMark(application.viewerItem, true)});
  if (application.typeItem != 0) calls.push_back(mark(mainMenu, application.typeItem, true));
  calls.push_back("setTitle main " + application.title);
  calls.emplace_back("setColourEffect magnifier");
  return application.refreshesViews ? joined({calls, viewsRefreshed()}) : calls;
}

Calls simulated(int type, const std::string& title, int viewerItem) {
  return applied(
      {.title = title, .viewerItem = viewerItem, .typeItem = type, .refreshesViews = true});
}

Calls otherEffect(const std::string& title, int viewerItem) {
  return applied({.title = title, .viewerItem = viewerItem});
}

Calls switchedOff() {
  return {"setColourEffect magnifier",
          "setTitle main Transform off, press Tab to turn transform back on"};
}

Calls magnifierInvalidated() {
  return {"invalidateMagnifier magnifier"};
}

Calls sourceSet(const std::string& source) {
  return {"setMagnifierSource magnifier " + source, "invalidateMagnifier magnifier"};
}

Calls painted(const std::string& controlText) {
  return {"beginPainting control", "endPainting", "setTitle control " + controlText,
          "invalidateWindow control"};
}

// The cube and its frame, three reference and three live curves, then the locus, the primaries, the
// gamut and its outline.
Calls deviceCreated(int width, int height) {
  return {
      "createGraphicsDevice colour space " + std::to_string(width) + 'x' + std::to_string(height),
      "fillVertexBuffer 8",
      "fillVertexBuffer 8",
      "fillVertexBuffer 400",
      "fillVertexBuffer 400",
      "fillVertexBuffer 400",
      "fillVertexBuffer 400",
      "fillVertexBuffer 400",
      "fillVertexBuffer 400",
      "fillVertexBuffer 460",
      "fillVertexBuffer 120",
      "fillVertexBuffer 1200",
      "fillVertexBuffer 120"};
}

// The cube, the live curves, the gamut and its outline.
Calls viewsRefreshed() {
  return {"fillVertexBuffer 8",   "fillVertexBuffer 400",  "fillVertexBuffer 400",
          "fillVertexBuffer 400", "fillVertexBuffer 1200", "fillVertexBuffer 120"};
}

Calls frameDrawn() {
  return {"present"};
}

Calls besideMain() {
  return {"setWindowBounds colour space 1214,340,1614,740"};
}

Calls shownBesideMain() {
  return joined({besideMain(), {"showWindow colour space shown"}});
}

void expectCalls(const Calls& expected) {
  EXPECT_EQ(callsOfEvent(), joined({expected, turnOfLoop()}));
}

std::string expectedSource() {
  const platform::Window& window = mainWindow();
  const Point origin = platform::clientOrigin(&window);
  const bool large = window.maximised;
  return text(Rect{origin.x, origin.y, large ? nullDesktop().screen.width : window.bounds.right,
                   large ? nullDesktop().screen.height : window.bounds.bottom});
}

std::string text(const Rect& rect) {
  return std::to_string(rect.left) + ',' + std::to_string(rect.top) + ',' +
         std::to_string(rect.right) + ',' + std::to_string(rect.bottom);
}

}  // namespace tintora
