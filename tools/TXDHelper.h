#pragma once

// Opens a texture dictionary with the reader of its platform and draws its textures. It owns the open
// dictionary; a file that it attaches to stays its caller's. What is loaded of a texture is dropped once its
// picture is drawn, so that a large dictionary never is in memory as a whole.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "base/File.h"
#include "codec/PluginTable.h"
#include "image/Bitmap.h"
#include "rw/Exception.h"
#include "rw/TXDCommon.h"
#include "tools/TXDPicture.h"

/// What the accessors tell of one texture.
struct DictionaryTexture {
    std::uint32_t index = 0;
    std::wstring name;
    std::wstring mask;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t depth = 0;
    std::uint32_t mips = 0;
    std::uint32_t rasterFormat = 0;     // the layout code
    std::uint32_t rasterFormatRaw = 0;  // the bits it was stored as
    std::uint32_t compression = 0;
    std::wstring formatText;
    bool hasAlpha = false;
    std::uint32_t platform = 0;
    /// A stop box told that some of this could not be read.
    bool isDamaged = false;
};

/// Passes stop boxes on, but can hold them back: all of them while readers are tried, all but the first while
/// one texture is worked on, whose accessors would else tell of the same damage many times.
class CFailureGate final : public RW::IFailures {
public:
    explicit CFailureGate(RW::IFailures& target) : m_rTarget(target) {}
    void ShowStopBox(const PromptBox& box, int exitCode) override;

    enum class Passing { None, First, All };
    void Let(Passing passing);
    /// Whether a box was raised since the last Let.
    bool WasRaised() const { return m_bRaised; }

private:
    RW::IFailures& m_rTarget;
    Passing m_ePassing = Passing::All;
    bool m_bRaised = false;
};

class CTXDHelper {
public:
    /// All are borrowed and must outlive the helper.
    CTXDHelper(const CPluginTable& plugins, RW::IFailures& failures, IFileSystem& files = DiskFileSystem());

    /// Tries the readers of the PC, the PlayStation 2 and the mobile platforms; the first that accepts the
    /// first texture wins, and an empty dictionary is the PC's. Throws RW::CException when none does, and
    /// also when one does but the file is damaged behind: what was read by then can still be used.
    void OpenDictionary(const std::filesystem::path& file);
    /// The same for a dictionary at `offset` of an open file.
    void AttachDictionary(const IFile& file, std::uint64_t offset);
    void CloseDictionary() { m_pDictionary.reset(); }

    /// Null when none is open.
    RW::CTXDCommon* Dictionary() const { return m_pDictionary.get(); }
    /// The root's version stamp; the soft error "RW Stream is not opened." without one.
    std::uint32_t Version() const;

    /// How many textures can be looked at: those that the dictionary counts, as far as they are there. The
    /// first missing one is a stop box.
    std::uint32_t TextureCount();
    /// One stop box at most.
    DictionaryTexture Describe(std::uint32_t index);
    std::vector<DictionaryTexture> DescribeAll();
    /// The first level. Throws CError when it cannot be drawn: "This format is unsupported", "Section data
    /// reading failed.", "Wrong texture dimensions given.", "DXT plugin is not loaded", …; it was shown when
    /// a stop box told of the damage.
    CBitmap ToBitmap(std::uint32_t index);
    /// The first level as it is stored, a copy that DrawPicture can draw on any thread. Throws as ToBitmap
    /// does for a record that cannot be read.
    TXDPicture TakePicture(std::uint32_t index);

private:
    template <class OpenReader>
    void ChooseReader(OpenReader openReader);

    const CPluginTable& m_rPlugins;
    IFileSystem& m_rFiles;
    CFailureGate m_oGate;
    std::unique_ptr<RW::CTXDCommon> m_pDictionary;
};
