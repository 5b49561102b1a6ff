// mavrel-cli: everything that the editor does to a database, without a window.

#include <cstdio>
#include <string>
#include <vector>

#include "base/Text.h"
#include "cli/Command.h"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>

int wmain(int count, wchar_t** words)
{
    // Results are the same bytes on every system: UTF-8 with bare line feeds, and rasters as they are.
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    const ExitCode code = RunCommandLine({words + 1, words + count});
    return std::fflush(stdout) == 0 ? static_cast<int>(code) : static_cast<int>(ExitCode::Failed);
}
#else
int main(int count, char** words)
{
    std::vector<std::wstring> wide;
    for (int i = 1; i < count; ++i)
        wide.push_back(FromUtf8(words[i]));
    const ExitCode code = RunCommandLine(wide);
    return std::fflush(stdout) == 0 ? static_cast<int>(code) : static_cast<int>(ExitCode::Failed);
}
#endif
