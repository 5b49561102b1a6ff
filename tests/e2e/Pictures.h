#pragma once

// Pictures for imports: every pixel differs from its neighbours in colour and transparency, so that a wrong
// format, a lost channel or a shifted record changes the files.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"

struct PictureSize {
    std::uint32_t width;
    std::uint32_t height;
};

/// Writes the picture number `seed` as a file of the format that its name says, and gives its path.
std::filesystem::path SavePicture(const std::filesystem::path& file, PictureSize size, std::uint32_t seed);

/// A folder with thirteen picture files, of which "brick_twin.png" shows the same as "brick.png".
class CPictureFolder {
public:
    CPictureFolder();

    const std::filesystem::path& Path() const { return m_oFolder.Path(); }
    /// The paths of files by their names.
    std::vector<std::filesystem::path> Files(const std::vector<std::string>& names) const;

private:
    CTemporaryFolder m_oFolder;
};
