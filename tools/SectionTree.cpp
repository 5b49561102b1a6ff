#include "tools/SectionTree.h"

#include "base/Format.h"
#include "base/Text.h"
#include "rw/SectionId.h"
#include "rw/SectionName.h"

std::wstring SectionCaption(RW::CNode& node, const IFile* file)
{
    const std::wstring name = Widen(RW::GetSectionName(node.Id()).value_or(""));
    std::wstring caption = Format(L"%s (0x%X, %d bytes) ", name, node.DataOffset(), node.Size());
    if (node.Id() == RW::StringId)
        caption += L"\"" + RW::TextIn(node.GetData(file)) + L"\"";
    return caption;
}
