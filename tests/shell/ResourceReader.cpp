#include "tests/shell/ResourceReader.h"

#include <algorithm>
#include <array>

#include "app/Resources.h"
#include "base/ByteReader.h"

namespace {

constexpr UINT kStringsOfABlock = 16;
constexpr std::size_t kTemplateAlignment = 4;

BOOL CALLBACK AddId(HMODULE, const wchar_t*, wchar_t* name, LONG_PTR ids)
{
    if (IS_INTRESOURCE(name))
        reinterpret_cast<std::vector<int>*>(ids)->push_back(       // NOLINT: the parameter of the enumeration
            static_cast<int>(reinterpret_cast<ULONG_PTR>(name)));  // NOLINT: a number, by the check above
    return TRUE;
}

std::vector<ReadMenuItem> ItemsOf(HMENU menu)
{
    std::vector<ReadMenuItem> items;
    for (int position = 0; position < ::GetMenuItemCount(menu); ++position) {
        std::array<wchar_t, 512> text{};
        MENUITEMINFOW info{};
        info.cbSize = sizeof info;
        info.fMask = MIIM_FTYPE | MIIM_ID | MIIM_STATE | MIIM_STRING | MIIM_SUBMENU;
        info.dwTypeData = text.data();
        info.cch = static_cast<UINT>(text.size());
        ::GetMenuItemInfoW(menu, static_cast<UINT>(position), TRUE, &info);
        ReadMenuItem item;
        item.isSeparator = (info.fType & MFT_SEPARATOR) != 0;
        item.isGrayed = (info.fState & MFS_GRAYED) != 0;
        item.text = text.data();
        item.isPopup = info.hSubMenu != nullptr;
        if (item.isPopup)
            item.items = ItemsOf(info.hSubMenu);
        else
            item.id = info.wID;
        items.push_back(std::move(item));
    }
    return items;
}

/// Goes through the words of a dialog template, which are aligned from its beginning.
class CTemplateReader {
public:
    explicit CTemplateReader(std::span<const std::byte> bytes) : m_oIn(bytes), m_nSize(bytes.size()) {}

    std::uint16_t U16() { return m_oIn.U16(); }
    std::uint32_t U32() { return m_oIn.U32(); }
    void Skip(std::size_t count) { m_oIn.Skip(count); }
    void Align()
    {
        const std::size_t read = m_nSize - m_oIn.Left();
        m_oIn.Skip((kTemplateAlignment - read % kTemplateAlignment) % kTemplateAlignment);
    }
    std::wstring Text()
    {
        std::wstring text;
        while (m_oIn.Ok()) {
            const std::uint16_t unit = m_oIn.U16();
            if (unit == 0)
                break;
            text.push_back(static_cast<wchar_t>(unit));
        }
        return text;
    }
    /// A text, or a number behind the word 0xFFFF.
    std::wstring TextOrNumber()
    {
        const CByteReader before = m_oIn;
        if (m_oIn.U16() != 0xFFFF) {
            m_oIn = before;
            return Text();
        }
        std::array<wchar_t, 8> number{};
        ::wsprintfW(number.data(), L"#%04X", static_cast<unsigned>(m_oIn.U16()));
        return number.data();
    }

private:
    CByteReader m_oIn;
    std::size_t m_nSize;
};

//  0  u32  help number          12  i16  place and size, four words
//  4  u32  extended style       20  u32  id
//  8  u32  style                24  class, text, u16 count of bytes that follow
ReadControl ReadControlOf(CTemplateReader& in)
{
    ReadControl control;
    in.Align();
    in.Skip(4);
    control.exStyle = in.U32();
    control.style = in.U32();
    in.Skip(8);
    control.id = in.U32();
    control.className = in.TextOrNumber();
    control.text = in.TextOrNumber();
    in.Skip(in.U16());
    return control;
}

}  // namespace

std::vector<int> ResourceIds(HMODULE module, const wchar_t* type)
{
    std::vector<int> ids;
    ::EnumResourceNamesW(module, type, AddId, reinterpret_cast<LONG_PTR>(&ids));  // NOLINT: as it is defined
    std::sort(ids.begin(), ids.end());
    return ids;
}

std::map<UINT, std::wstring> ReadStrings(HMODULE module)
{
    std::map<UINT, std::wstring> strings;
    for (const int block : ResourceIds(module, RT_STRING)) {
        const UINT first = (static_cast<UINT>(block) - 1) * kStringsOfABlock;
        for (UINT id = first; id < first + kStringsOfABlock; ++id)
            if (auto text = CResources::TextOf(module, id); !text.empty())
                strings[id] = std::move(text);
    }
    return strings;
}

std::vector<ReadMenuItem> ReadMenu(HMODULE module, int id)
{
    const CMenuHandle menu(::LoadMenuW(module, MAKEINTRESOURCEW(id)));
    return ItemsOf(menu.get());
}

//  0  u16  1, u16 0xFFFF: the extended form     16  u16  count of controls
//  4  u32  help number                          18  i16  place and size, four words
//  8  u32  extended style                       26  menu, class, title
// 12  u32  style                                    u16 point size, u16 weight, u8 italic, u8 charset, font
// name
ReadDialog ReadDialogTemplate(HMODULE module, int id)
{
    HRSRC found = ::FindResourceW(module, MAKEINTRESOURCEW(id), RT_DIALOG);
    const auto* bytes = static_cast<const std::byte*>(::LockResource(::LoadResource(module, found)));
    CTemplateReader in({bytes, ::SizeofResource(module, found)});
    ReadDialog dialog;
    in.Skip(8);
    dialog.exStyle = in.U32();
    dialog.style = in.U32();
    const std::uint16_t count = in.U16();
    in.Skip(8);
    in.TextOrNumber();
    in.TextOrNumber();
    dialog.title = in.Text();
    if ((dialog.style & DS_SETFONT) != 0) {
        dialog.pointSize = in.U16();
        in.Skip(4);
        dialog.font = in.Text();
    }
    for (std::uint16_t control = 0; control < count; ++control)
        dialog.controls.push_back(ReadControlOf(in));
    return dialog;
}

std::vector<ReadKey> ReadAccelerators(HMODULE module, int id)
{
    const CAcceleratorHandle table(::LoadAcceleratorsW(module, MAKEINTRESOURCEW(id)));
    std::vector<ACCEL> keys(static_cast<std::size_t>(::CopyAcceleratorTableW(table.get(), nullptr, 0)));
    ::CopyAcceleratorTableW(table.get(), keys.data(), static_cast<int>(keys.size()));
    std::vector<ReadKey> read;
    for (const ACCEL& key : keys)
        read.push_back({key.fVirt, key.key, key.cmd});
    return read;
}
