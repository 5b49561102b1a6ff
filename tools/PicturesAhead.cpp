#include "tools/PicturesAhead.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "base/Text.h"
#include "image/Hash.h"
#include "image/ImageFile.h"

namespace {

// More than one picture for each thread, so that none waits while the caller stores.
constexpr std::size_t kPicturesInStock = 2;

PictureAhead PrepareFile(const std::filesystem::path& file, const PictureOutlook& outlook,
                         const CKnownPictures& known)
{
    PictureAhead ahead;
    ahead.picture = LoadImageFile(file);
    if (!ahead.picture)
        return ahead;
    if (outlook.needsFileHash)
        ahead.fileHash = HashFile(file);
    ahead.texture = PrepareEarly(*ahead.picture, outlook.rules, [&](std::uint32_t imageHash, PixelSize size) {
        return outlook.findsDuplicates && known.HasOther(imageHash, size, outlook.name);
    });
    return ahead;
}

}  // namespace

void CKnownPictures::Add(std::uint32_t imageHash, PixelSize size, const std::wstring& name)
{
    const std::lock_guard lock(m_oMutex);
    m_aPictures.emplace(std::tuple(imageHash, size.width, size.height), ToLowerAscii(name));
}

void CKnownPictures::Add(const TextureEntry& entry)
{
    if (!entry.IsAlias() && entry.Value(Property::Img) != 0)
        Add(entry.Value(Property::Img), {entry.Value(Property::Width), entry.Value(Property::Height)},
            entry.name);
}

void CKnownPictures::AddAll(const CTextureDatabase& database)
{
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index)
        Add(database.Entry(index));
}

bool CKnownPictures::HasOther(std::uint32_t imageHash, PixelSize size, const std::wstring& name) const
{
    const std::wstring own = ToLowerAscii(name);
    const std::lock_guard lock(m_oMutex);
    const auto [first, last] = m_aPictures.equal_range({imageHash, size.width, size.height});
    return std::any_of(first, last, [&own](const auto& picture) { return picture.second != own; });
}

CPicturesAhead::CPicturesAhead(const std::vector<std::filesystem::path>& files, unsigned threads,
                               Outlook outlook, const CKnownPictures& known)
    : m_aFiles(files),
      m_fnOutlook(std::move(outlook)),
      m_rKnown(known),
      m_nMostPending(threads == 0 ? 0 : threads + kPicturesInStock),
      m_oPipeline(threads)
{
}

void CPicturesAhead::Next()
{
    if (m_bHasOne)
        m_oPipeline.Drop();
    while (m_nHandedOut < m_aFiles.size() && m_oPipeline.Pending() < m_nMostPending)
        HandOut(m_aFiles[m_nHandedOut++]);
    m_bHasOne = m_oPipeline.Pending() != 0;
}

void CPicturesAhead::HandOut(const std::filesystem::path& file)
{
    std::optional<PictureOutlook> outlook;
    try {
        outlook = m_fnOutlook(file);
    } catch (const std::exception&) {  // whatever it is, the file's turn tells
    }
    if (!outlook)
        m_oPipeline.Give([] { return PictureAhead(); });
    else
        m_oPipeline.Give([file, outlook = std::move(*outlook), &known = m_rKnown] {
            return PrepareFile(file, outlook, known);
        });
}

PictureAhead CPicturesAhead::Take(const std::function<void()>& idle)
{
    if (!std::exchange(m_bHasOne, false))
        return {};
    try {
        return m_oPipeline.Take(idle);
    } catch (const std::exception&) {
        return {};  // memory was short; the caller tries again, alone
    }
}
