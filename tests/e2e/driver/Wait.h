#pragma once

// Waiting for another process: conditions are polled until they hold or patience ends. Nothing in the driver
// sleeps a fixed time, because a loaded machine would make every such time wrong.

#include <chrono>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

/// The driven program did not do in time what the driver waited for, or is gone.
class CDriveError final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Long enough for a slow machine under load; only a failing test ever waits so long.
constexpr std::chrono::milliseconds kPatience{20000};

/// Polls until `isSo` holds. Throws CDriveError that names `what` after `patience`.
void WaitUntil(const std::string& what, const std::function<bool()>& isSo,
               std::chrono::milliseconds patience = kPatience);

/// Polls until `find` gives a value, and returns that value. `find` returns a std::optional.
template <class Find>
auto WaitFor(const std::string& what, Find find, std::chrono::milliseconds patience = kPatience)
{
    auto found = find();
    WaitUntil(
        what,
        [&] {
            if (!found)
                found = find();
            return static_cast<bool>(found);
        },
        patience);
    return *std::move(found);
}
