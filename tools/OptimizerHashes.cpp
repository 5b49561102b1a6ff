#include "tools/OptimizerHashes.h"

#include <array>
#include <map>
#include <memory>

#include "base/OrderedPipeline.h"
#include "image/MD5.h"
#include "tools/OptimizerBytes.h"
#include "tools/OptimizerList.h"

namespace {

// Enough for the threads to have work while one large texture is read.
constexpr std::size_t kPendingTextures = 16;
constexpr std::uint64_t kPendingBytes = std::uint64_t{64} << 20;

/// Digests of texture after texture, computed ahead of where they are taken.
class CHashing {
public:
    CHashing(CTextureDatabase& database, IEditorHost& host, const OptimizeOptions& options)
        : m_rDatabase(database), m_rHost(host), m_rOptions(options), m_oPipeline(ThreadsFor(options.jobs))
    {
    }

    MD5Digest Take(std::uint32_t index)
    {
        while (m_nGiven < m_rDatabase.EntryCount() && HasRoom(index))
            Give(m_nGiven++);
        m_nPendingBytes -= m_aBytes[index % kPendingTextures];
        return m_oPipeline.Take();
    }
    std::uint32_t NotCompared() const { return m_nNotCompared; }

private:
    bool HasRoom(std::uint32_t index) const
    {
        return m_nGiven == index || (m_nGiven - index < kPendingTextures && m_nPendingBytes < kPendingBytes);
    }
    void Give(std::uint32_t index)
    {
        auto bytes = std::make_shared<std::vector<std::byte>>(
            ComparedBytes(m_rDatabase, m_rHost, index, m_rOptions.cache, IsDecoded(m_rOptions.comparison)));
        if (bytes->empty() && HasRasterIn(m_rDatabase, index, m_rOptions.cache))
            ++m_nNotCompared;
        m_aBytes[index % kPendingTextures] = bytes->size();
        m_nPendingBytes += bytes->size();
        m_oPipeline.Give([bytes] { return ComputeMD5(*bytes); });
    }

    CTextureDatabase& m_rDatabase;
    IEditorHost& m_rHost;
    const OptimizeOptions& m_rOptions;
    COrderedPipeline<MD5Digest> m_oPipeline;
    std::array<std::uint64_t, kPendingTextures> m_aBytes{};
    std::uint64_t m_nPendingBytes = 0;
    std::uint32_t m_nGiven = 0;
    std::uint32_t m_nNotCompared = 0;
};

}  // namespace

std::optional<TextureHashes> HashTextures(CTextureDatabase& database, IEditorHost& host, IProgress& progress,
                                          const OptimizeOptions& options)
{
    const MD5Digest none = ComputeMD5({});
    const std::uint32_t count = database.EntryCount();
    TextureHashes hashes;
    hashes.keys.resize(count, COptimizerList::kNoKey);
    std::map<std::array<std::uint32_t, 4>, std::uint32_t> numbers;
    CHashing hashing(database, host, options);
    for (std::uint32_t i = 0; i < count; ++i) {
        const MD5Digest digest = hashing.Take(i);
        if (digest != none)
            hashes.keys[i] =
                numbers.try_emplace(digest.words, static_cast<std::uint32_t>(numbers.size())).first->second;
        progress.Report(i + 1, count, MD5ToText(digest));
        if (progress.Cancelled())
            return std::nullopt;
    }
    hashes.notCompared = hashing.NotCompared();
    return hashes;
}
