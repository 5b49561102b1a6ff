// mavrel-demo FOLDER
//
// Draws the pictures of the demo database into FOLDER, one folder for each category, and writes
// FOLDER/commands.txt, which scripts/make-demo gives to mavrel-cli line by line. Exit codes: 0 done, 1 a file
// cannot be written, 2 usage.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

#include "demo/CommandList.h"
#include "image/ImageFile.h"

namespace {

bool WritePictures(const std::vector<Demo::Picture>& pictures, const std::filesystem::path& folder)
{
    for (const Demo::Picture& picture : pictures) {
        const std::filesystem::path file = folder / Demo::PicturePath(picture);
        std::filesystem::create_directories(file.parent_path());
        if (!SaveImageFile(file, picture.draw().ToBitmap(), ImageFormat::Png)) {
            std::fprintf(stderr, "cannot write %s\n", file.string().c_str());
            return false;
        }
    }
    return true;
}

bool WriteCommands(const std::vector<Demo::Picture>& pictures, const std::filesystem::path& folder)
{
    std::ofstream out(folder / "commands.txt", std::ios::binary);
    for (const std::string& command : Demo::DatabaseCommands(pictures))
        out << command << '\n';
    out.flush();
    return out.good();
}

}  // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        std::fputs("usage: mavrel-demo FOLDER\n", stderr);
        return 2;
    }
    try {
        const std::vector<Demo::Picture> pictures = Demo::AllPictures();
        return WritePictures(pictures, arguments[1]) && WriteCommands(pictures, arguments[1]) ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
