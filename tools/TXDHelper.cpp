#include "tools/TXDHelper.h"

#include <array>
#include <utility>

#include "base/ByteReader.h"
#include "database/DatabaseError.h"
#include "rw/Messages.h"
#include "rw/TXDMobile.h"
#include "rw/TXDPC.h"
#include "rw/TXDPS2.h"

namespace {

// The order in which readers are tried.
enum class ReaderKind { PC, PS2, Mobile };
constexpr std::array<ReaderKind, 3> kReaders = {ReaderKind::PC, ReaderKind::PS2, ReaderKind::Mobile};

std::unique_ptr<RW::CTXDCommon> MakeReader(ReaderKind kind, RW::IFailures& failures, IFileSystem& files)
{
    switch (kind) {
        case ReaderKind::PC:
            return std::make_unique<RW::CTXDPC>(failures, files);
        case ReaderKind::PS2:
            return std::make_unique<RW::CTXDPS2>(failures, files);
        case ReaderKind::Mobile:
            return std::make_unique<RW::CTXDMobile>(failures, files);
    }
    return nullptr;
}

/// Whose message to show when no reader accepts a dictionary: the one for which its first texture says it is.
ReaderKind ClaimedReader(RW::CTXDCommon& dictionary)
{
    if (!dictionary.HasNode({1, 0}))
        return ReaderKind::PC;
    const auto head = dictionary.GetNode({1, 0})->GetHead(sizeof(std::uint32_t), dictionary.File());
    if (head.size() < sizeof(std::uint32_t))
        return ReaderKind::PC;
    if (head[0] == std::byte{'P'} && head[1] == std::byte{'S'} && head[2] == std::byte{'2'})
        return ReaderKind::PS2;
    const std::uint32_t platform = CByteReader(head).U32();
    return platform >= RW::Platform::kMobile10 && platform <= RW::Platform::kMobile12 ? ReaderKind::Mobile
                                                                                      : ReaderKind::PC;
}

/// Lets the first box pass as long as it lives.
class CFirstBoxOnly {
public:
    explicit CFirstBoxOnly(CFailureGate& gate) : m_rGate(gate) { gate.Let(CFailureGate::Passing::First); }
    ~CFirstBoxOnly() { m_rGate.Let(CFailureGate::Passing::All); }
    CFirstBoxOnly(const CFirstBoxOnly&) = delete;
    CFirstBoxOnly& operator=(const CFirstBoxOnly&) = delete;

private:
    CFailureGate& m_rGate;
};

/// Drops what was loaded of a texture, whatever became of its picture.
class CLoadedTexture {
public:
    CLoadedTexture(RW::ITXD& dictionary, std::uint32_t index) : m_rDictionary(dictionary), m_nIndex(index) {}
    ~CLoadedTexture() { Drop(); }
    void Drop() { m_rDictionary.FreeData(m_nIndex); }
    CLoadedTexture(const CLoadedTexture&) = delete;
    CLoadedTexture& operator=(const CLoadedTexture&) = delete;

private:
    RW::ITXD& m_rDictionary;
    std::uint32_t m_nIndex;
};

TXDPicture ReadAnyPicture(RW::CTXDCommon& dictionary, std::uint32_t index)
{
    if (auto* const mobile = dynamic_cast<RW::CTXDMobile*>(&dictionary))
        return ReadPicture(*mobile, index);
    if (auto* const playStation = dynamic_cast<RW::CTXDPS2*>(&dictionary))
        return ReadPicture(*playStation, index);
    return ReadPicture(dynamic_cast<RW::CTXDPC&>(dictionary), index);
}

}  // namespace

void CFailureGate::ShowStopBox(const PromptBox& box, int exitCode)
{
    const bool isFirst = !std::exchange(m_bRaised, true);
    if (m_ePassing == Passing::All || (m_ePassing == Passing::First && isFirst))
        m_rTarget.ShowStopBox(box, exitCode);
}

void CFailureGate::Let(Passing passing)
{
    m_ePassing = passing;
    m_bRaised = false;
}

CTXDHelper::CTXDHelper(const CPluginTable& plugins, RW::IFailures& failures, IFileSystem& files)
    : m_rPlugins(plugins), m_rFiles(files), m_oGate(failures)
{
}

template <class OpenReader>
void CTXDHelper::ChooseReader(OpenReader openReader)
{
    m_pDictionary.reset();
    m_oGate.Let(CFailureGate::Passing::None);
    std::array<std::wstring, kReaders.size()> messages;
    auto claimed = ReaderKind::PC;
    for (const ReaderKind kind : kReaders) {
        auto reader = MakeReader(kind, m_oGate, m_rFiles);
        reader->SetQuiet(true);
        if (openReader(*reader)) {
            m_pDictionary = std::move(reader);
            break;
        }
        messages[static_cast<std::size_t>(kind)] = reader->LastError();
        if (claimed == ReaderKind::PC)
            claimed = ClaimedReader(*reader);
    }
    m_oGate.Let(CFailureGate::Passing::All);
    if (!m_pDictionary)
        throw RW::CException(messages[static_cast<std::size_t>(claimed)], nullptr, nullptr);
    m_pDictionary->SetQuiet(false);
    if (!m_pDictionary->LastError().empty())
        throw RW::CException(m_pDictionary->LastError(), m_pDictionary.get(), nullptr);
}

void CTXDHelper::OpenDictionary(const std::filesystem::path& file)
{
    ChooseReader([&](RW::CTXDCommon& reader) { return reader.Open(file, 0, RW::kNoRootId, 0); });
}

void CTXDHelper::AttachDictionary(const IFile& file, std::uint64_t offset)
{
    ChooseReader([&](RW::CTXDCommon& reader) { return reader.AttachDictionary(file, offset); });
}

std::uint32_t CTXDHelper::Version() const
{
    if (!m_pDictionary || m_pDictionary->Root() == nullptr)
        throw RW::CException(std::wstring(RW::Message::kNotOpened), m_pDictionary.get(), nullptr);
    return m_pDictionary->Root()->Version();
}

std::uint32_t CTXDHelper::TextureCount()
{
    if (!m_pDictionary)
        return 0;
    const std::uint32_t reachable = m_pDictionary->ReachableTextures();
    if (reachable < m_pDictionary->GetTextureCount())
        m_pDictionary->GetNode({std::int64_t{reachable} + 1, 0});
    return reachable;
}

DictionaryTexture CTXDHelper::Describe(std::uint32_t index)
{
    const CFirstBoxOnly oneBoxForAll(m_oGate);
    RW::ITXD& dictionary = *m_pDictionary;
    DictionaryTexture texture;
    texture.index = index;
    texture.name = dictionary.GetName(index, RW::TextureText::Name);
    texture.mask = dictionary.GetName(index, RW::TextureText::Mask);
    texture.width = dictionary.GetWidth(index);
    texture.height = dictionary.GetHeight(index);
    texture.depth = dictionary.GetDepth(index);
    texture.mips = dictionary.GetMipLevels(index);
    texture.rasterFormat = dictionary.GetRasterFormat(index, RW::FormatForm::Layout);
    texture.rasterFormatRaw = dictionary.GetRasterFormat(index, RW::FormatForm::Raw);
    texture.compression = dictionary.GetCompression(index);
    texture.formatText = dictionary.GetFormatText(index);
    texture.hasAlpha = dictionary.HasAlpha(index);
    texture.platform = dictionary.GetPlatform(index);
    texture.isDamaged = m_oGate.WasRaised();
    return texture;
}

std::vector<DictionaryTexture> CTXDHelper::DescribeAll()
{
    std::vector<DictionaryTexture> textures;
    const std::uint32_t count = TextureCount();
    textures.reserve(count);
    for (std::uint32_t index = 0; index < count; ++index)
        textures.push_back(Describe(index));
    return textures;
}

CBitmap CTXDHelper::ToBitmap(std::uint32_t index)
{
    const CFirstBoxOnly oneBoxForAll(m_oGate);
    const TXDPicture picture = ReadAnyPicture(*m_pDictionary, index);
    CLoadedTexture loaded(*m_pDictionary, index);
    if (m_oGate.WasRaised())
        throw CError(std::wstring(RW::Message::kRecordUnreadable), true);
    // Unswizzled pixels are a copy, so the record need not stay while they are drawn.
    if (!picture.ownPixels.empty())
        loaded.Drop();
    return DrawPicture(picture, m_rPlugins);
}

TXDPicture CTXDHelper::TakePicture(std::uint32_t index)
{
    const CFirstBoxOnly oneBoxForAll(m_oGate);
    TXDPicture picture = ReadAnyPicture(*m_pDictionary, index);
    const CLoadedTexture loaded(*m_pDictionary, index);
    if (m_oGate.WasRaised())
        throw CError(std::wstring(RW::Message::kRecordUnreadable), true);
    const auto keep = [](std::span<const std::byte>& part, std::vector<std::byte>& own) {
        if (own.empty())
            own.assign(part.begin(), part.end());
        part = own;
    };
    keep(picture.pixels, picture.ownPixels);
    keep(picture.palette, picture.ownPalette);
    return picture;
}
