#pragma once

// The root of the RenderWare classes and the error state that streams and sections share. A soft error is
// kept as the last error and thrown, unless its object is quiet; whoever catches it shows its text.

#include <memory>
#include <string>
#include <string_view>

namespace RW {

class CNode;

class CObject {
public:
    CObject() = default;
    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;
    virtual ~CObject() = default;
};

class CBaseEx : public CObject {
public:
    /// A quiet object only remembers its soft errors.
    bool IsQuiet() const { return m_bQuiet; }
    void SetQuiet(bool isQuiet) { m_bQuiet = isQuiet; }
    /// The message of the most recent error of any kind; empty when there was none.
    const std::wstring& LastError() const { return m_sLastError; }

protected:
    enum class Throwing { Allowed, Never };

    void SetLastError(std::wstring_view message) { m_sLastError = message; }
    /// Keeps the message and throws CException; returns only when the object is quiet or throwing is off.
    void RaiseSoftError(std::wstring_view message, std::shared_ptr<const CNode> node = nullptr,
                        Throwing throwing = Throwing::Allowed);

private:
    bool m_bQuiet = false;
    std::wstring m_sLastError;
};

}  // namespace RW
