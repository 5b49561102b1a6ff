#pragma once

// Direct3D 11. Its libraries are loaded when a device is opened, so that the program starts and runs without
// them.

#include "app/DirectDevice.h"

/// The machine's graphics processor, or else Windows' own software one. Null when there is neither, or when a
/// library is missing.
std::unique_ptr<IDirectDevice> OpenDirect3D11();
