#pragma once

// Writes the files of a texture database byte by byte, from the layouts in docs/formats/ and not through the
// code under test. Entries are added in list order; records go to the entry that was added last:
//
//     CDatabaseBuilder builder;
//     builder.Texture("brick").Picture("dxt", 0x11).Alias("wall", "brick").Texture("wood").Picture("dxt",
//     0x22); builder.Write(folder / "textures.txt");

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// A record's pixels and what its header says of them. The name hash comes from the entry.
struct BuiltRaster {
    std::uint16_t glFormat = 0x1401;
    std::uint16_t width = 1;
    std::uint16_t heightAndMips = 1;
    std::vector<std::byte> pixels;
};

using FileBytes = std::map<std::string, std::vector<std::byte>>;

class CDatabaseBuilder {
public:
    /// `framed`: records are written in stream mode 2, with a zero marker word; else in mode 1.
    explicit CDatabaseBuilder(bool framed = false) : m_bFramed(framed) {}

    /// A cache that is there even if no record goes into it.
    CDatabaseBuilder& Cache(const std::string& infix);
    /// A category line without line end, for example "cat=1 name=peds".
    CDatabaseBuilder& Category(std::string_view line);
    /// An ordinary entry; `pairs` is the rest of its line.
    CDatabaseBuilder& Texture(std::string_view name, std::string_view pairs = " width=4 height=4");
    CDatabaseBuilder& Alias(std::string_view name, std::string_view target);
    /// Raw text for the list, line end included: for lines that are no entry.
    CDatabaseBuilder& Text(std::string_view text);

    /// The record of the last entry; its place goes into the table of contents.
    CDatabaseBuilder& Raster(const std::string& infix, const BuiltRaster& raster);
    CDatabaseBuilder& Thumbnail(const std::string& infix, const BuiltRaster& raster);
    /// A raster of 4x4 "RGBA 8888" whose 64 bytes are all `fill`, and a 1x1 thumbnail of the same.
    CDatabaseBuilder& Picture(const std::string& infix, std::uint8_t fill);
    /// A raster of width x height "RGBA 8888" filled with `fill`, and a 1x1 thumbnail of the same.
    CDatabaseBuilder& Picture(const std::string& infix, std::uint8_t fill, std::uint16_t width,
                              std::uint16_t height);

    /// The contents by file name: STEM.txt, STEM.dxt.toc, STEM.dxt.dat, STEM.dxt.tmb and so on.
    FileBytes Files(const std::string& stem) const;
    /// Writes them to disk; `list` is the path of the list and ends in ".txt".
    void Write(const std::filesystem::path& list) const;

private:
    struct BuiltCache {
        std::map<std::size_t, std::uint32_t> offsets;  // by entry
        std::vector<std::byte> dat;
        std::vector<std::byte> tmb;
    };
    void AppendRecord(std::vector<std::byte>& file, const BuiltRaster& raster) const;

    bool m_bFramed;
    std::string m_sText;
    std::vector<std::string> m_aNames;
    std::map<std::string, BuiltCache> m_aCaches;
};

/// The 32-bit name hash, by its definition.
std::uint32_t BuiltNameHash(std::string_view name);

/// Every regular file of a folder, by name.
FileBytes FilesOf(const std::filesystem::path& folder);
void WriteFiles(const std::filesystem::path& folder, const FileBytes& files);
std::vector<std::byte> BytesOf(std::string_view text);
std::string TextOf(const std::vector<std::byte>& bytes);
