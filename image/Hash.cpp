#include "image/Hash.h"

#include <algorithm>
#include <vector>

#include "base/File.h"

namespace {

constexpr std::size_t kLongestName = 128;
constexpr std::size_t kFileChunk = std::size_t{1} << 20;

class CNameHasher {
public:
    void Add(std::uint8_t byte) { m_nHash = m_nHash * 33 + byte; }
    std::uint32_t Result() const { return m_nHash + (m_nHash >> 5); }

private:
    std::uint32_t m_nHash = 0;
};

/// What a name counts for: up to its terminator, and no more than its first 128 characters.
std::wstring_view HashedPart(std::wstring_view name)
{
    return name.substr(0, std::min(name.find(L'\0'), kLongestName));
}

std::uint8_t LowByte(wchar_t character)
{
    return static_cast<std::uint8_t>(character & 0xFF);
}

}  // namespace

std::uint32_t HashData(std::span<const std::byte> data)
{
    CNameHasher hasher;
    for (const std::byte byte : data)
        hasher.Add(std::to_integer<std::uint8_t>(byte));
    return hasher.Result();
}

std::uint32_t HashBytes(const char* text)
{
    CNameHasher hasher;
    for (; text && *text; ++text)
        hasher.Add(static_cast<std::uint8_t>(*text));
    return hasher.Result();
}

std::uint32_t HashWideName(std::wstring_view name)
{
    CNameHasher hasher;
    for (const wchar_t character : HashedPart(name))
        hasher.Add(LowByte(character));
    return hasher.Result();
}

std::uint32_t HashNameUpper(std::wstring_view name)
{
    CNameHasher hasher;
    for (const wchar_t character : HashedPart(name)) {
        const std::uint8_t byte = LowByte(character);
        // Deliberate: the bytes are hashed as a terminated text, so a character whose low byte is 0 ends the
        // name here, but not in HashWideName. Hash.EndsAnUpperCaseNameAtALowByteOfZero pins it.
        if (byte == 0)
            break;
        hasher.Add(byte >= 'a' && byte <= 'z' ? static_cast<std::uint8_t>(byte - 'a' + 'A') : byte);
    }
    return hasher.Result();
}

std::uint32_t HashFile(const std::filesystem::path& file)
{
    const auto input = DiskFileSystem().Open(file, OpenMode::Read);
    if (!input)
        return 0;
    // Deliberate: only the low 32 bits of the length count, so of a larger file a part is hashed.
    const auto length = static_cast<std::uint32_t>(input->Size());
    CNameHasher hasher;
    std::vector<std::byte> chunk(std::min<std::size_t>(length, kFileChunk));
    for (std::uint32_t position = 0; position < length;) {
        const auto wanted = std::span(chunk).first(std::min<std::size_t>(chunk.size(), length - position));
        if (input->ReadAt(position, wanted) != wanted.size())
            return 0;
        for (const std::byte byte : wanted)
            hasher.Add(std::to_integer<std::uint8_t>(byte));
        position += static_cast<std::uint32_t>(wanted.size());
    }
    return hasher.Result();
}
