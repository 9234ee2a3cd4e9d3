// Asks Direct3D for the facts of a new graphics device.
#include "platform/graphics.h"

#include <windows.h>
#include <d3d9.h>

#include <array>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "drawing_surface.h"

namespace tintora::windows_test {
namespace {

using platform::BufferUse;
using platform::ColourVertex;
using platform::identity4x4;
using platform::Matrix4x4;
using platform::PrimitiveKind;
using platform::TransformKind;

class Graphics : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(surface_.native(), nullptr); }

  platform::GraphicsDevice* device() const { return surface_.device(); }
  IDirect3DDevice9* native() const { return surface_.native(); }
  const DrawingSurface& surface() const { return surface_; }

 private:
  DrawingSurface surface_{{70, 50}};
};

void expectPlainForm(const D3DPRESENT_PARAMETERS& form, HWND window) {
  EXPECT_EQ(form.BackBufferWidth, 70U);
  EXPECT_EQ(form.BackBufferHeight, 50U);
  EXPECT_EQ(form.BackBufferFormat, D3DFMT_X8R8G8B8);
  EXPECT_EQ(form.BackBufferCount, 1U);
  EXPECT_EQ(form.MultiSampleType, D3DMULTISAMPLE_NONE);
  EXPECT_EQ(form.MultiSampleQuality, 0U);
  EXPECT_EQ(form.SwapEffect, D3DSWAPEFFECT_DISCARD);
  EXPECT_EQ(form.hDeviceWindow, window);
  EXPECT_EQ(form.Windowed, TRUE);
  EXPECT_EQ(form.EnableAutoDepthStencil, TRUE);
  EXPECT_EQ(form.AutoDepthStencilFormat, D3DFMT_D16);
  EXPECT_EQ(form.Flags, 0U);
  EXPECT_EQ(form.FullScreen_RefreshRateInHz, 0U);
  EXPECT_EQ(form.PresentationInterval, D3DPRESENT_INTERVAL_IMMEDIATE);
}

TEST_F(Graphics, ShowABackBufferOfTheSizeAskedForAtOnce) {
  IDirect3DSwapChain9* chain = nullptr;
  ASSERT_EQ(native()->GetSwapChain(0, &chain), D3D_OK);
  D3DPRESENT_PARAMETERS form{};
  chain->GetPresentParameters(&form);
  chain->Release();
  expectPlainForm(form, surface().window());
}

DWORD processingOf(IDirect3DDevice9* device) {
  D3DDEVICE_CREATION_PARAMETERS facts{};
  device->GetCreationParameters(&facts);
  return facts.BehaviorFlags &
         (D3DCREATE_HARDWARE_VERTEXPROCESSING | D3DCREATE_SOFTWARE_VERTEXPROCESSING |
          D3DCREATE_MIXED_VERTEXPROCESSING);
}

TEST_F(Graphics, BelongToTheWindowAndItsFirstAdapter) {
  D3DDEVICE_CREATION_PARAMETERS facts{};
  native()->GetCreationParameters(&facts);
  EXPECT_EQ(facts.AdapterOrdinal, static_cast<UINT>(D3DADAPTER_DEFAULT));
  EXPECT_EQ(facts.DeviceType, D3DDEVTYPE_HAL);
  EXPECT_EQ(facts.hFocusWindow, surface().window());
  EXPECT_EQ(processingOf(native()), static_cast<DWORD>(D3DCREATE_HARDWARE_VERTEXPROCESSING));
}

struct StateRow {
  const char* name;
  D3DRENDERSTATETYPE state;
  DWORD value;
};

TEST_F(Graphics, ShowUnlitColoursOfBothFacesByDepth) {
  constexpr std::array rows{
      StateRow{"colour of vertices", D3DRS_COLORVERTEX, TRUE},
      StateRow{"lighting", D3DRS_LIGHTING, FALSE},
      StateRow{"culling", D3DRS_CULLMODE, D3DCULL_NONE},
      StateRow{"depth", D3DRS_ZENABLE, D3DZB_TRUE},
  };
  for (const auto& [name, state, expected] : rows) {
    DWORD value = 0xFFFFFFFF;
    native()->GetRenderState(state, &value);
    EXPECT_EQ(value, expected) << name;
  }
}

TEST_F(Graphics, DeclareAPlaceAndAColourForEachVertex) {
  IDirect3DVertexDeclaration9* declaration = nullptr;
  ASSERT_EQ(native()->GetVertexDeclaration(&declaration), D3D_OK);
  ASSERT_NE(declaration, nullptr);
  std::array<D3DVERTEXELEMENT9, MAXD3DDECLLENGTH + 1> elements{};
  UINT count = 0;
  declaration->GetDeclaration(elements.data(), &count);
  declaration->Release();
  ASSERT_EQ(count, 3U);
  EXPECT_EQ(elements[0].Offset, 0);
  EXPECT_EQ(elements[0].Type, D3DDECLTYPE_FLOAT3);
  EXPECT_EQ(elements[0].Usage, D3DDECLUSAGE_POSITION);
  EXPECT_EQ(elements[1].Offset, 12);
  EXPECT_EQ(elements[1].Type, D3DDECLTYPE_D3DCOLOR);
  EXPECT_EQ(elements[1].Usage, D3DDECLUSAGE_COLOR);
  for (const std::size_t i : {0U, 1U}) {
    EXPECT_EQ(elements[i].Stream, 0) << i;
    EXPECT_EQ(elements[i].Method, D3DDECLMETHOD_DEFAULT) << i;
    EXPECT_EQ(elements[i].UsageIndex, 0) << i;
  }
  EXPECT_EQ(elements[2].Stream, 0xFF);
  EXPECT_EQ(elements[2].Type, D3DDECLTYPE_UNUSED);
}

TEST_F(Graphics, SetTheVertexFormatOfPlaceAndColour) {
  platform::setVertexFormat(device());
  DWORD format = 0;
  native()->GetFVF(&format);
  EXPECT_EQ(format, 66U);
}

struct PoolRow {
  BufferUse use;
  D3DPOOL pool;
};
constexpr std::array poolRows{PoolRow{BufferUse::OnDevice, D3DPOOL_DEFAULT},
                              PoolRow{BufferUse::Managed, D3DPOOL_MANAGED}};

TEST_F(Graphics, KeepVerticesWhereTheyAreUsed) {
  for (const auto& [use, pool] : poolRows) {
    platform::VertexBuffer* const vertices = platform::createVertexBuffer(device(), 7, use);
    platform::setVertexBuffer(device(), vertices);
    IDirect3DVertexBuffer9* buffer = nullptr;
    UINT offset = 1;
    UINT stride = 0;
    native()->GetStreamSource(0, &buffer, &offset, &stride);
    ASSERT_NE(buffer, nullptr);
    D3DVERTEXBUFFER_DESC facts{};
    EXPECT_EQ(buffer->GetDesc(&facts), D3D_OK);
    buffer->Release();
    EXPECT_EQ(offset, 0U);
    EXPECT_EQ(stride, 16U);
    EXPECT_EQ(facts.Pool, pool);
    EXPECT_EQ(facts.Usage, 0U);
    EXPECT_EQ(facts.FVF, 66U);
    EXPECT_EQ(facts.Size, 7U * 16U);
    native()->SetStreamSource(0, nullptr, 0, 0);
    platform::releaseVertexBuffer(vertices);
  }
}

TEST_F(Graphics, KeepIndicesWhereTheyAreUsed) {
  constexpr std::array<std::uint16_t, 5> order{4, 3, 2, 1, 0};
  for (const auto& [use, pool] : poolRows) {
    platform::IndexBuffer* const indices = platform::createIndexBuffer(device(), order, use);
    platform::setIndexBuffer(device(), indices);
    IDirect3DIndexBuffer9* buffer = nullptr;
    native()->GetIndices(&buffer);
    ASSERT_NE(buffer, nullptr);
    D3DINDEXBUFFER_DESC facts{};
    EXPECT_EQ(buffer->GetDesc(&facts), D3D_OK);
    buffer->Release();
    EXPECT_EQ(facts.Pool, pool);
    EXPECT_EQ(facts.Usage, 0U);
    EXPECT_EQ(facts.Format, D3DFMT_INDEX16);
    EXPECT_EQ(facts.Size, 5U * 2U);
    platform::setIndexBuffer(device(), nullptr);
    native()->GetIndices(&buffer);
    EXPECT_EQ(buffer, nullptr);
    platform::releaseIndexBuffer(indices);
  }
}

TEST_F(Graphics, TellTheirViewportAndTransforms) {
  EXPECT_EQ(platform::viewport(device()), (platform::Rect{0, 0, 70, 50}));
  for (const TransformKind kind :
       {TransformKind::World, TransformKind::View, TransformKind::Projection}) {
    EXPECT_EQ(platform::transform(device(), kind), identity4x4);
    Matrix4x4 matrix = identity4x4;
    matrix[3] = {1.0F, 2.0F, 3.0F + static_cast<float>(kind), 1.0F};
    platform::setTransform(device(), kind, matrix);
    EXPECT_EQ(platform::transform(device(), kind), matrix);
  }
}

// Computes a power whose last digits show if a device has lowered the precision.
double delicatePower() {
  volatile double base = 10.0;
  volatile double exponent = -0.2345678;
  return std::pow(base, exponent);
}

TEST_F(Graphics, LeaveTheProcessorsPrecisionAsItWas) {
  std::fenv_t before{};
  std::fegetenv(&before);
  const double expected = delicatePower();

  // Check first that a bare device does change the precision; otherwise this test could not fail.
  D3DPRESENT_PARAMETERS form{};
  form.Windowed = TRUE;
  form.SwapEffect = D3DSWAPEFFECT_DISCARD;
  form.hDeviceWindow = surface().window();
  IDirect3DDevice9* bare = nullptr;
  device()->direct3d->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, surface().window(),
                                   D3DCREATE_HARDWARE_VERTEXPROCESSING, &form, &bare);
  const double upset = delicatePower();
  std::fesetenv(&before);
  ASSERT_NE(bare, nullptr);
  bare->Release();
  EXPECT_NE(upset, expected);

  const DrawingSurface another({20, 20});
  EXPECT_EQ(delicatePower(), expected);
}

struct PrimitiveRow {
  PrimitiveKind kind;
  bool indexed;
  int primitives;
  std::vector<platform::Point> covered;  // places in pixels that the primitives cover
  std::vector<platform::Point> bare;
};

void PrintTo(const PrimitiveRow& row, std::ostream* out) {
  *out << "kind " << static_cast<int>(row.kind);
}

class Primitives : public Graphics, public testing::WithParamInterface<PrimitiveRow> {};

// The corners of a square of 40 pixels, clockwise from the left top one. Indices start at the
// second corner.
TEST_P(Primitives, AreDrawnByTheirKind) {
  const PrimitiveRow& row = GetParam();
  const auto corner = [](float x, float y) {
    return ColourVertex{x / 35.0F - 1.0F, 1.0F - y / 25.0F, 0.5F, 0xFFFF8000};
  };
  const std::array corners{corner(5, 5), corner(45, 5), corner(45, 45), corner(5, 45)};
  platform::VertexBuffer* const vertices =
      platform::createVertexBuffer(device(), corners.size(), BufferUse::OnDevice);
  platform::fillVertexBuffer(vertices, corners);
  constexpr std::array<std::uint16_t, 6> order{1, 2, 3, 3, 0, 1};
  platform::IndexBuffer* const indices =
      platform::createIndexBuffer(device(), order, BufferUse::Managed);
  const Picture picture = surface().drawn([&] {
    platform::setVertexFormat(device());
    platform::setVertexBuffer(device(), vertices);
    platform::setIndexBuffer(device(), row.indexed ? indices : nullptr);
    if (row.indexed) {
      platform::drawIndexed(device(), row.kind, static_cast<int>(corners.size()), row.primitives);
    } else {
      platform::drawUnindexed(device(), row.kind, row.primitives);
    }
  });
  platform::releaseVertexBuffer(vertices);
  platform::releaseIndexBuffer(indices);

  // Allow a line to lie one pixel to either side.
  const auto isCovered = [&](const platform::Point& place) {
    for (int y = place.y - 1; y <= place.y + 1; ++y) {
      for (int x = place.x - 1; x <= place.x + 1; ++x) {
        if (picture.at(x, y) == Colour{255, 128, 0}) return true;
      }
    }
    return false;
  };
  for (const platform::Point& place : row.covered) {
    EXPECT_TRUE(isCovered(place)) << place.x << "," << place.y;
  }
  for (const platform::Point& place : row.bare) {
    EXPECT_FALSE(isCovered(place)) << place.x << "," << place.y;
  }
}

constexpr platform::Point topPoint{25, 5};
constexpr platform::Point rightPoint{45, 25};
constexpr platform::Point bottomPoint{25, 45};
constexpr platform::Point leftPoint{5, 25};
constexpr platform::Point rightTop{38, 12};
constexpr platform::Point rightBottom{38, 38};
constexpr platform::Point leftTop{12, 12};
constexpr platform::Point leftBottom{12, 38};

INSTANTIATE_TEST_SUITE_P(
    All, Primitives,
    testing::Values(
        PrimitiveRow{PrimitiveKind::IndexedTriangles, true, 1, {rightBottom}, {leftTop}},
        PrimitiveRow{PrimitiveKind::IndexedTriangles, true, 2, {rightBottom, leftTop}, {}},
        PrimitiveRow{
            PrimitiveKind::IndexedLines, true, 1, {rightPoint}, {topPoint, bottomPoint, leftPoint}},
        PrimitiveRow{PrimitiveKind::IndexedLines, true, 3, {rightPoint, topPoint}, {rightTop}},
        PrimitiveRow{
            PrimitiveKind::LineStrip, false, 3, {topPoint, rightPoint, bottomPoint}, {leftPoint}},
        PrimitiveRow{
            PrimitiveKind::Lines, false, 2, {topPoint, bottomPoint}, {leftPoint, rightPoint}},
        PrimitiveRow{PrimitiveKind::Triangles, false, 1, {rightTop}, {leftBottom}}));

// If the desktop cannot draw, every function does nothing.
TEST(MissingGraphics, AreNeverMissed) {
  platform::GraphicsDevice none{.direct3d = nullptr, .device = nullptr, .size = {30, 20}};
  platform::VertexBuffer* const vertices =
      platform::createVertexBuffer(&none, 3, BufferUse::OnDevice);
  constexpr std::array<std::uint16_t, 2> order{0, 1};
  platform::IndexBuffer* const indices =
      platform::createIndexBuffer(&none, order, BufferUse::OnDevice);
  platform::TextFont* const font = platform::createTextFont(&none, {"Tahoma", 16, false});
  ASSERT_NE(vertices, nullptr);
  ASSERT_NE(indices, nullptr);
  ASSERT_NE(font, nullptr);
  const std::array<ColourVertex, 3> corners{};
  platform::fillVertexBuffer(vertices, corners);
  platform::setTransform(&none, TransformKind::View, identity4x4);
  platform::clearPicture(&none, 0);
  platform::clearDepth(&none);
  platform::beginScene(&none);
  platform::setVertexFormat(&none);
  platform::setVertexBuffer(&none, vertices);
  platform::setIndexBuffer(&none, indices);
  platform::drawIndexed(&none, PrimitiveKind::IndexedLines, 3, 1);
  platform::drawUnindexed(&none, PrimitiveKind::Lines, 1);
  EXPECT_EQ(platform::drawText(&none, font, {0, 0, 30, 20}, 0xFFFFFFFF, "text"), 16);
  platform::endScene(&none);
  platform::present(&none);
  EXPECT_EQ(platform::transform(&none, TransformKind::View), identity4x4);
  EXPECT_EQ(platform::viewport(&none), (platform::Rect{0, 0, 30, 20}));
  platform::releaseTextFont(font);
  platform::releaseIndexBuffer(indices);
  platform::releaseVertexBuffer(vertices);
}

}  // namespace
}  // namespace tintora::windows_test
