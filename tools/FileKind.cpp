#include "tools/FileKind.h"

#include <array>
#include <string_view>
#include <utility>

#include "base/Text.h"

FileKind FileKindOf(const std::filesystem::path& file)
{
    using Known = std::pair<std::wstring_view, FileKind>;
    static constexpr std::array kKnown = {
        Known{L".png", FileKind::Picture},    Known{L".jpg", FileKind::Picture},
        Known{L".jpeg", FileKind::Picture},   Known{L".bmp", FileKind::Picture},
        Known{L".gif", FileKind::Picture},    Known{L".tif", FileKind::Picture},
        Known{L".tiff", FileKind::Picture},   Known{L".txt", FileKind::Database},
        Known{L".toc", FileKind::Database},   Known{L".dat", FileKind::Database},
        Known{L".txd", FileKind::Dictionary}, Known{L".dff", FileKind::Model},
        Known{L".img", FileKind::Archive},
    };
    const std::wstring extension = ToLowerAscii(FromPath(file.extension()));
    for (const auto& [known, kind] : kKnown)
        if (extension == known)
            return kind;
    return FileKind::Other;
}
