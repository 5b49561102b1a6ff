#pragma once

// A file seen through a small window that is read ahead, so that walking over section headers costs few
// system calls and touches few bytes besides. It borrows the file and only reads.

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/File.h"

namespace RW {

class CReadWindow final : public IFile {
public:
    explicit CReadWindow(const IFile& file) : m_rFile(file), m_nFileSize(file.Size()) {}

    /// As it was when the window was made.
    std::uint64_t Size() const override { return m_nFileSize; }
    std::size_t ReadAt(std::uint64_t position, std::span<std::byte> out) const override;
    bool WriteAt(std::uint64_t /*position*/, std::span<const std::byte> /*bytes*/) override { return false; }
    bool Resize(std::uint64_t /*size*/) override { return false; }
    bool Flush() override { return false; }
    bool Sync() override { return false; }

private:
    // Enough for the header of a texture, those around it and the start of its record.
    static constexpr std::size_t kWindowBytes = 256;

    const IFile& m_rFile;
    std::uint64_t m_nFileSize;
    mutable std::array<std::byte, kWindowBytes> m_aWindow{};
    mutable std::uint64_t m_nStart = 0;
    mutable std::size_t m_nFilled = 0;
};

}  // namespace RW
