#pragma once

// "Import IMG": the texture dictionaries of an IMG archive, of which the person ticks those that go into the
// open database. The IMG tool with another list.

#include "dialogs/DlgIMGTool.h"

class CDlgImportIMG final : public CDlgIMGTool {
public:
    /// `parts.editor` is there. `target` is the cache that the editor shows.
    CDlgImportIMG(const ArchiveDialogParts& parts, CacheIndex target);

private:
    void OnListed() override;
};
