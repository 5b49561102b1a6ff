#include "app/TreePictures.h"

#include "codec/RasterDecoding.h"
#include "image/BitmapTools.h"

namespace {

// A thumbnail that cannot be decoded is no reason to trouble anybody: the item just has no picture.
std::optional<CBitmap> SmallPicture(std::uint32_t index, std::uint32_t side, CTextureDatabase& database,
                                    const CPluginTable& plugins)
try {
    const auto cache = database.PrimaryCache();
    if (!cache)
        return std::nullopt;
    const auto decoded = DecodeTexture(database, plugins, index, *cache, RecordKind::Thumbnail);
    const auto bitmap = decoded && decoded->isWritten ? ToBitmap(*decoded) : std::nullopt;
    return bitmap ? ScaleBitmap(*bitmap, side, side) : std::nullopt;
} catch (const CError&) {
    return std::nullopt;
}

}  // namespace

void CTreePictures::Attach(const CTreeView& tree, int side)
{
    m_pList = std::make_unique<CImageList>(side);
    tree.Send(TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(m_pList->Handle()));  // NOLINT
    Reset(0);
}

void CTreePictures::Reset(std::uint32_t entries)
{
    if (!IsOn())
        return;
    m_pList->Clear();
    const auto side = static_cast<std::uint32_t>(m_pList->Side());
    m_pList->Add(CBitmap::Create(side, side).value());
    m_aNumbers.assign(entries, -1);
}

int CTreePictures::PictureOf(std::uint32_t index, CTextureDatabase& database, const CPluginTable& plugins)
{
    // While a list is read anew the tree may still show what is no longer there.
    if (!IsOn() || index >= m_aNumbers.size() || index >= database.EntryCount())
        return kBlank;
    int& number = m_aNumbers[index];
    if (number >= 0)
        return number;
    const auto picture = SmallPicture(index, static_cast<std::uint32_t>(m_pList->Side()), database, plugins);
    number = picture ? m_pList->Add(*picture) : kBlank;
    return number < 0 ? kBlank : number;
}
