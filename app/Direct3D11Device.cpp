#include "app/Direct3D11Device.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <d3d11.h>
#include <d3dcompiler.h>
#include <filesystem>
#include <numeric>
#include <optional>
#include <wrl/client.h>

#include "app/PreviewRenderer.h"
#include "base/DynamicLibrary.h"
#include "ui/BitmapDrawing.h"

namespace {

using Microsoft::WRL::ComPtr;

// Plain enough for every compiler that a system brings along: Wine's knows neither conditional expressions
// nor functions that call each other, so both pixel shaders spell out which step a pixel falls into. Its
// centre ends in .5, so the product is a whole number; the half that is added keeps a division that comes out
// a little too small from falling below the whole number that it should be.
constexpr char kShaders[] = R"(
cbuffer Layer : register(b0)
{
    float2 origin;
    float2 steps;
    float2 lengths;
    float2 unused;
    float4 light;
    float4 dark;
};
Texture2D<float4> picture : register(t0);

float4 CoverViewport(uint corner : SV_VertexID) : SV_Position
{
    float number = corner;
    float row = floor(number * 0.5);
    float column = number - row * 2.0;
    return float4(column * 2.0 - 1.0, 1.0 - row * 2.0, 0.0, 1.0);
}

float4 DrawPicture(float4 place : SV_Position) : SV_Target
{
    float2 texel = floor(((place.xy - origin) * 2.0 * steps + 0.5) / (lengths * 2.0));
    float4 color = picture.Load(int3(texel.x, texel.y, 0));
    return float4(color.rgb * color.a, color.a);
}

float4 DrawSquares(float4 place : SV_Position) : SV_Target
{
    float2 square = floor(((place.xy - origin) * 2.0 * steps + 0.5) / (lengths * 2.0));
    float pairs = (square.x + square.y) * 0.5;
    float isOdd = (pairs - floor(pairs)) * 2.0;
    return light + (dark - light) * isOdd;
}
)";

constexpr DXGI_FORMAT kPixels = DXGI_FORMAT_B8G8R8A8_UNORM;

/// As the shaders see it.
struct Layer {
    std::array<float, 2> origin{};   // of the layer's pattern in the target
    std::array<float, 2> steps{};    // this many texels or squares ...
    std::array<float, 2> lengths{};  // ... take this many pixels
    std::array<float, 2> unused{};
    std::array<float, 4> light{};
    std::array<float, 4> dark{};
};

std::array<float, 4> Channels(COLORREF color)
{
    constexpr float kFull = 255.0F;
    return {static_cast<float>(GetRValue(color)) / kFull, static_cast<float>(GetGValue(color)) / kFull,
            static_cast<float>(GetBValue(color)) / kFull, 1.0F};
}

UINT WidthOf(const RECT& rect)
{
    return static_cast<UINT>(rect.right - rect.left);
}
UINT HeightOf(const RECT& rect)
{
    return static_cast<UINT>(rect.bottom - rect.top);
}

/// The libraries of Windows only, whatever lies beside the program or in the current folder. Left loaded to
/// the end, because drivers may still run threads in them.
template <class Function>
Function FindInSystem(const wchar_t* file, const char* name)
{
    std::array<wchar_t, MAX_PATH> folder{};
    if (::GetSystemDirectoryW(folder.data(), MAX_PATH) == 0)
        return nullptr;
    auto library = CDynamicLibrary::Load(std::filesystem::path(folder.data()) / file);
    if (!library)
        return nullptr;
    const auto function = library->Find<Function>(name);
    library->Leak();
    return function;
}

class CDirect3D11Device final : public IDirectDevice {
public:
    bool Open(PFN_D3D11_CREATE_DEVICE create, D3D_DRIVER_TYPE type);
    bool MakePipeline(pD3DCompile compile);
    DirectResult Draw(HDC target, const PreviewScene& scene) override;

private:
    ComPtr<ID3D11Texture2D> Texture(UINT width, UINT height, D3D11_USAGE usage, UINT binding,
                                    UINT access) const;
    bool Resize(UINT width, UINT height);
    bool Upload(const PreviewScene& scene);
    bool DrawLayers(const PreviewScene& scene);
    void DrawLayer(ID3D11PixelShader* shader, const RECT& visible, const Layer& layer) const;
    bool CopyTo(HDC target, const RECT& part) const;

    ComPtr<ID3D11Device> m_pDevice;
    ComPtr<ID3D11DeviceContext> m_pContext;
    ComPtr<ID3D11VertexShader> m_pCoverViewport;
    ComPtr<ID3D11PixelShader> m_pDrawPicture;
    ComPtr<ID3D11PixelShader> m_pDrawSquares;
    ComPtr<ID3D11Buffer> m_pLayer;
    ComPtr<ID3D11BlendState> m_pBlend;

    // What is drawn on, and its copy that the processor can read. They only grow.
    ComPtr<ID3D11Texture2D> m_pTarget;
    ComPtr<ID3D11RenderTargetView> m_pTargetView;
    ComPtr<ID3D11Texture2D> m_pReadable;
    UINT m_nWidth = 0;
    UINT m_nHeight = 0;

    ComPtr<ID3D11Texture2D> m_pPicture;
    ComPtr<ID3D11ShaderResourceView> m_pPictureView;
    UINT m_nPictureWidth = 0;
    UINT m_nPictureHeight = 0;
    std::optional<std::uint64_t> m_nVersion;  // of the picture that was uploaded
};

bool CDirect3D11Device::Open(PFN_D3D11_CREATE_DEVICE create, D3D_DRIVER_TYPE type)
{
    constexpr std::array kLevels = {D3D_FEATURE_LEVEL_11_0, D3D_FEATURE_LEVEL_10_1, D3D_FEATURE_LEVEL_10_0};
    constexpr UINT kFlags = D3D11_CREATE_DEVICE_SINGLETHREADED | D3D11_CREATE_DEVICE_BGRA_SUPPORT;
    const HRESULT result = create(
        nullptr, type, nullptr, kFlags, kLevels.data(), static_cast<UINT>(kLevels.size()), D3D11_SDK_VERSION,
        m_pDevice.ReleaseAndGetAddressOf(), nullptr, m_pContext.ReleaseAndGetAddressOf());
    return SUCCEEDED(result) && m_pDevice && m_pContext;
}

bool CDirect3D11Device::MakePipeline(pD3DCompile compile)
{
    const auto compiled = [compile](const char* function, const char* model) {
        ComPtr<ID3DBlob> code;
        ComPtr<ID3DBlob> complaints;
        compile(kShaders, std::strlen(kShaders), nullptr, nullptr, nullptr, function, model, 0, 0,
                code.GetAddressOf(), complaints.GetAddressOf());
        return code;
    };
    const auto cover = compiled("CoverViewport", "vs_4_0");
    const auto picture = compiled("DrawPicture", "ps_4_0");
    const auto squares = compiled("DrawSquares", "ps_4_0");
    if (!cover || !picture || !squares)
        return false;

    D3D11_BUFFER_DESC layer{};
    layer.ByteWidth = sizeof(Layer);
    layer.BindFlags = D3D11_BIND_CONSTANT_BUFFER;
    D3D11_BLEND_DESC blend{};
    blend.RenderTarget[0] = {TRUE,
                             D3D11_BLEND_ONE,
                             D3D11_BLEND_INV_SRC_ALPHA,
                             D3D11_BLEND_OP_ADD,
                             D3D11_BLEND_ONE,
                             D3D11_BLEND_INV_SRC_ALPHA,
                             D3D11_BLEND_OP_ADD,
                             D3D11_COLOR_WRITE_ENABLE_ALL};
    const auto code = [](const ComPtr<ID3DBlob>& blob) { return blob->GetBufferPointer(); };
    const auto size = [](const ComPtr<ID3DBlob>& blob) { return blob->GetBufferSize(); };
    return SUCCEEDED(m_pDevice->CreateVertexShader(code(cover), size(cover), nullptr,
                                                   m_pCoverViewport.GetAddressOf())) &&
           SUCCEEDED(m_pDevice->CreatePixelShader(code(picture), size(picture), nullptr,
                                                  m_pDrawPicture.GetAddressOf())) &&
           SUCCEEDED(m_pDevice->CreatePixelShader(code(squares), size(squares), nullptr,
                                                  m_pDrawSquares.GetAddressOf())) &&
           SUCCEEDED(m_pDevice->CreateBuffer(&layer, nullptr, m_pLayer.GetAddressOf())) &&
           SUCCEEDED(m_pDevice->CreateBlendState(&blend, m_pBlend.GetAddressOf()));
}

DirectResult CDirect3D11Device::Draw(HDC target, const PreviewScene& scene)
{
    if (DrawLayers(scene) && CopyTo(target, scene.part))
        return DirectResult::Drawn;
    return m_pDevice->GetDeviceRemovedReason() == S_OK ? DirectResult::Refused : DirectResult::Lost;
}

ComPtr<ID3D11Texture2D> CDirect3D11Device::Texture(UINT width, UINT height, D3D11_USAGE usage, UINT binding,
                                                   UINT access) const
{
    D3D11_TEXTURE2D_DESC form{};
    form.Width = width;
    form.Height = height;
    form.MipLevels = 1;
    form.ArraySize = 1;
    form.Format = kPixels;
    form.SampleDesc.Count = 1;
    form.Usage = usage;
    form.BindFlags = binding;
    form.CPUAccessFlags = access;
    ComPtr<ID3D11Texture2D> texture;
    m_pDevice->CreateTexture2D(&form, nullptr, texture.GetAddressOf());
    return texture;
}

bool CDirect3D11Device::Resize(UINT width, UINT height)
{
    if (m_pReadable && width <= m_nWidth && height <= m_nHeight)
        return true;
    m_nWidth = std::max(width, m_nWidth);
    m_nHeight = std::max(height, m_nHeight);
    m_pReadable.Reset();
    m_pTarget = Texture(m_nWidth, m_nHeight, D3D11_USAGE_DEFAULT, D3D11_BIND_RENDER_TARGET, 0);
    if (!m_pTarget || FAILED(m_pDevice->CreateRenderTargetView(m_pTarget.Get(), nullptr,
                                                               m_pTargetView.ReleaseAndGetAddressOf())))
        return false;
    m_pReadable = Texture(m_nWidth, m_nHeight, D3D11_USAGE_STAGING, 0, D3D11_CPU_ACCESS_READ);
    return m_pReadable != nullptr;
}

bool CDirect3D11Device::Upload(const PreviewScene& scene)
{
    const CBitmap& bitmap = *scene.bitmap;
    const bool sameSize =
        m_pPictureView && bitmap.Width() == m_nPictureWidth && bitmap.Height() == m_nPictureHeight;
    if (sameSize && m_nVersion == scene.version)
        return true;
    m_nVersion.reset();
    if (!sameSize) {
        m_pPictureView.Reset();
        m_pPicture =
            Texture(bitmap.Width(), bitmap.Height(), D3D11_USAGE_DEFAULT, D3D11_BIND_SHADER_RESOURCE, 0);
        if (!m_pPicture || FAILED(m_pDevice->CreateShaderResourceView(m_pPicture.Get(), nullptr,
                                                                      m_pPictureView.GetAddressOf())))
            return false;
        m_nPictureWidth = bitmap.Width();
        m_nPictureHeight = bitmap.Height();
    }
    m_pContext->UpdateSubresource(m_pPicture.Get(), 0, nullptr, bitmap.Pixels().data(), bitmap.Width() * 4,
                                  0);
    m_nVersion = scene.version;
    return true;
}

bool CDirect3D11Device::DrawLayers(const PreviewScene& scene)
{
    if (!Resize(static_cast<UINT>(scene.part.right), static_cast<UINT>(scene.part.bottom)))
        return false;
    if (scene.bitmap != nullptr && !Upload(scene))
        return false;
    m_pContext->OMSetRenderTargets(1, m_pTargetView.GetAddressOf(), nullptr);
    m_pContext->OMSetBlendState(m_pBlend.Get(), nullptr, 0xFFFFFFFF);
    m_pContext->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP);
    m_pContext->VSSetShader(m_pCoverViewport.Get(), nullptr, 0);
    m_pContext->PSSetConstantBuffers(0, 1, m_pLayer.GetAddressOf());
    m_pContext->ClearRenderTargetView(m_pTargetView.Get(), Channels(scene.color).data());

    RECT visible{};
    if (::IntersectRect(&visible, &scene.squares, &scene.part)) {
        const auto side = static_cast<float>(scene.squareSide);
        Layer layer;
        layer.origin = {static_cast<float>(scene.squaresOrigin.x), static_cast<float>(scene.squaresOrigin.y)};
        layer.steps = {1.0F, 1.0F};
        layer.lengths = {side, side};
        layer.light = Channels(kLightSquare);
        layer.dark = Channels(kDarkSquare);
        DrawLayer(m_pDrawSquares.Get(), visible, layer);
    }
    if (scene.bitmap != nullptr && ::IntersectRect(&visible, &scene.picture, &scene.part)) {
        // In lowest terms, so that the products of large enlargements stay exact.
        const UINT divisorX = std::gcd(scene.bitmap->Width(), WidthOf(scene.picture));
        const UINT divisorY = std::gcd(scene.bitmap->Height(), HeightOf(scene.picture));
        Layer layer;
        layer.origin = {static_cast<float>(scene.picture.left), static_cast<float>(scene.picture.top)};
        layer.steps = {static_cast<float>(scene.bitmap->Width() / divisorX),
                       static_cast<float>(scene.bitmap->Height() / divisorY)};
        layer.lengths = {static_cast<float>(WidthOf(scene.picture) / divisorX),
                         static_cast<float>(HeightOf(scene.picture) / divisorY)};
        m_pContext->PSSetShaderResources(0, 1, m_pPictureView.GetAddressOf());
        DrawLayer(m_pDrawPicture.Get(), visible, layer);
    }
    return true;
}

void CDirect3D11Device::DrawLayer(ID3D11PixelShader* shader, const RECT& visible, const Layer& layer) const
{
    D3D11_VIEWPORT viewport{};
    viewport.TopLeftX = static_cast<float>(visible.left);
    viewport.TopLeftY = static_cast<float>(visible.top);
    viewport.Width = static_cast<float>(WidthOf(visible));
    viewport.Height = static_cast<float>(HeightOf(visible));
    viewport.MaxDepth = 1.0F;
    m_pContext->UpdateSubresource(m_pLayer.Get(), 0, nullptr, &layer, 0, 0);
    m_pContext->RSSetViewports(1, &viewport);
    m_pContext->PSSetShader(shader, nullptr, 0);
    constexpr UINT kCorners = 4;
    m_pContext->Draw(kCorners, 0);
}

bool CDirect3D11Device::CopyTo(HDC target, const RECT& part) const
{
    const D3D11_BOX box = {static_cast<UINT>(part.left),  static_cast<UINT>(part.top),    0,
                           static_cast<UINT>(part.right), static_cast<UINT>(part.bottom), 1};
    m_pContext->CopySubresourceRegion(m_pReadable.Get(), 0, 0, 0, 0, m_pTarget.Get(), 0, &box);
    D3D11_MAPPED_SUBRESOURCE pixels{};
    if (FAILED(m_pContext->Map(m_pReadable.Get(), 0, D3D11_MAP_READ, 0, &pixels)))
        return false;
    constexpr UINT kPixel = 4;
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = static_cast<LONG>(pixels.RowPitch / kPixel);
    info.bmiHeader.biHeight = -static_cast<LONG>(HeightOf(part));  // negative: the first row is the top one
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    ::SetDIBitsToDevice(target, part.left, part.top, WidthOf(part), HeightOf(part), 0, 0, 0, HeightOf(part),
                        pixels.pData, &info, DIB_RGB_COLORS);
    m_pContext->Unmap(m_pReadable.Get(), 0);
    return true;
}

}  // namespace

std::unique_ptr<IDirectDevice> OpenDirect3D11()
{
    const auto create = FindInSystem<PFN_D3D11_CREATE_DEVICE>(L"d3d11.dll", "D3D11CreateDevice");
    const auto compile = FindInSystem<pD3DCompile>(L"d3dcompiler_47.dll", "D3DCompile");
    if (create == nullptr || compile == nullptr)
        return nullptr;
    for (const D3D_DRIVER_TYPE type : {D3D_DRIVER_TYPE_HARDWARE, D3D_DRIVER_TYPE_WARP}) {
        auto device = std::make_unique<CDirect3D11Device>();
        if (device->Open(create, type) && device->MakePipeline(compile))
            return device;
    }
    return nullptr;
}
