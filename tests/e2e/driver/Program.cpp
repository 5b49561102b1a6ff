#include "tests/e2e/driver/Program.h"

#include "tests/e2e/driver/Wait.h"

namespace {

// Backslashes count only before a quotation mark.
std::wstring Quoted(const std::wstring& argument)
{
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t letter : argument) {
        if (letter == L'"')
            text.append(backslashes + 1, L'\\');
        backslashes = letter == L'\\' ? backslashes + 1 : 0;
        text.push_back(letter);
    }
    text.append(backslashes, L'\\');
    return text + L"\"";
}

HANDLE CreateOutput(const std::filesystem::path& file)
{
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return ::CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
}

}  // namespace

CProgram::CProgram(const std::filesystem::path& program, const std::vector<std::wstring>& arguments,
                   const std::filesystem::path& output)
{
    std::wstring command = Quoted(program.wstring());
    for (const std::wstring& argument : arguments)
        command += L" " + Quoted(argument);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    HANDLE redirected = nullptr;
    if (!output.empty()) {
        redirected = CreateOutput(output);
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = redirected;
        startup.hStdError = redirected;
    }
    PROCESS_INFORMATION started{};
    const BOOL isStarted =
        ::CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, redirected ? TRUE : FALSE, 0,
                         nullptr, nullptr, &startup, &started);
    const DWORD error = ::GetLastError();
    if (redirected)
        ::CloseHandle(redirected);
    if (!isStarted)
        throw CDriveError("cannot start " + program.string() + ", error " + std::to_string(error));
    ::CloseHandle(started.hThread);
    m_hProcess = started.hProcess;
    m_nId = started.dwProcessId;
}

CProgram::~CProgram()
{
    if (IsRunning()) {
        ::TerminateProcess(m_hProcess, 1);
        ::WaitForSingleObject(m_hProcess, INFINITE);
    }
    ::CloseHandle(m_hProcess);
}

bool CProgram::IsRunning() const
{
    return ::WaitForSingleObject(m_hProcess, 0) == WAIT_TIMEOUT;
}

DWORD CProgram::WaitForExit() const
{
    WaitUntil("the end of the program", [this] { return !IsRunning(); });
    DWORD code = 0;
    ::GetExitCodeProcess(m_hProcess, &code);
    return code;
}

std::filesystem::path FolderOfThisProgram()
{
    std::wstring path(32768, L'\0');
    path.resize(::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return std::filesystem::path(path).parent_path();
}
