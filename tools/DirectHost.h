#pragma once

// The editor where there is no window: imports and decodes at once, on the caller's thread. What only a
// window can show leaves no trace, unless a derived class wants to know. It borrows everything.

#include "tools/EditorHost.h"

class CDirectHost : public IEditorHost {
public:
    explicit CDirectHost(const CHostOperations& operations) : m_oOperations(operations) {}

    void Import(const CBitmap* picture, ImportRecord& record) override
    {
        m_oOperations.Import(picture, record);
    }
    void Show(const std::wstring& /*name*/, const CBitmap* /*picture*/) override {}
    void Select(std::uint32_t /*index*/) override {}
    void Refresh() override {}
    std::unique_ptr<CBitmap> Decode(std::uint32_t index, CacheIndex cache) override
    {
        return m_oOperations.Decode(index, cache);
    }

private:
    CHostOperations m_oOperations;
};
