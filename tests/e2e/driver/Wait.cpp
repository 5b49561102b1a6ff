#include "tests/e2e/driver/Wait.h"

#include <thread>

void WaitUntil(const std::string& what, const std::function<bool()>& isSo, std::chrono::milliseconds patience)
{
    constexpr std::chrono::milliseconds kPause{10};
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!isSo()) {
        if (std::chrono::steady_clock::now() >= end)
            throw CDriveError("waited in vain for " + what);
        std::this_thread::sleep_for(kPause);
    }
}
