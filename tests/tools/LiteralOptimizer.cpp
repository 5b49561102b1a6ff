#include "tests/tools/LiteralOptimizer.h"

#include <algorithm>
#include <cstdlib>

#include "base/ByteWriter.h"
#include "image/MD5.h"

namespace {

constexpr std::uint32_t kNothing = 0xFFFFFFFF;
constexpr std::size_t kLongestWritten = 127;

std::string Lower(std::string text)
{
    for (char& character : text)
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character + ('a' - 'A'));
    return text;
}

std::string AliasLine(const std::string& name, const std::string& target)
{
    return "\"" + name + "\" \"affiliate=" + target + "\"";
}

std::string Repointed(std::string line, const std::string& from, const std::string& to)
{
    const std::string what = "\"affiliate=" + from + "\"";
    if (const auto at = line.find(what); at != std::string::npos)
        line.replace(at, what.size(), "\"affiliate=" + to + "\"");
    return line;
}

}  // namespace

FileBytes CLiteralDatabase::Files() const
{
    FileBytes files;
    std::string list;
    for (const std::string& category : categories)
        list += category + "\r\n";
    for (const LiteralEntry& entry : entries)
        list += entry.line + "\r\n";
    files["textures.txt"] = BytesOf(list);
    for (const std::string& cache : caches) {
        std::vector<std::byte> dat;
        std::vector<std::byte> tmb;
        CByteWriter words;
        for (const LiteralEntry& entry : entries) {
            const auto record = entry.dat.find(cache);
            words.U32(record != entry.dat.end() ? static_cast<std::uint32_t>(dat.size()) : kNothing);
            if (record != entry.dat.end())
                dat.insert(dat.end(), record->second.begin(), record->second.end());
            if (const auto thumbnail = entry.tmb.find(cache); thumbnail != entry.tmb.end())
                tmb.insert(tmb.end(), thumbnail->second.begin(), thumbnail->second.end());
        }
        CByteWriter length;
        length.U32(static_cast<std::uint32_t>(dat.size()));
        std::vector<std::byte> toc = length.Take();
        const std::vector<std::byte> rest = words.Take();
        toc.insert(toc.end(), rest.begin(), rest.end());
        files["textures." + cache + ".toc"] = toc;
        files["textures." + cache + ".dat"] = dat;
        if (std::ranges::find(withoutThumbnails, cache) == withoutThumbnails.end())
            files["textures." + cache + ".tmb"] = tmb;
    }
    return files;
}

std::optional<std::uint32_t> CLiteralDatabase::TargetOf(const LiteralEntry& alias) const
{
    for (std::uint32_t i = 0; i < Count(); ++i)
        if (!IsAlias(i) && entries[i].name == alias.affiliate)
            return i;
    return std::nullopt;
}

bool CLiteralDatabase::MakeAlias(std::uint32_t kept, std::uint32_t duplicate)
{
    const std::string name = entries[duplicate].name;
    const std::string target = entries[kept].name;
    std::vector<std::uint32_t> followers;
    for (std::uint32_t i = 0; i < Count(); ++i)
        if (IsAlias(i) && TargetOf(entries[i]) == duplicate)
            followers.push_back(i);
    bool fits = AliasLine(name, target).size() <= kLongestWritten;
    for (const std::uint32_t i : followers)
        fits = fits && Repointed(entries[i].line, name, target).size() <= kLongestWritten;
    if (!fits)
        return false;
    for (const std::uint32_t i : followers) {
        entries[i].line = Repointed(entries[i].line, name, target);
        entries[i].affiliate = target;
    }
    entries.erase(entries.begin() + duplicate);
    entries.push_back({.name = name, .affiliate = target, .line = AliasLine(name, target)});
    ++aliased;
    return true;
}

void CLiteralDatabase::Delete(std::uint32_t i)
{
    for (std::uint32_t alias = 0; alias < Count();) {
        if (IsAlias(alias) && TargetOf(entries[alias]) == i) {
            entries.erase(entries.begin() + alias);
            i -= alias < i ? 1 : 0;
            alias = 0;
        } else {
            ++alias;
        }
    }
    entries.erase(entries.begin() + i);
}

void CLiteralDatabase::AliasNames()
{
    for (std::uint32_t i = 0; i < Count(); ++i) {
        if (IsAlias(i))
            continue;
        for (std::uint32_t j = i + 1; j < Count(); ++j)
            if (!IsAlias(j) && Lower(entries[j].name) == Lower(entries[i].name))
                MakeAlias(i, j);
    }
}

void CLiteralDatabase::DeleteNames()
{
    std::uint32_t n = Count();
    for (std::uint32_t i = 0; i < n; ++i) {
        if (i >= Count() || IsAlias(i))
            continue;
        for (std::uint32_t j = i + 1; j < n && j < Count(); ++j) {
            if (i >= Count())
                break;
            if (IsAlias(i) || IsAlias(j) || Lower(entries[j].name) != Lower(entries[i].name))
                continue;
            --n;
            Delete(j);
            --i;
        }
    }
}

void CLiteralDatabase::AliasHashes(const std::string& cache, bool isDecoded)
{
    const std::wstring none = MD5ToText(ComputeMD5({}));
    std::vector<std::wstring> hashes;
    for (std::uint32_t i = 0; i < Count(); ++i) {
        std::wstring hash = none;
        if (!IsAlias(i) && isDecoded && entries[i].decoded.contains(cache))
            hash = MD5ToText(ComputeMD5(std::as_bytes(std::span(entries[i].decoded.at(cache)))));
        if (!IsAlias(i) && !isDecoded && entries[i].raster.contains(cache))
            hash = MD5ToText(ComputeMD5(entries[i].raster.at(cache)));
        hashes.push_back(hash);
    }
    for (std::uint32_t i = 0; i < Count(); ++i) {
        if (hashes[i] == none)
            continue;
        for (std::uint32_t j = i + 1; j < Count(); ++j) {
            if (hashes[j] != hashes[i] || !MakeAlias(i, j))
                continue;
            hashes.erase(hashes.begin() + j);
            hashes.push_back(none);
        }
    }
}

bool CLiteralDatabase::IsClose(std::uint32_t a, std::uint32_t b, const std::string& cache, bool isDecoded,
                               std::uint64_t limit) const
{
    std::uint64_t difference = 0;
    if (!isDecoded) {
        if (!entries[a].raster.contains(cache) || !entries[b].raster.contains(cache))
            return false;
        const auto& left = entries[a].raster.at(cache);
        const auto& right = entries[b].raster.at(cache);
        if (left.size() != right.size())
            return false;
        for (std::size_t k = 0; k < left.size(); ++k)
            difference += left[k] != right[k] ? 1 : 0;
        return difference < limit;
    }
    if (!entries[a].decoded.contains(cache) || !entries[b].decoded.contains(cache) ||
        entries[a].size.at(cache) != entries[b].size.at(cache))
        return false;
    const auto& left = entries[a].decoded.at(cache);
    const auto& right = entries[b].decoded.at(cache);
    for (std::size_t k = 0; k < left.size(); ++k)
        difference += static_cast<std::uint64_t>(std::abs(left[k] - right[k]));
    return difference < limit;
}

void CLiteralDatabase::AliasDifferences(const std::string& cache, bool isDecoded, std::int64_t value)
{
    const std::uint64_t limit = value < 0 ? 0 : static_cast<std::uint64_t>(value) * 4;
    for (std::uint32_t i = 0; i < Count(); ++i) {
        if (IsAlias(i))
            continue;
        for (std::uint32_t j = i + 1; j < Count(); ++j)
            if (!IsAlias(j) && IsClose(i, j, cache, isDecoded, limit))
                MakeAlias(i, j);
    }
}
