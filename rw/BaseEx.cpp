#include "rw/BaseEx.h"

#include <utility>

#include "rw/Exception.h"

namespace RW {

void CBaseEx::RaiseSoftError(std::wstring_view message, std::shared_ptr<const CNode> node, Throwing throwing)
{
    SetLastError(message);
    if (!m_bQuiet && throwing == Throwing::Allowed)
        throw CException(std::wstring(message), this, std::move(node));
}

}  // namespace RW
