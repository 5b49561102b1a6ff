#pragma once

// A graphics processor that draws the preview, as its renderer sees it. What stands behind it is chosen at
// run time: the machine's own, or a test's.

#include "base/Windows.h"

#include <functional>
#include <memory>

struct PreviewScene;

enum class DirectResult {
    Drawn,
    Refused,  // this scene is too much for it, as a picture beyond its largest texture; others are not
    Lost      // the device is gone and draws nothing any more
};

class IDirectDevice {
public:
    virtual ~IDirectDevice() = default;
    /// Draws the scene's part into `target`, all of it or nothing.
    virtual DirectResult Draw(HDC target, const PreviewScene& scene) = 0;
};

/// Null when this machine has none.
using DirectDeviceFactory = std::function<std::unique_ptr<IDirectDevice>()>;
