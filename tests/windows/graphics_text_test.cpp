// Text on a graphics device, drawn by D3DX and painted by the desktop.
#include <windows.h>
#include <d3d9.h>
#include <d3dx9core.h>

#include <array>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "drawing_surface.h"
#include "ink.h"
#include "platform/graphics.h"
#include "platform/windows/painted_text.h"
#include "replaced_pointer.h"

namespace tintora::windows_test {
namespace {

using platform::PackedColour;
using platform::Rect;
using platform::Size;
using platform::TextFontForm;

constexpr Size surfaceSize{440, 60};
constexpr PackedColour opaqueWhite = 0xFFFFFFFF;

// The same fonts as in the views.
constexpr TextFontForm titleForm{"Microsoft Sans Serif", 16, true};
constexpr TextFontForm labelForm{"Microsoft Sans Serif", 14, false};

class GraphicsText : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(surface_.native(), nullptr); }

  const DrawingSurface& surface() const { return surface_; }
  IDirect3DDevice9* native() const { return surface_.native(); }

  struct Drawn {
    Picture picture;
    int height = 0;
  };
  Drawn drawnByD3dx(const TextFontForm& form, const Rect& area, PackedColour colour,
                    const std::string& text) const {
    platform::TextFont* const font = platform::createTextFont(surface_.device(), form);
    Drawn drawn;
    drawn.picture = surface_.drawn(
        [&] { drawn.height = platform::drawText(surface_.device(), font, area, colour, text); });
    platform::releaseTextFont(font);
    return drawn;
  }
  Drawn drawnByDesktop(const TextFontForm& form, const Rect& area, PackedColour colour,
                       const std::string& text) const {
    platform::PaintedFont* const font = platform::createPaintedFont(native(), form);
    Drawn drawn;
    drawn.picture =
        surface_.drawn([&] { drawn.height = drawPaintedText(font, area, colour, text); });
    platform::releasePaintedFont(font);
    return drawn;
  }

 private:
  DrawingSurface surface_{surfaceSize};
};

struct TextRow {
  const char* name;
  TextFontForm form;
  Rect area;
  PackedColour colour;
  const char* text;
};

void PrintTo(const TextRow& row, std::ostream* out) {
  *out << row.name;
}

struct FontRow {
  const char* name;
  TextFontForm form;
  INT height;
  BYTE precision;
};

TEST_F(GraphicsText, AsksD3dxForThePlainFontOfItsHeight) {
  constexpr std::array rows{FontRow{"title", titleForm, 16, 7}, FontRow{"label", labelForm, 14, 0}};
  for (const auto& [name, form, height, precision] : rows) {
    platform::TextFont* const font = platform::createTextFont(surface().device(), form);
    ASSERT_NE(font->font, nullptr) << name;
    D3DXFONT_DESCA facts{};
    EXPECT_EQ(font->font->GetDescA(&facts), D3D_OK) << name;
    platform::releaseTextFont(font);
    EXPECT_EQ(facts.Height, height) << name;
    EXPECT_EQ(facts.Width, 0U) << name;
    EXPECT_EQ(facts.Weight, 400U) << name;
    EXPECT_EQ(facts.MipLevels, 1U) << name;
    EXPECT_EQ(facts.Italic, FALSE) << name;
    EXPECT_EQ(facts.CharSet, DEFAULT_CHARSET) << name;
    EXPECT_EQ(facts.OutputPrecision, precision) << name;
    EXPECT_EQ(facts.Quality, 0) << name;
    EXPECT_EQ(facts.PitchAndFamily, 0) << name;
    EXPECT_STREQ(facts.FaceName, "Microsoft Sans Serif") << name;
  }
}

class BothWays : public GraphicsText, public testing::WithParamInterface<TextRow> {};

// Wine's D3DX places letters half a pixel up and to the left, which smooths them and loses their
// last row and column.
TEST_P(BothWays, LooksTheSame) {
  const auto& [name, form, area, colour, text] = GetParam();
  ASSERT_NE(GetModuleHandleA("d3dx9_43.dll"), nullptr);
  const Drawn byD3dx = drawnByD3dx(form, area, colour, text);
  const Drawn byDesktop = drawnByDesktop(form, area, colour, text);
  EXPECT_EQ(byDesktop.height, byD3dx.height);
  const Likeness likeness = likenessOf(byDesktop.picture, byD3dx.picture);
  EXPECT_GE(likeness.x, -1);
  EXPECT_LE(likeness.x, 0);
  EXPECT_GE(likeness.y, -1);
  EXPECT_LE(likeness.y, 0);
  EXPECT_GT(likeness.correlation, 0.75);
}

TEST_P(BothWays, StaysInItsArea) {
  const auto& [name, form, area, colour, text] = GetParam();
  const Bounds ink = inkOf(drawnByDesktop(form, area, colour, text).picture).bounds;
  EXPECT_GT(ink.width(), 0);
  EXPECT_GE(ink.left, area.left);
  EXPECT_GE(ink.top, area.top);
  EXPECT_LE(ink.right, area.right);
  EXPECT_LE(ink.bottom, area.bottom);
}

INSTANTIATE_TEST_SUITE_P(
    Of, BothWays,
    testing::Values(
        TextRow{"Title",
                titleForm,
                {12, 10, 412, 60},
                opaqueWhite,
                "Simulation - Deuteranomalous 60% severity"},
        TextRow{"Shadow", titleForm, {13, 11, 412, 60}, 0xFF000000, "Daltonize"},
        TextRow{"Label", labelForm, {200, 20, 300, 60}, 0xFFB4B4B4, "700nm"},
        TextRow{"Yellow",
                titleForm,
                {16, 12, 416, 60},
                0xFFFFFF00,
                "Right-Click for the application menu with more options"},
        TextRow{"WindowsText",
                titleForm,
                {12, 10, 412, 60},
                opaqueWhite,
                "Vi\xE9not & Brettel, \xC4\xD6\xDC \x80"},
        TextRow{"Blanks", titleForm, {12, 10, 412, 60}, opaqueWhite, "  two  and  two"},
        TextRow{"CutOnTheRight", titleForm, {12, 10, 52, 60}, opaqueWhite, "Simulation"},
        TextRow{"CutBelow", titleForm, {12, 10, 412, 18}, opaqueWhite, "Simulation"},
        TextRow{"CutByTheWindow", titleForm, {400, 10, 800, 60}, opaqueWhite, "Simulation"},
        TextRow{"Beyond", labelForm, {-10, 50, 90, 100}, opaqueWhite, "440 450 460"},
        TextRow{"HalfTransparent", titleForm, {12, 10, 412, 60}, 0x80FF8000, "Simulation"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(GraphicsText, IsCutOffWithoutMoving) {
  const Drawn whole = drawnByDesktop(titleForm, {12, 10, 412, 60}, opaqueWhite, "Simulation");
  const Drawn cut = drawnByDesktop(titleForm, {12, 10, 40, 21}, opaqueWhite, "Simulation");
  for (int y = 0; y < surfaceSize.height; ++y) {
    for (int x = 0; x < surfaceSize.width; ++x) {
      const bool inside = x < 40 && y < 21;
      ASSERT_EQ(cut.picture.at(x, y), inside ? whole.picture.at(x, y) : background)
          << x << "," << y;
    }
  }
}

TEST_F(GraphicsText, IsNothingInAnEmptyArea) {
  for (const Rect& area : {Rect{10, 10, 10, 50}, Rect{10, 10, 50, 10}, Rect{50, 10, 20, 50}}) {
    const Drawn drawn = drawnByDesktop(titleForm, area, opaqueWhite, "Simulation");
    EXPECT_EQ(inkOf(drawn.picture).bounds.right, 0);
    EXPECT_EQ(drawn.height, 16);
  }
}

TEST_F(GraphicsText, MayBeEmpty) {
  const Drawn drawn = drawnByDesktop(titleForm, {12, 10, 412, 60}, opaqueWhite, "");
  EXPECT_EQ(inkOf(drawn.picture).bounds.right, 0);
}

TEST_F(GraphicsText, MayBeLongerThanAnyTexture) {
  const Drawn drawn =
      drawnByDesktop(titleForm, {12, 10, 412, 60}, opaqueWhite, std::string(5000, 'W'));
  EXPECT_EQ(inkOf(drawn.picture).bounds.right, 412);
}

// Returns all states that a device can be asked for.
std::vector<std::uint64_t> statesOf(IDirect3DDevice9* device) {
  std::vector<std::uint64_t> states;
  DWORD value = 0;
  for (int state = D3DRS_ZENABLE; state <= D3DRS_BLENDOPALPHA; ++state) {
    value = 0;
    device->GetRenderState(static_cast<D3DRENDERSTATETYPE>(state), &value);
    states.push_back(value);
  }
  for (DWORD stage = 0; stage < 8; ++stage) {
    for (int state = D3DTSS_COLOROP; state <= D3DTSS_CONSTANT; ++state) {
      value = 0;
      device->GetTextureStageState(stage, static_cast<D3DTEXTURESTAGESTATETYPE>(state), &value);
      states.push_back(value);
    }
    for (int state = D3DSAMP_ADDRESSU; state <= D3DSAMP_DMAPOFFSET; ++state) {
      value = 0;
      device->GetSamplerState(stage, static_cast<D3DSAMPLERSTATETYPE>(state), &value);
      states.push_back(value);
    }
    IDirect3DBaseTexture9* texture = nullptr;
    device->GetTexture(stage, &texture);
    states.push_back(reinterpret_cast<std::uint64_t>(texture));
    if (texture != nullptr) texture->Release();
  }
  device->GetFVF(&value);
  states.push_back(value);
  IDirect3DVertexBuffer9* buffer = nullptr;
  UINT offset = 0;
  UINT stride = 0;
  device->GetStreamSource(0, &buffer, &offset, &stride);
  states.insert(states.end(), {reinterpret_cast<std::uint64_t>(buffer), offset, stride});
  if (buffer != nullptr) buffer->Release();
  IDirect3DIndexBuffer9* indices = nullptr;
  device->GetIndices(&indices);
  states.push_back(reinterpret_cast<std::uint64_t>(indices));
  if (indices != nullptr) indices->Release();
  return states;
}

TEST_F(GraphicsText, LeavesTheDeviceAsItWas) {
  IDirect3DTexture9* texture = nullptr;
  native()->CreateTexture(8, 8, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &texture, nullptr);
  platform::VertexBuffer* const vertices =
      platform::createVertexBuffer(surface().device(), 4, platform::BufferUse::OnDevice);
  native()->SetTexture(0, texture);
  platform::setVertexFormat(surface().device());
  platform::setVertexBuffer(surface().device(), vertices);
  native()->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_ONE);
  native()->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_ADD);
  native()->SetSamplerState(0, D3DSAMP_MAGFILTER, D3DTEXF_LINEAR);
  platform::PaintedFont* const font = platform::createPaintedFont(native(), titleForm);
  const std::vector<std::uint64_t> before = statesOf(native());
  surface().drawn([&] { drawPaintedText(font, {12, 10, 412, 60}, opaqueWhite, "Simulation"); });
  EXPECT_EQ(statesOf(native()), before);
  platform::releasePaintedFont(font);
  EXPECT_EQ(statesOf(native()), before);
  native()->SetTexture(0, nullptr);
  texture->Release();
  platform::releaseVertexBuffer(vertices);
}

// Each texture holds a reference to its device.
TEST_F(GraphicsText, KeepsAFewOfItsLines) {
  const ULONG withoutFont = holdersOf(native());
  platform::PaintedFont* const font = platform::createPaintedFont(native(), titleForm);
  const ULONG atFirst = holdersOf(native());
  const auto draw = [&](int number) {
    surface().drawn([&] {
      drawPaintedText(font, {12, 10, 412, 60}, opaqueWhite, "line " + std::to_string(number));
    });
  };
  draw(0);
  EXPECT_EQ(holdersOf(native()), atFirst + 1);
  draw(0);
  EXPECT_EQ(holdersOf(native()), atFirst + 1);
  for (int number = 1; number < 200; ++number) draw(number);
  const ULONG kept = holdersOf(native()) - atFirst;
  EXPECT_GE(kept, 31U);  // the lines of the view with the most text
  EXPECT_LE(kept, 100U);
  platform::releasePaintedFont(font);
  EXPECT_EQ(holdersOf(native()), withoutFont);
}

// The index of the call in its interface.
constexpr std::size_t createTexture = 23;

HRESULT WINAPI refuseTexture(IDirect3DDevice9* /*device*/, UINT /*width*/, UINT /*height*/,
                             UINT /*levels*/, DWORD /*usage*/, D3DFORMAT /*format*/,
                             D3DPOOL /*pool*/, IDirect3DTexture9** /*texture*/,
                             HANDLE* /*shared*/) {
  return E_OUTOFMEMORY;
}

TEST_F(GraphicsText, IsNothingWhileThereIsNoTextureForIt) {
  platform::PaintedFont* const font = platform::createPaintedFont(native(), titleForm);
  int height = 0;
  const auto draw = [&] {
    height = drawPaintedText(font, {12, 10, 412, 60}, opaqueWhite, "Simulation");
  };
  {
    const ReplacedPointer refused = replaceCall(native(), createTexture, refuseTexture);
    EXPECT_EQ(inkOf(surface().drawn(draw)).bounds.right, 0);
    EXPECT_EQ(height, 16);
  }
  EXPECT_GT(inkOf(surface().drawn(draw)).amount, 20.0);
  platform::releasePaintedFont(font);
}

TEST_F(GraphicsText, EndsThoughSomethingElseHoldsTheFont) {
  const ULONG withoutFont = holdersOf(native());
  platform::TextFont* const font = platform::createTextFont(surface().device(), titleForm);
  ASSERT_NE(font->font, nullptr);
  font->font->AddRef();
  EXPECT_GT(holdersOf(native()), withoutFont);
  platform::releaseTextFont(font);
  EXPECT_EQ(holdersOf(native()), withoutFont);
}

}  // namespace
}  // namespace tintora::windows_test
