#include "tools/DictionariesAhead.h"

#include <exception>
#include <utility>

#include "base/Text.h"
#include "database/DatabaseError.h"
#include "rw/Exception.h"
#include "tools/TXDPicture.h"

namespace {

constexpr std::uint32_t kDepthWithAlpha = 32;

// More than one texture for each thread, so that none waits while the caller stores.
constexpr std::size_t kTexturesInStock = 2;

TextureAhead Prepare(std::shared_ptr<TXDPicture> stored, const CPluginTable& plugins,
                     const PreparationRules& rules, const LikelyDuplicate& isDuplicate)
{
    TextureAhead ahead;
    try {
        ahead.picture = DrawPicture(*stored, plugins);
    } catch (const CError&) {  // its turn fails in the same way
        return ahead;
    }
    stored.reset();
    ahead.texture = PrepareEarly(*ahead.picture, rules, isDuplicate);
    return ahead;
}

}  // namespace

ImportRequest RequestFor(const DictionaryTexture& texture)
{
    ImportRequest request;
    request.hasAlpha = texture.hasAlpha || texture.depth == kDepthWithAlpha;
    request.storeRgba8888 = texture.depth == kDepthWithAlpha;
    return request;
}

CDictionariesAhead::CDictionariesAhead(const Surroundings& around, unsigned threads)
    : m_oAround(around),
      m_oHelper(around.plugins, m_oFailures),
      m_nMostPending(threads == 0 ? 0 : threads + kTexturesInStock),
      m_oPipeline(threads)
{
}

TextureAhead CDictionariesAhead::Take(TexturePlace place, const std::function<void()>& idle)
{
    DropBefore(place);
    while (m_aPending.size() < m_nMostPending && HandOutOne())
        DropBefore(place);
    if (m_aPending.empty() || m_aPending.front() != place)
        return {};
    m_aPending.pop_front();
    try {
        return m_oPipeline.Take(idle);
    } catch (const std::exception&) {
        return {};  // memory was short; the caller tries again, alone
    }
}

void CDictionariesAhead::DropBefore(TexturePlace place)
{
    while (!m_aPending.empty() && m_aPending.front() < place) {
        m_aPending.pop_front();
        m_oPipeline.Drop();
    }
}

// False when there are no more. What will be asked about and decided in its turn is guessed here: a texture
// that will probably be refused or skipped is not worth the work.
bool CDictionariesAhead::HandOutOne()
{
    while (m_oNext.texture >= m_nTextures)
        if (!OpenNextDictionary())
            return false;
    try {
        const DictionaryTexture texture = m_oHelper.Describe(m_oNext.texture);
        if (const auto rules = RulesFor(texture))
            HandOut(texture, *rules);
    } catch (const std::exception&) {  // whatever it is, the texture's turn tells
    }
    ++m_oNext.texture;
    return true;
}

bool CDictionariesAhead::OpenNextDictionary()
{
    if (m_oNext.dictionary >= m_oAround.entries.size())
        return false;
    if (std::exchange(m_bHasStarted, true))
        ++m_oNext.dictionary;
    m_oNext.texture = 0;
    m_nTextures = 0;
    m_oHelper.CloseDictionary();
    if (m_oNext.dictionary >= m_oAround.entries.size())
        return false;
    const std::uint32_t entry = m_oAround.entries[m_oNext.dictionary];
    if (m_oAround.archive.File() == nullptr || !m_oAround.archive.IsReachable(entry))
        return true;
    try {
        m_oHelper.AttachDictionary(*m_oAround.archive.File(), m_oAround.archive.EntryOffset(entry));
    } catch (const std::exception&) {  // its turn tells; what was read is prepared all the same
    }
    m_nTextures = m_oHelper.TextureCount();
    return true;
}

std::optional<PreparationRules> CDictionariesAhead::RulesFor(const DictionaryTexture& texture)
{
    if (texture.isDamaged || m_oAround.database.FindByName(texture.name, false))
        return std::nullopt;
    CheckTextureName(texture.name);
    if (!m_aHandedOut.insert(ToLowerAscii(texture.name)).second)
        return std::nullopt;
    const auto game = GameOfDatabase(m_oAround.database);
    const ImportTarget target = TargetByRules(m_oAround.database, m_oAround.settings, texture.name,
                                              RequestFor(texture), game.value_or(StreamMode::Raw));
    return ReadPreparationRules(m_oAround.database, m_oAround.plugins, m_oAround.settings, target);
}

void CDictionariesAhead::HandOut(const DictionaryTexture& texture, const PreparationRules& rules)
{
    auto stored = std::make_shared<TXDPicture>(m_oHelper.TakePicture(texture.index));
    const bool findsDuplicates = m_oAround.settings.IsOn(L"global", L"enable_img_hash", true);
    m_oPipeline.Give([stored = std::move(stored), rules, name = texture.name, findsDuplicates,
                      &plugins = m_oAround.plugins, &known = m_oAround.known]() mutable {
        return Prepare(std::move(stored), plugins, rules, [&](std::uint32_t imageHash, PixelSize size) {
            return findsDuplicates && known.HasOther(imageHash, size, name);
        });
    });
    m_aPending.push_back(m_oNext);
}
