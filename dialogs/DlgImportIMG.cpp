#include "dialogs/DlgImportIMG.h"

#include "app/resource.h"

CDlgImportIMG::CDlgImportIMG(const ArchiveDialogParts& parts, CacheIndex target)
    : CDlgIMGTool(IDD_IMPORT_IMG, parts, target, ArchiveRows::Dictionaries)
{
}

void CDlgImportIMG::OnListed()
{
    if (List().Count() == 0)
        Parts().prompt.Show(
            {.text = String(IDS_IMG_NO_TXDS), .caption = String(IDS_ERROR), .icon = PromptIcon::Warning});
}
