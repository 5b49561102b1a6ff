#pragma once

// The pure half of storing a picture: picture and settings in, records out. It touches no database, no file
// and no settings, so that any thread may run it. Codecs that must not run twice at once are called one at a
// time.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "codec/MipChain.h"
#include "database/TextureDatabase.h"
#include "image/Bitmap.h"
#include "plugins/plugin.h"

/// An encoder as one cache's settings have it.
struct EncoderChoice {
    MavrelCompressFn compress = nullptr;
    std::uint32_t quality = 0;
    /// What the flag word says of the dithering.
    std::uint32_t ditheringFlags = 0;
    /// Held around every call, see LockCodec. Borrowed.
    std::mutex* oneAtATime = nullptr;

    bool operator==(const EncoderChoice&) const = default;
};

struct RecordPlan {
    std::uint16_t nameHash16 = 0;
    bool hasAlpha = false;
    bool storeRgba8888 = false;
    /// Only for pictures whose sides are powers of two.
    bool hasMips = false;
    bool allowRunLength = false;
    StreamMode mode = StreamMode::Raw;
    /// Nothing: each cache's own encoder.
    std::optional<CacheIndex> forcedEncoder = std::nullopt;
    std::array<EncoderChoice, kCacheCount> encoders;
    std::vector<CacheIndex> rasterCaches;
    std::vector<CacheIndex> thumbnailCaches;
    /// Pixels a side; 0: no thumbnails.
    std::uint32_t thumbnailSide = 0;
};

/// Records with the bytes that they point to. Caches that store the same form share its bytes. Movable only.
class CPreparedRecords {
public:
    CPreparedRecords() = default;
    CPreparedRecords(const CPreparedRecords&) = delete;
    CPreparedRecords& operator=(const CPreparedRecords&) = delete;
    CPreparedRecords(CPreparedRecords&&) noexcept = default;
    CPreparedRecords& operator=(CPreparedRecords&&) noexcept = default;
    ~CPreparedRecords() = default;

    /// In the order in which they are to be stored.
    std::span<const PreparedRecord> Records() const { return m_aRecords; }

    void Add(const PreparedRecord& record) { m_aRecords.push_back(record); }
    /// Gives every record the name, the game and the frame of another plan, one that stores the same forms.
    void Label(const RecordPlan& plan);
    /// Takes bytes over; the span stays valid as long as the object, also when it moves.
    std::span<const std::byte> Keep(std::vector<std::byte> bytes);
    std::span<const std::byte> Keep(std::unique_ptr<std::byte[]> bytes, std::size_t count);

private:
    std::vector<PreparedRecord> m_aRecords;
    std::vector<std::vector<std::byte>> m_aVectors;
    std::vector<std::unique_ptr<std::byte[]>> m_aBuffers;
};

/// True when both plans make the same pixels for the same caches out of a picture; name, game and run-length
/// coding may differ.
bool StoreSameForms(const RecordPlan& one, const RecordPlan& other);

/// True when one of the caches gets the encoder that stores squares.
bool StoresSquares(const RecordPlan& plan);

/// `fullPixels` is RgbaPixels of the picture. Throws CError "Cannot compress texture." when an encoder's
/// output is not as long as its format says, std::bad_alloc when memory is short.
CPreparedRecords PrepareRecords(const CBitmap& picture, std::span<const std::byte> fullPixels,
                                const RecordPlan& plan);
