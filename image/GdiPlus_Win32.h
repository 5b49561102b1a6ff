#pragma once

// The encoders that GDI+ has installed. For the shell and tests on Windows; the layers between use
// ImageFile.h.

#include "base/Windows.h"

/// The place of the encoder for `format` in the list of GDI+, with its class identifier in `clsid`; -1 when
/// there is none. `format` is an extension; only the constants of ImageFile.h stand for "jpeg" and "tiff".
int GetEncoderClsid(const wchar_t* format, CLSID* clsid);
