#pragma once

// What the dictionaries of all platforms have in common: the section tree with its count, platforms, texts.
//
//   Texture Dictionary
//     Struct             u16 number of textures, u16 device
//     Texture Native     one for each texture
//       Struct           the texture's record, different on each platform
//     Extension

#include "rw/Stream.h"
#include "rw/TXD.h"

namespace RW {

class CTXDCommon : public ITXD, public CStream {
public:
    using CStream::CStream;

    /// Opens the stream and checks the first texture; either failure has a message of the reader's own.
    bool Open(const std::filesystem::path& fileName, std::uint64_t offset, std::uint32_t rootId,
              std::uint32_t flags) override;
    /// As Open, for a dictionary inside a file that is open already and stays the caller's.
    bool AttachDictionary(const IFile& file, std::uint64_t offset);

    bool IsPlatform(std::uint32_t platform, std::uint32_t index) override;
    bool Create(std::uint32_t version) override;
    /// Deliberate: only the low byte of the stored count. TXDCommon.ReportsOnlyTheLowByteOfTheCount pins it.
    std::uint32_t GetTextureCount() override;
    std::wstring GetFormatText(std::uint32_t index) override;
    /// Deliberate: overwrites the device with the high half of `value`.
    bool SetTextureCount(std::uint32_t value) override;
    std::uint32_t GetPlatform(std::uint32_t index) override;

    /// The whole record of a texture; valid until FreeData.
    std::span<const std::byte> GetRecord(std::uint32_t index);
    /// The number of textures whose records are really there, counted from the first: at most
    /// GetTextureCount.
    std::uint32_t ReachableTextures();

protected:
    /// Whether the first texture is of the reader's platform.
    virtual bool IsOwnPlatform() = 0;
    /// What the reader says when the stream cannot be opened, and when the first texture is not its own.
    virtual std::wstring_view NotOpenedMessage() const = 0;
    virtual std::wstring_view WrongPlatformMessage() const = 0;
    /// False after the soft error when there is no such texture.
    bool CheckIndex(std::uint32_t index);
    /// The section at a path, after the stop boxes when it is missing.
    CNode* NodeAt(NodePath path);
    /// The first `count` bytes of a section's body; empty after a stop box when it has fewer.
    std::span<const std::byte> HeadOf(NodePath path, std::size_t count);
    /// A section's whole body, at least `least` bytes; empty after a stop box.
    std::span<std::byte> BodyOf(NodePath path, std::size_t least);
    /// The same for the record of a texture.
    std::span<const std::byte> RecordHead(std::uint32_t index, std::size_t count);
    std::span<std::byte> RecordBody(std::uint32_t index, std::size_t least);
    /// The stop box of a body that is missing or too short for its own words.
    void RaiseRecordError();
    /// The bits of a raster format that tell the pixel layout, or their layout code; 0 when they are unknown.
    static std::uint32_t LayoutBits(std::uint32_t rasterFormat, FormatForm form);

private:
    bool CheckOpened(bool isOpened);
    CNode* CountNode() const;
};

}  // namespace RW
