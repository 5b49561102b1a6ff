#pragma once

// What a soft error throws: its message, the object that raised it and the section that was being read.

#include <memory>
#include <stdexcept>
#include <string>

#include "rw/BaseEx.h"

namespace RW {

class CException : public std::runtime_error {
public:
    CException(const std::wstring& message, const CBaseEx* object, std::shared_ptr<const CNode> node);

    const std::wstring& Message() const { return m_sMessage; }
    /// The object that raised it; not to be looked into, because it may be gone.
    const CBaseEx* Object() const { return m_pObject; }
    /// The section concerned, which lives as long as the exception; null when there is none.
    const std::shared_ptr<const CNode>& Node() const { return m_pNode; }

private:
    std::wstring m_sMessage;
    const CBaseEx* m_pObject;
    std::shared_ptr<const CNode> m_pNode;
};

}  // namespace RW
