#include "colour_space/chromaticity_diagram.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "colour_space/colour_components.h"
#include "colour_space/colour_space_view.h"
#include "colour_space/labels.h"
#include "spectral/spectral_tables.h"

namespace tintora {

namespace {

using platform::BufferUse;
using platform::PrimitiveKind;

// Without the last sample of the grid, at 760 nm.
constexpr std::size_t locusSamples = SpectralGrid::samples - 1;
constexpr std::size_t locusCapacity = 460;

constexpr std::array<int, 24> labelledWavelengths{460, 470, 475, 480, 485, 490, 495, 500,
                                                  505, 510, 520, 530, 540, 550, 560, 570,
                                                  580, 590, 600, 610, 620, 630, 650, 440};
// 520 nm, at the top of the locus: its label stands above it.
constexpr std::size_t topLabel = 10;

struct Tristimulus {
  double X = 0.0;
  double Y = 0.0;
  double Z = 0.0;
};

// A place in the diagram as it is drawn.
struct Place {
  double x = 0.0;
  double y = 0.0;
};

struct ColourMatching {
  SpectralCurve x{};
  SpectralCurve y{};
  SpectralCurve z{};
};

const ColourMatching& colourMatching() {
  static const ColourMatching functions = [] {
    ColourMatching filled;
    fillCieXBar(filled.x);
    fillCieYBar(filled.y);
    fillCieZBar(filled.z);
    return filled;
  }();
  return functions;
}

// Returns where the diagram draws a colour: magnified four times, its middle in the middle of the
// view.
Place inDiagram(const Tristimulus& colour) {
  const double sum = colour.X + colour.Y + colour.Z;
  return {4.0 * colour.X / sum - 1.4, 4.0 * colour.Y / sum - 1.8};
}

Place inLocus(std::size_t sample) {
  const auto& [x, y, z] = colourMatching();
  return inDiagram({x[sample], y[sample], z[sample]});
}

Tristimulus tristimulus(const DisplayPrimary& primary) {
  const SpectralCurve spectrum = primarySpectrum(primary);
  const auto& [x, y, z] = colourMatching();
  return {spectralDot(spectrum, x), spectralDot(spectrum, y), spectralDot(spectrum, z)};
}

// Returns X, Y and Z of a display colour with components from 0 to 255.
Tristimulus tristimulus(const Components& colour) {
  static const Tristimulus red = tristimulus(redPrimary);
  static const Tristimulus green = tristimulus(greenPrimary);
  static const Tristimulus blue = tristimulus(bluePrimary);
  const auto mixed = [&colour](double r, double g, double b) {
    return (colour.red * r + colour.green * g + colour.blue * b) / 255.0;
  };
  return {mixed(red.X, green.X, blue.X), mixed(red.Y, green.Y, blue.Y),
          mixed(red.Z, green.Z, blue.Z)};
}

// Scales a colour to full brightness: its largest component becomes 255.
Components brightened(const Components& colour) {
  const double largest = std::max({colour.red, colour.green, colour.blue});
  const auto scaled = [largest](double component) {
    return std::max(0.0, component * 255.0 / largest);
  };
  return {scaled(colour.red), scaled(colour.green), scaled(colour.blue)};
}

void placeColour(ColourVertex& vertex, const Components& colour) {
  const Place place = inDiagram(tristimulus(colour));
  placeVertex(vertex, place.x, place.y, 0.0, packed(colour));
}

void placeTransformed(ColourVertex& vertex, const Components& colour, const Matrix3x3& matrix) {
  const Components seen = transformed(colour, matrix);
  const double largest = std::max({seen.red, seen.green, seen.blue});
  if (!isFinite(seen) || !(largest > 0.0)) return;
  const Components bright = brightened(seen);
  if (isFinite(bright)) placeColour(vertex, bright);
}

// Returns the colours along the edges of the gamut: from blue to red, to green, and back to blue.
const std::vector<Components>& edgeColours() {
  static const std::vector<Components> colours = [] {
    constexpr int steps = 40;
    constexpr std::array<std::array<double Components::*, 2>, 3> edges{{
        {&Components::blue, &Components::red},
        {&Components::red, &Components::green},
        {&Components::green, &Components::blue},
    }};
    std::vector<Components> filled;
    for (const auto& [from, to] : edges) {
      for (int k = 0; k < steps; ++k) {
        const double a = k * 255.0 / (steps - 1);
        Components colour;
        colour.*from = 255.0 - a;
        colour.*to = a;
        filled.push_back(brightened(colour));
      }
    }
    return filled;
  }();
  return colours;
}

constexpr std::size_t meshSide = 20;
constexpr std::size_t meshIndexCapacity = 7200;  // two triangles for each vertex

// Returns the colours of the three faces of the RGB cube on which one component is 255.
const std::vector<Components>& meshColours() {
  static const std::vector<Components> colours = [] {
    constexpr auto share = [](std::size_t i) {
      return static_cast<double>(i) * 255.0 / static_cast<double>(meshSide - 1);
    };
    constexpr std::array patches{
        +[](double u, double v) {
          return Components{255.0, u, v};
        },
        +[](double u, double v) {
          return Components{u, 255.0, v};
        },
        +[](double u, double v) {
          return Components{v, u, 255.0};
        },
    };
    std::vector<Components> filled;
    for (const auto& patch : patches) {
      for (std::size_t j = 0; j < meshSide; ++j) {
        for (std::size_t i = 0; i < meshSide; ++i) filled.push_back(patch(share(j), share(i)));
      }
    }
    return filled;
  }();
  return colours;
}

// Returns two triangles for every four neighbouring vertices of a patch.
std::vector<std::uint16_t> meshIndices() {
  std::vector<std::uint16_t> indices;
  const auto add = [&indices](std::size_t vertex) {
    indices.push_back(static_cast<std::uint16_t>(vertex));
  };
  for (std::size_t base = 0; base < meshColours().size(); base += meshSide * meshSide) {
    for (std::size_t row = 1; row < meshSide; ++row) {
      for (std::size_t column = 0; column + 1 < meshSide; ++column) {
        const std::size_t below = base + meshSide * row + column;
        const std::size_t above = below - meshSide;
        for (const std::size_t vertex : {above, above + 1, below}) add(vertex);
        for (const std::size_t vertex : {above + 1, below + 1, below}) add(vertex);
      }
    }
  }
  return indices;
}

// Writes a locus vertex and returns the next.
ColourVertex* writeLocus(ColourVertex* vertex, const Place& place) {
  placeVertex(*vertex, place.x, place.y, 0.0, lightGrey);
  return vertex + 1;
}

// Returns the end of a tick mark that starts at `to`, at a right angle to the locus and on its
// left.
Place tickEnd(const Place& from, const Place& to) {
  constexpr double length = 0.025;
  const double dx = to.x - from.x;
  const double dy = to.y - from.y;
  const double travelled = std::hypot(dx, dy);
  return {to.x - length * dy / travelled, to.y + length * dx / travelled};
}

void buildLocus() {
  SceneObject& locus = addObject(SceneRole::SpectralLocus, ViewCode::ChromaticityDiagram,
                                 locusCapacity, BufferUse::Managed);
  ColourVertex* next = locus.vertices.data();
  for (std::size_t sample = 0; sample < locusSamples; ++sample) {
    const Place place = inLocus(sample);
    next = writeLocus(next, place);

    const int wavelength = SpectralGrid::firstWavelength + static_cast<int>(sample);
    const auto labelled = std::ranges::find(labelledWavelengths, wavelength);
    if (labelled == labelledWavelengths.end()) continue;
    const Place previous = inLocus(sample - 1);
    const Place tick = tickEnd(previous, place);
    next = writeLocus(next, tick);
    next = writeLocus(next, place);
    colourSpaceView
        .wavelengthLabels[static_cast<std::size_t>(labelled - labelledWavelengths.begin())] = {
        std::to_string(wavelength), static_cast<float>(tick.x), static_cast<float>(tick.y),
        static_cast<float>(place.y - previous.y)};
  }
  locus.kind = PrimitiveKind::LineStrip;
  locus.count = static_cast<int>(next - locus.vertices.data()) - 1;
  uploadVertices(locus);
}

SceneObject& buildColours(SceneRole role, const std::vector<Components>& colours) {
  SceneObject& object =
      addObject(role, ViewCode::ChromaticityDiagram, colours.size(), BufferUse::Managed);
  for (std::size_t i = 0; i < colours.size(); ++i) placeColour(object.vertices[i], colours[i]);
  uploadVertices(object);
  return object;
}

void buildEdges(SceneRole role) {
  SceneObject& object = buildColours(role, edgeColours());
  object.kind = PrimitiveKind::LineStrip;
  object.count = static_cast<int>(edgeColours().size()) - 1;
}

void buildMesh() {
  SceneObject& object = buildColours(SceneRole::GamutMesh, meshColours());
  std::vector<std::uint16_t> indices = meshIndices();
  object.primitiveCount = static_cast<int>(indices.size() / 3);
  indices.resize(meshIndexCapacity);
  object.indexBuffer =
      platform::createIndexBuffer(colourSpaceView.device, indices, BufferUse::OnDevice);
  object.kind = PrimitiveKind::IndexedTriangles;
  object.count = static_cast<int>(meshColours().size());
}

void refreshColours(SceneRole role, const std::vector<Components>& colours,
                    const Matrix3x3& matrix) {
  SceneObject* const object = sceneObject(role);
  if (object == nullptr) return;
  for (std::size_t i = 0; i < colours.size(); ++i) {
    placeTransformed(object->vertices[i], colours[i], matrix);
  }
  uploadVertices(*object);
}

}  // namespace

void buildChromaticity() {
  buildLocus();
  buildEdges(SceneRole::PrimariesTriangle);
  buildMesh();
  buildEdges(SceneRole::GamutOutline);
}

void refreshGamut(const Matrix3x3& matrix) {
  refreshColours(SceneRole::GamutMesh, meshColours(), matrix);
  refreshColours(SceneRole::GamutOutline, edgeColours(), matrix);
}

void drawWavelengthLabels() {
  constexpr int offsetX = -10;
  const auto& labels = colourSpaceView.wavelengthLabels;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const WavelengthLabel& label = labels[i];
    platform::Point place = seenAt({label.x, label.y, 0.0F}, offsetX);
    if (i == topLabel) {
      place.y -= 13;
    } else if (label.direction > 0.0F) {
      place.x -= 12;
      place.y -= 5;
    } else {
      place.x += 14;
      place.y -= 10;
    }
    drawLabel(place, label.text);
  }
}

}  // namespace tintora
