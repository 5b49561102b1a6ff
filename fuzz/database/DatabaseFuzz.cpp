// A whole database in memory: the input is cut into a list and the three files of two caches. It is opened,
// every record is read, tables are rebuilt, a texture is deleted and the list is recovered.
//
//  0  u8   bit 0-1 stream mode; bit 2: no list; bit 3: no table of contents
//  1  u16  bytes of the list, then of the `.toc` and of the `.tmb`; the rest is the `.dat`

#include <algorithm>

#include "base/ByteReader.h"
#include "database/TextureDatabase.h"
#include "tests/support/MemoryFileSystem.h"

namespace {

class CSilentPrompt final : public IPrompt {
public:
    PromptAnswer Show(const PromptBox& box) override
    {
        return box.buttons == PromptButtons::Ok ? PromptAnswer::Ok : PromptAnswer::No;
    }
};

std::vector<std::byte> Part(CByteReader& in, std::size_t length)
{
    const auto bytes = in.Bytes(std::min(length, in.Left()));
    return {bytes.begin(), bytes.end()};
}

template <class Action>
void Tolerating(const Action& action)
{
    try {
        action();
    } catch (const CError&) {
        // A damaged database may be refused; it must not crash.
    }
}

void ReadEverything(CTextureDatabase& database)
{
    for (std::uint32_t i = 0; i < database.EntryCount(); ++i) {
        database.ResolvedEntry(i);
        for (const CacheIndex cache : {CacheIndex::Dxt, CacheIndex::Unc})
            for (const RecordKind kind : {RecordKind::Raster, RecordKind::Thumbnail})
                Tolerating([&] {
                    database.RecordSize(i, cache, kind);
                    database.GameOf(i, cache);
                    database.ReadRaster(i, cache, kind);
                });
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kLargest = 1U << 14;
    if (size < 7 || size > kLargest)
        return 0;
    CByteReader in(std::as_bytes(std::span(data, size)));
    const unsigned flags = in.U8();
    const std::size_t listBytes = in.U16();
    const std::size_t tocBytes = in.U16();
    const std::size_t tmbBytes = in.U16();
    CMemoryFileSystem files;
    const auto list = Part(in, listBytes);
    if ((flags & 4U) == 0)
        files.Put("t.txt", list);
    const auto toc = Part(in, tocBytes);
    if ((flags & 8U) == 0)
        files.Put("t.dxt.toc", toc);
    files.Put("t.dxt.tmb", Part(in, tmbBytes));
    const auto dat = Part(in, in.Left());
    files.Put("t.dxt.dat", dat);
    files.Put("t.unc.dat", dat);

    CSilentPrompt prompt;
    CTextureDatabase database(static_cast<StreamMode>(flags % 3), files, prompt);
    database.Open("t.txt");
    ReadEverything(database);
    Tolerating([&] { database.RebuildToc(CacheIndex::Dxt); });
    Tolerating([&] { database.DeleteEntry(0, std::nullopt); });
    Tolerating([&] { database.RecoverFromDat(); });
    ReadEverything(database);
    return 0;
}
