#include "tests/support/DatabaseBuilder.h"

#include <fstream>
#include <iterator>

#include "base/ByteWriter.h"

CDatabaseBuilder& CDatabaseBuilder::Cache(const std::string& infix)
{
    m_aCaches[infix];
    return *this;
}

CDatabaseBuilder& CDatabaseBuilder::Category(std::string_view line)
{
    return Text(std::string(line) + "\r\n");
}

CDatabaseBuilder& CDatabaseBuilder::Texture(std::string_view name, std::string_view pairs)
{
    m_aNames.emplace_back(name);
    return Text("\"" + std::string(name) + "\"" + std::string(pairs) + "\r\n");
}

CDatabaseBuilder& CDatabaseBuilder::Alias(std::string_view name, std::string_view target)
{
    return Texture(name, " \"affiliate=" + std::string(target) + "\"");
}

CDatabaseBuilder& CDatabaseBuilder::Text(std::string_view text)
{
    m_sText += text;
    return *this;
}

void CDatabaseBuilder::AppendRecord(std::vector<std::byte>& file, const BuiltRaster& raster) const
{
    CByteWriter out;
    out.U16(BuiltNameHash(m_aNames.back()) & 0xFFFFU)
        .U16(raster.glFormat)
        .U16(raster.width)
        .U16(raster.heightAndMips);
    if (m_bFramed)
        out.U32(static_cast<std::uint32_t>(raster.pixels.size() + 4)).U32(0);
    out.Bytes(raster.pixels);
    const auto record = out.Take();
    file.insert(file.end(), record.begin(), record.end());
}

CDatabaseBuilder& CDatabaseBuilder::Raster(const std::string& infix, const BuiltRaster& raster)
{
    BuiltCache& cache = m_aCaches[infix];
    cache.offsets[m_aNames.size() - 1] = static_cast<std::uint32_t>(cache.dat.size());
    AppendRecord(cache.dat, raster);
    return *this;
}

CDatabaseBuilder& CDatabaseBuilder::Thumbnail(const std::string& infix, const BuiltRaster& raster)
{
    AppendRecord(m_aCaches[infix].tmb, raster);
    return *this;
}

CDatabaseBuilder& CDatabaseBuilder::Picture(const std::string& infix, std::uint8_t fill)
{
    return Picture(infix, fill, 4, 4);
}

CDatabaseBuilder& CDatabaseBuilder::Picture(const std::string& infix, std::uint8_t fill, std::uint16_t width,
                                            std::uint16_t height)
{
    const std::vector<std::byte> pixels(std::size_t{4} * width * height, std::byte{fill});
    Raster(infix, {.glFormat = 0x1401, .width = width, .heightAndMips = height, .pixels = pixels});
    return Thumbnail(infix,
                     {.glFormat = 0x1401, .width = 1, .heightAndMips = 1, .pixels = {4, std::byte{fill}}});
}

FileBytes CDatabaseBuilder::Files(const std::string& stem) const
{
    FileBytes files;
    files[stem + ".txt"] = BytesOf(m_sText);
    for (const auto& [infix, cache] : m_aCaches) {
        CByteWriter toc;
        toc.U32(static_cast<std::uint32_t>(cache.dat.size()));
        for (std::size_t i = 0; i < m_aNames.size(); ++i) {
            const auto found = cache.offsets.find(i);
            toc.U32(found != cache.offsets.end() ? found->second : 0xFFFFFFFFU);
        }
        std::string name = stem;
        name += "." + infix;
        files[name + ".toc"] = toc.Take();
        files[name + ".dat"] = cache.dat;
        files[name + ".tmb"] = cache.tmb;
    }
    return files;
}

void CDatabaseBuilder::Write(const std::filesystem::path& list) const
{
    WriteFiles(list.parent_path(), Files(list.stem().string()));
}

std::uint32_t BuiltNameHash(std::string_view name)
{
    std::uint32_t hash = 0;
    for (const char character : name)
        hash = hash * 33U + static_cast<unsigned char>(character);
    return hash + (hash >> 5);
}

FileBytes FilesOf(const std::filesystem::path& folder)
{
    FileBytes files;
    for (const auto& item : std::filesystem::directory_iterator(folder)) {
        if (!item.is_regular_file())
            continue;
        std::ifstream in(item.path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        files[item.path().filename().string()] = BytesOf(text);
    }
    return files;
}

void WriteFiles(const std::filesystem::path& folder, const FileBytes& files)
{
    for (const auto& [name, bytes] : files) {
        std::ofstream out(folder / name, std::ios::binary | std::ios::trunc);
        const std::string text = TextOf(bytes);
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
    }
}

std::vector<std::byte> BytesOf(std::string_view text)
{
    std::vector<std::byte> bytes;
    bytes.reserve(text.size());
    for (const char character : text)
        bytes.push_back(static_cast<std::byte>(character));
    return bytes;
}

std::string TextOf(const std::vector<std::byte>& bytes)
{
    std::string text;
    text.reserve(bytes.size());
    for (const std::byte byte : bytes)
        text.push_back(static_cast<char>(byte));
    return text;
}
