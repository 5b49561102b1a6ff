#pragma once

// How long work tells where it is, and learns that it should stop.

#include <cstdint>
#include <string>

class IProgress {
public:
    IProgress() = default;
    IProgress(const IProgress&) = delete;
    IProgress& operator=(const IProgress&) = delete;
    virtual ~IProgress() = default;

    /// `current` of `total` items are done; `text` names the item at hand. Called on the thread of the work.
    virtual void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) = 0;
    /// True once the person asked to stop. The work asks between two items, where it can stop cleanly.
    virtual bool Cancelled() const = 0;
};

/// For callers that show nothing.
class CNoProgress final : public IProgress {
public:
    void Report(std::uint32_t /*current*/, std::uint32_t /*total*/, const std::wstring& /*text*/) override {}
    bool Cancelled() const override { return false; }
};
