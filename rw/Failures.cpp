#include "rw/Failures.h"

#include "base/Format.h"
#include "base/Text.h"
#include "rw/SectionName.h"

namespace RW {
namespace {

constexpr std::wstring_view kStreamText =
    L"A fuckin' error occurred while processing CStream or derived class:\n\n  %s\n\nFile: %s\nLine: "
    L"%d\nIt's really seems to program execution cannot be continued.\n\n(Click cancel to exit program)";
constexpr std::wstring_view kNodeText =
    L"A fuckin' error occurred while processing CNode or one of it's derived classes:\n\n  %s\n\nFile: "
    L"%s\nLine: %d\n\nNode data:\n Section \"%s\" size: %d bytes, version: 0x%08X\n m_pData = 0x%08X\n "
    L"m_nSections = %d\n\nIt's really seems to program execution cannot be continued.\n\n(Click cancel to "
    L"exit program)";

PromptBox StopBox(std::wstring text, std::wstring caption)
{
    return {.text = std::move(text),
            .caption = std::move(caption),
            .icon = PromptIcon::Error,
            .buttons = PromptButtons::OkCancel};
}

}  // namespace

PromptBox StreamErrorBox(std::wstring_view message, std::wstring_view source, int line)
{
    return StopBox(Format(kStreamText, message, source, line), L"CStream fuckin' error");
}

PromptBox NodeErrorBox(std::wstring_view message, int line, const NodeFacts& facts)
{
    const std::wstring name = Widen(GetSectionName(facts.id).value_or(""));
    return StopBox(Format(kNodeText, message, L"CNode", line, name, facts.size, facts.version,
                          facts.dataAddress, facts.children),
                   L"CNode fuckin' error");
}

}  // namespace RW
