#pragma once

// Draws a bitmap with its alpha through GDI+, or plainly without it through GDI. Points are whole pixels of
// the target.

#include "base/Windows.h"

#include "image/Bitmap.h"

/// Keeps GDI+ running as long as it lives.
class CGdiPlusSession {
public:
    CGdiPlusSession();
    ~CGdiPlusSession();
    CGdiPlusSession(const CGdiPlusSession&) = delete;
    CGdiPlusSession& operator=(const CGdiPlusSession&) = delete;

private:
    ULONG_PTR m_nToken = 0;
};

/// Blends the bitmap, stretched to `place`, over what is there; each point takes the pixel that its centre
/// falls into. Only what meets `clip` is worked on, so a picture many times larger than the target costs no
/// more than a small one.
void BlendBitmap(HDC target, const CBitmap& bitmap, const RECT& place, const RECT& clip);
/// The same, but copies the colours and ignores the alpha.
void CopyBitmap(HDC target, const CBitmap& bitmap, const RECT& place, const RECT& clip);

inline constexpr COLORREF kLightSquare = RGB(0xFF, 0xFF, 0xFF);
inline constexpr COLORREF kDarkSquare = RGB(0xCC, 0xCC, 0xCC);
/// Squares of two greys, `side` pixels each, in `area`; the pattern begins at `origin`.
void DrawCheckerboard(HDC target, const RECT& area, POINT origin, int side);
