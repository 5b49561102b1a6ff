#include "tests/e2e/SampleDatabase.h"

#include <fstream>
#include <iterator>

#include "image/ImageFile.h"
#include "tests/e2e/driver/Program.h"
#include "tests/e2e/driver/Wait.h"

namespace {

struct Picture {
    const char* name;
    std::uint32_t width;
    std::uint32_t height;
    std::uint8_t blue;
    std::uint8_t green;
    std::uint8_t red;
};

// Of one colour each, so that a picture that comes out of a lossy cache is still known by sight.
constexpr Picture kPictures[] = {{"brick", 64, 64, 40, 80, 200},
                                 {"leaf", 32, 32, 56, 160, 40},
                                 {"wall", 128, 64, 136, 120, 120},
                                 {"sign", 16, 16, 200, 40, 24}};

std::filesystem::path SavePicture(const std::filesystem::path& folder, const Picture& picture)
{
    auto bitmap = CBitmap::Create(picture.width, picture.height).value();
    auto pixels = bitmap.Pixels();
    for (std::size_t at = 0; at < pixels.size(); at += 4) {
        pixels[at] = picture.blue;
        pixels[at + 1] = picture.green;
        pixels[at + 2] = picture.red;
        pixels[at + 3] = 255;
    }
    auto file = folder / (std::string(picture.name) + ".png");
    if (!SaveImageFile(file, bitmap, ImageFormat::Png))
        throw CDriveError("a picture cannot be written");
    return file;
}

}  // namespace

CSampleDatabase::CSampleDatabase()
{
    MakeEmptyDatabase(List());
    const std::wstring list = List().wstring();
    RunCommandLine({L"category", list, L"add", L"Signs"});
    for (const Picture& picture : kPictures) {
        const auto file = SavePicture(m_oFolder.Path(), picture);
        const bool isSign = std::string_view(picture.name) == "sign";
        RunCommandLine({L"--game", L"sa", L"import", list, file.wstring(), L"--no-alpha", L"--category",
                        isSign ? L"Signs" : L"Default"});
        std::filesystem::remove(file);
    }
    RunCommandLine({L"alias", list, L"brick", L"brick_old"});
}

void MakeEmptyDatabase(const std::filesystem::path& list)
{
    RunCommandLine({L"new", list.wstring(), L"--caches", L"dxt,unc"});
}

void RunCommandLine(const std::vector<std::wstring>& arguments)
{
    const CTemporaryFolder folder;
    const auto output = folder / "output.txt";
    const CProgram program(FolderOfThisProgram().parent_path() / "bin" / "mavrel-cli.exe", arguments, output);
    if (program.WaitForExit() != 0)
        throw CDriveError("mavrel-cli: " + ReadFile(output));
}

std::string ReadFile(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}
