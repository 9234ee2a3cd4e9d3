#include "platform/graphics.h"

#include <windows.h>
#include <d3d9.h>

#include <array>
#include <bit>
#include <cfenv>
#include <cstring>

#include "platform/windows/graphics_device.h"
#include "platform/windows/handles.h"
#include "platform/windows/scale.h"
#include "platform/windows/system_library.h"
#include "platform/windows/table.h"

namespace tintora::platform {

struct VertexBuffer {
  IDirect3DVertexBuffer9* buffer = nullptr;
};

struct IndexBuffer {
  IDirect3DIndexBuffer9* buffer = nullptr;
};

namespace {

constexpr DWORD vertexFormat = D3DFVF_XYZ | D3DFVF_DIFFUSE;
static_assert(sizeof(ColourVertex) == 16);
static_assert(sizeof(Matrix4x4) == sizeof(D3DMATRIX));

// Indexed by TransformKind.
constexpr std::array transformStates{D3DTS_WORLD, D3DTS_VIEW, D3DTS_PROJECTION};

// Indexed by PrimitiveKind.
constexpr std::array primitiveTypes{D3DPT_TRIANGLELIST, D3DPT_LINELIST, D3DPT_LINESTRIP,
                                    D3DPT_LINELIST, D3DPT_TRIANGLELIST};

// Indexed by BufferUse.
constexpr std::array pools{D3DPOOL_DEFAULT, D3DPOOL_MANAGED};

constexpr std::array renderStates{
    RenderState{D3DRS_COLORVERTEX, TRUE},
    RenderState{D3DRS_LIGHTING, FALSE},
    RenderState{D3DRS_CULLMODE, D3DCULL_NONE},
    RenderState{D3DRS_ZENABLE, D3DZB_TRUE},
};

using CreateDirect3d = decltype(Direct3DCreate9);

// Returns null if the desktop has no Direct3D.
CreateDirect3d* findCreateDirect3d() {
  const HMODULE library = loadSystemLibrary("d3d9.dll");
  return library == nullptr ? nullptr : libraryFunction<CreateDirect3d>(library, "Direct3DCreate9");
}

IDirect3D9* createDirect3d() {
  static CreateDirect3d* const create = findCreateDirect3d();
  return create == nullptr ? nullptr : create(D3D_SDK_VERSION);
}

// Restores the floating-point environment when it goes out of scope.
class KeptArithmetic {
 public:
  KeptArithmetic() { std::fegetenv(&environment_); }
  ~KeptArithmetic() { std::fesetenv(&environment_); }
  KeptArithmetic(const KeptArithmetic&) = delete;
  KeptArithmetic& operator=(const KeptArithmetic&) = delete;

 private:
  std::fenv_t environment_{};
};

IDirect3DDevice9* createDevice(IDirect3D9* direct3d, HWND window, const Size& size) {
  // Creating a device lowers the precision of the arithmetic to single, which would spoil the
  // powers and exponentials of the colour science.
  const KeptArithmetic kept;
  D3DDISPLAYMODE mode{};
  direct3d->GetAdapterDisplayMode(D3DADAPTER_DEFAULT, &mode);
  const D3DPRESENT_PARAMETERS form{
      .BackBufferWidth = static_cast<UINT>(size.width),
      .BackBufferHeight = static_cast<UINT>(size.height),
      .BackBufferFormat = D3DFMT_X8R8G8B8,
      .BackBufferCount = 1,
      .MultiSampleType = D3DMULTISAMPLE_NONE,
      .MultiSampleQuality = 0,
      .SwapEffect = D3DSWAPEFFECT_DISCARD,
      .hDeviceWindow = window,
      .Windowed = TRUE,
      .EnableAutoDepthStencil = TRUE,
      .AutoDepthStencilFormat = D3DFMT_D16,
      .Flags = 0,
      .FullScreen_RefreshRateInHz = 0,
      .PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE,
  };
  // The device writes its choices into the parameters, so each attempt needs its own copy.
  const auto create = [&](DWORD processing) {
    D3DPRESENT_PARAMETERS asked = form;
    IDirect3DDevice9* device = nullptr;
    const HRESULT result = direct3d->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, window,
                                                  processing, &asked, &device);
    return FAILED(result) ? nullptr : device;
  };
  IDirect3DDevice9* const device = create(D3DCREATE_HARDWARE_VERTEXPROCESSING);
  return device != nullptr ? device : create(D3DCREATE_SOFTWARE_VERTEXPROCESSING);
}

void declareVertices(IDirect3DDevice9* device) {
  constexpr std::array<D3DVERTEXELEMENT9, 3> elements{
      {{0, 0, D3DDECLTYPE_FLOAT3, D3DDECLMETHOD_DEFAULT, D3DDECLUSAGE_POSITION, 0},
       {0, 12, D3DDECLTYPE_D3DCOLOR, D3DDECLMETHOD_DEFAULT, D3DDECLUSAGE_COLOR, 0},
       D3DDECL_END()}};
  IDirect3DVertexDeclaration9* declaration = nullptr;
  if (FAILED(device->CreateVertexDeclaration(elements.data(), &declaration))) return;
  // The device holds its own reference to the declaration.
  device->SetVertexDeclaration(declaration);
  release(declaration);
}

void clear(GraphicsDevice* device, DWORD targets, PackedColour colour) {
  if (device->device != nullptr) device->device->Clear(0, nullptr, targets, colour, 1.0F, 0);
}

// Replaces the contents of a vertex or index buffer.
template <typename Buffer>
void fill(Buffer* buffer, const void* source, std::size_t bytes) {
  void* target = nullptr;
  if (buffer == nullptr || FAILED(buffer->Lock(0, static_cast<UINT>(bytes), &target, 0))) return;
  std::memcpy(target, source, bytes);
  buffer->Unlock();
}

}  // namespace

GraphicsDevice* createGraphicsDevice(Window* window, const Size& size) {
  auto* const created = new GraphicsDevice{
      .direct3d = createDirect3d(), .size = size, .scale = scaleOf(native(window))};
  if (created->direct3d == nullptr) return created;
  created->device = createDevice(created->direct3d, native(window), size);
  if (created->device == nullptr) return created;
  declareVertices(created->device);
  for (const RenderState& each : renderStates) {
    created->device->SetRenderState(each.state, each.value);
  }
  return created;
}

void releaseGraphicsDevice(GraphicsDevice* device) {
  releaseCompletely(device->device);
  releaseCompletely(device->direct3d);
  delete device;
}

VertexBuffer* createVertexBuffer(GraphicsDevice* device, std::size_t vertices, BufferUse use) {
  auto* const created = new VertexBuffer;
  if (device->device == nullptr) return created;
  const std::size_t bytes = vertices * sizeof(ColourVertex);
  device->device->CreateVertexBuffer(static_cast<UINT>(bytes), 0, vertexFormat, at(pools, use),
                                     &created->buffer, nullptr);
  return created;
}

IndexBuffer* createIndexBuffer(GraphicsDevice* device, std::span<const std::uint16_t> indices,
                               BufferUse use) {
  auto* const created = new IndexBuffer;
  if (device->device == nullptr) return created;
  device->device->CreateIndexBuffer(static_cast<UINT>(indices.size_bytes()), 0, D3DFMT_INDEX16,
                                    at(pools, use), &created->buffer, nullptr);
  fill(created->buffer, indices.data(), indices.size_bytes());
  return created;
}

void releaseVertexBuffer(VertexBuffer* buffer) {
  release(buffer->buffer);
  delete buffer;
}

void releaseIndexBuffer(IndexBuffer* buffer) {
  release(buffer->buffer);
  delete buffer;
}

void fillVertexBuffer(VertexBuffer* buffer, std::span<const ColourVertex> vertices) {
  fill(buffer->buffer, vertices.data(), vertices.size_bytes());
}

void setTransform(GraphicsDevice* device, TransformKind kind, const Matrix4x4& matrix) {
  if (device->device == nullptr) return;
  const auto transform = std::bit_cast<D3DMATRIX>(matrix);
  device->device->SetTransform(at(transformStates, kind), &transform);
}

Matrix4x4 transform(const GraphicsDevice* device, TransformKind kind) {
  auto transform = std::bit_cast<D3DMATRIX>(identity4x4);
  if (device->device != nullptr)
    device->device->GetTransform(at(transformStates, kind), &transform);
  return std::bit_cast<Matrix4x4>(transform);
}

Rect viewport(const GraphicsDevice* device) {
  D3DVIEWPORT9 area{};
  Rect pixels{0, 0, device->size.width, device->size.height};
  if (device->device != nullptr && SUCCEEDED(device->device->GetViewport(&area))) {
    pixels = {static_cast<int>(area.X), static_cast<int>(area.Y),
              static_cast<int>(area.X + area.Width), static_cast<int>(area.Y + area.Height)};
  }
  return scaled(pixels, 1.0 / device->scale);
}

void clearPicture(GraphicsDevice* device, PackedColour colour) {
  clear(device, D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, colour);
}

void clearDepth(GraphicsDevice* device) {
  constexpr PackedColour black = 0xFF000000;
  clear(device, D3DCLEAR_ZBUFFER, black);
}

void beginScene(GraphicsDevice* device) {
  if (device->device != nullptr) device->device->BeginScene();
}

void endScene(GraphicsDevice* device) {
  if (device->device != nullptr) device->device->EndScene();
}

void present(GraphicsDevice* device) {
  if (device->device != nullptr) device->device->Present(nullptr, nullptr, nullptr, nullptr);
}

void setVertexFormat(GraphicsDevice* device) {
  if (device->device != nullptr) device->device->SetFVF(vertexFormat);
}

void setVertexBuffer(GraphicsDevice* device, VertexBuffer* buffer) {
  if (device->device == nullptr) return;
  device->device->SetStreamSource(0, buffer->buffer, 0, sizeof(ColourVertex));
}

void setIndexBuffer(GraphicsDevice* device, IndexBuffer* buffer) {
  if (device->device == nullptr) return;
  device->device->SetIndices(buffer == nullptr ? nullptr : buffer->buffer);
}

void drawIndexed(GraphicsDevice* device, PrimitiveKind kind, int vertices, int primitives) {
  if (device->device == nullptr) return;
  device->device->DrawIndexedPrimitive(at(primitiveTypes, kind), 0, 0, static_cast<UINT>(vertices),
                                       0, static_cast<UINT>(primitives));
}

void drawUnindexed(GraphicsDevice* device, PrimitiveKind kind, int primitives) {
  if (device->device == nullptr) return;
  device->device->DrawPrimitive(at(primitiveTypes, kind), 0, static_cast<UINT>(primitives));
}

}  // namespace tintora::platform
