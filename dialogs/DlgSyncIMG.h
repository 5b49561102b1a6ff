#pragma once

// "Synchronize with IMG": the textures of the open database that no model in some IMG archives uses, and
// their deletion. Modal. It owns what it found.

#include <filesystem>
#include <string>
#include <vector>

#include "dialogs/ArchiveDialog.h"
#include "tools/SyncArchives.h"

class CDlgSyncIMG final : public CArchiveDialog {
public:
    explicit CDlgSyncIMG(const ArchiveDialogParts& parts);

private:
    bool OnInit() override;
    std::wstring CellText(int row, int column) const override;
    /// Deliberate: no single archive is open, so there is nothing to export.
    /// SyncIMGDialog.HasAnExportCommandWithoutEffect pins it.
    void ExportCurrent() override {}
    void AskAndScan();
    void ListTextures();
    void CheckUnused();
    void AskAndDelete();
    std::vector<CheckedTexture> CheckedTextures() const;

    struct Row {
        CheckedTexture texture;
        bool isAlias = false;
    };
    std::vector<Row> m_aRows;
    UsedTextures m_oUsed;
};
