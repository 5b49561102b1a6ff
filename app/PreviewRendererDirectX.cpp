#include "app/PreviewRendererDirectX.h"

void CPreviewRendererDirectX::Draw(HDC target, const PreviewScene& scene)
{
    if (!DrawWithDevice(target, scene))
        m_oFallback.Draw(target, scene);
}

bool CPreviewRendererDirectX::HasDevice()
{
    if (!m_pDevice && !m_bGivenUp) {
        m_pDevice = m_fnOpen();
        // A machine that has none is not asked again at every painting.
        m_bGivenUp = m_pDevice == nullptr;
    }
    return m_pDevice != nullptr;
}

bool CPreviewRendererDirectX::DrawWithDevice(HDC target, const PreviewScene& scene)
{
    // A device goes when its driver is updated or restarted, and a new one can be had at once.
    constexpr int kAttempts = 2;
    for (int attempt = 0; attempt < kAttempts && HasDevice(); ++attempt) {
        switch (m_pDevice->Draw(target, scene)) {
            case DirectResult::Drawn:
                return true;
            case DirectResult::Refused:
                return false;
            case DirectResult::Lost:
                m_pDevice.reset();
                break;
        }
    }
    // Lost twice in a row, or none to be had.
    m_bGivenUp = true;
    return false;
}
