#include "tests/support/TemporaryFolder.h"

#include <random>
#include <system_error>

CTemporaryFolder::CTemporaryFolder()
{
    std::random_device entropy;
    do {
        m_sPath = std::filesystem::temp_directory_path() / ("mavrel-test-" + std::to_string(entropy()));
    } while (!std::filesystem::create_directory(m_sPath));
}

CTemporaryFolder::~CTemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_sPath, ignored);
}
