#include "tests/e2e/DatabaseFiles.h"

#include <gtest/gtest.h>
#include <tuple>

#include "tests/e2e/driver/Wait.h"

namespace {

// While the file is being replaced there may be none.
auto StampOf(const std::filesystem::path& file)
{
    WIN32_FILE_ATTRIBUTE_DATA facts{};
    ::GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &facts);
    return std::tuple(facts.ftLastWriteTime.dwHighDateTime, facts.ftLastWriteTime.dwLowDateTime,
                      facts.nFileSizeLow);
}

}  // namespace

void WaitForRewrite(const std::filesystem::path& list, const std::function<void()>& steps)
{
    const auto before = StampOf(list);
    steps();
    WaitUntil("the list to be rewritten", [&] { return StampOf(list) != before; });
}

void ExpectSameFiles(const FileBytes& files, const FileBytes& wanted)
{
    const auto namesOf = [](const FileBytes& all) {
        std::vector<std::string> names;
        for (const auto& [name, bytes] : all)
            names.push_back(name);
        return names;
    };
    EXPECT_EQ(namesOf(files), namesOf(wanted));
    for (const auto& [name, bytes] : wanted) {
        const auto found = files.find(name);
        const bool isSame = found == files.end() || found->second == bytes;
        EXPECT_TRUE(isSame) << name << ", of " << bytes.size() << " bytes";
    }
}

CHeldFile::CHeldFile(const std::filesystem::path& file, DWORD share)
    : m_hFile(::CreateFileW(file.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr))
{
    if (m_hFile == INVALID_HANDLE_VALUE)
        throw CDriveError("cannot hold " + file.string());
}

CHeldFile::~CHeldFile()
{
    ::CloseHandle(m_hFile);
}
