#include "tools/ModelCheck.h"

#include <algorithm>
#include <iterator>

#include "base/Text.h"
#include "rw/Exception.h"
#include "rw/Messages.h"
#include "rw/ModelTextures.h"
#include "rw/SectionId.h"
#include "rw/TXDPC.h"

ModelTexture CheckTextureName(const CTextureDatabase* database, const std::wstring& name)
{
    if (database == nullptr)
        return {name, L"Cache not loaded", std::nullopt};
    const auto index = database->FindByName(name, false);
    return {name, index ? L"OK" : L"Not Found", index};
}

CModelCheck::CModelCheck(RW::IFailures& failures, IFileSystem& files) : m_rFailures(failures), m_rFiles(files)
{
}

void CModelCheck::Open(const std::filesystem::path& file)
{
    m_pModel = nullptr;
    auto model = std::make_unique<RW::CSimpleDFF>(m_rFailures, m_rFiles);
    model->Open(file, 0, RW::kNoRootId, 0);
    if (model->Root()->Id() != RW::TextureDictionaryId) {
        m_pModel = model.get();
        m_pStream = std::move(model);
        return;
    }
    // The first stream holds the file alone, so it goes before the dictionary comes.
    model.reset();
    auto dictionary = std::make_unique<RW::CTXDPC>(m_rFailures, m_rFiles);
    dictionary->Open(file, 0, RW::kNoRootId, 0);
    m_pStream = std::move(dictionary);
}

bool CModelCheck::IsModel() const
{
    return m_pModel != nullptr && m_pModel->Root()->Id() == RW::ClumpId;
}

// Deliberate: the textures of a dictionary are not listed.
std::vector<ModelTexture> CModelCheck::Check(const CTextureDatabase* database)
{
    std::vector<ModelTexture> rows;
    if (!IsModel())
        return rows;
    const auto names = RW::CollectTextureNames(*m_pModel);
    std::transform(names.begin(), names.end(), std::back_inserter(rows),
                   [database](const std::wstring& name) { return CheckTextureName(database, name); });
    return rows;
}

std::uint32_t CModelCheck::Rename(std::wstring_view from, std::wstring_view to)
{
    return IsModel() ? RW::RenameTextures(*m_pModel, from, to) : 0;
}

std::optional<std::wstring> CModelCheck::Save(const std::filesystem::path& file)
{
    try {
        if (m_pStream->Save(file))
            return std::nullopt;
    } catch (const RW::CException& error) {
        return error.Message();
    }
    return std::wstring(m_pStream->LastError().empty() ? RW::Message::kUnknownSaveError
                                                       : m_pStream->LastError());
}

std::optional<std::wstring> CModelCheck::SavePlainText(const std::filesystem::path& file)
{
    if (!IsModel())
        return std::wstring(RW::Message::kUnknownError);
    const std::string text = Narrow(RW::PlainTextOf(*m_pModel));
    if (WriteWholeFile(m_rFiles, file, std::as_bytes(std::span(text))))
        return std::nullopt;
    return std::wstring(RW::Message::kUnknownError);
}
