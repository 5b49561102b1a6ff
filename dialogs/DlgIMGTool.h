#pragma once

// "IMGTool": the directory of one IMG archive. Texture dictionaries in it can be imported, and entries saved
// as files; an archive is never written. Modal. It owns the open archive. CDlgImportIMG differs in which
// entries it lists.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "dialogs/ArchiveDialog.h"
#include "img/ImgArchive.h"
#include "tools/ArchiveEntries.h"

class CDlgIMGTool : public CArchiveDialog {
public:
    /// `archive` is opened at once, unless it is empty.
    explicit CDlgIMGTool(const ArchiveDialogParts& parts, std::filesystem::path archive = {});

protected:
    CDlgIMGTool(int templateId, const ArchiveDialogParts& parts, CacheIndex target, ArchiveRows rows);

    bool OnInit() override;
    /// After the rows of an archive were listed, all of them.
    virtual void OnListed() {}

private:
    void BindCommands();
    std::wstring CellText(int row, int column) const override;
    void ExportCurrent() override;
    void AskAndOpen();
    void OpenArchive(const std::filesystem::path& file);
    void ImportSelected();
    void ImportChecked();
    void CheckAll() const;
    std::optional<std::uint32_t> SelectedEntry() const;

    std::filesystem::path m_sFirstArchive;
    CacheIndex m_eTarget = CacheIndex::Dxt;
    ArchiveRows m_eRows = ArchiveRows::Everything;
    CImgArchive m_oArchive;
    std::vector<std::uint32_t> m_aEntries;  // the entry of each row
};
