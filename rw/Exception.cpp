#include "rw/Exception.h"

#include <utility>

#include "base/Text.h"

namespace RW {

CException::CException(const std::wstring& message, const CBaseEx* object, std::shared_ptr<const CNode> node)
    : std::runtime_error(ToUtf8(message)), m_sMessage(message), m_pObject(object), m_pNode(std::move(node))
{
}

}  // namespace RW
