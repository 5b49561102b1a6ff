// Looks through the sources of the core for texts that a person may see, and expects each of them in the
// table of messages: one that is missing there would be English in every language.

#include <algorithm>
#include <cwctype>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

#include "app/Resources.h"
#include "app/messages.h"
#include "base/Text.h"

namespace {

const std::filesystem::path kSource = MAVREL_SOURCE;

// Names, which are the same in every language.
const std::vector<std::wstring> kNames = {L"GTA VC", L"GTA SA", L"Unknown UNC"};

std::wstring ReadSource(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    return FromUtf8(bytes);
}

std::wstring WithoutComments(const std::wstring& source)
{
    std::wistringstream in(source);
    std::wstring out;
    for (std::wstring line; std::getline(in, line);)
        if (!Trim(line).starts_with(L"//"))
            out += line + L"\n";
    return out;
}

wchar_t Unescaped(wchar_t letter)
{
    switch (letter) {
        case L'n':
            return L'\n';
        case L'r':
            return L'\r';
        case L't':
            return L'\t';
        default:
            return letter;
    }
}

/// The literal whose first quotation mark is at `at`; afterwards `at` is behind its last one.
std::wstring ReadLiteral(const std::wstring& source, std::size_t& at)
{
    std::wstring text;
    for (++at; at < source.size() && source[at] != L'"'; ++at) {
        if (source[at] == L'\\' && at + 1 < source.size())
            text.push_back(Unescaped(source[++at]));
        else
            text.push_back(source[at]);
    }
    ++at;
    return text;
}

/// The wide literals of a source; neighbours are one text, as for the compiler.
std::vector<std::wstring> WideTexts(const std::wstring& source)
{
    std::vector<std::wstring> texts;
    std::size_t behindLast = std::wstring::npos;
    for (std::size_t at = source.find(L"L\""); at != std::wstring::npos; at = source.find(L"L\"", at)) {
        const bool continues =
            behindLast != std::wstring::npos &&
            std::all_of(source.begin() + static_cast<std::ptrdiff_t>(behindLast),
                        source.begin() + static_cast<std::ptrdiff_t>(at),
                        [](wchar_t character) { return std::iswspace(static_cast<wint_t>(character)) != 0; });
        ++at;
        const std::wstring text = ReadLiteral(source, at);
        if (continues)
            texts.back() += text;
        else
            texts.push_back(text);
        behindLast = at;
    }
    return texts;
}

bool IsLetter(wchar_t character)
{
    return (character >= L'a' && character <= L'z') || (character >= L'A' && character <= L'Z');
}

/// Two letters, a blank and a letter somewhere: keys and names have no blanks, and units stand behind a
/// number.
bool LooksLikeAMessage(const std::wstring& text)
{
    for (std::size_t at = 2; at + 1 < text.size(); ++at)
        if (text[at] == L' ' && IsLetter(text[at - 2]) && IsLetter(text[at - 1]) && IsLetter(text[at + 1]))
            return true;
    return false;
}

std::vector<std::wstring> Table()
{
    std::vector<std::wstring> texts = kNames;
    for (UINT id = IDS_MESSAGE_FIRST; id <= IDS_MESSAGE_LAST; ++id)
        texts.push_back(CResources::TextOf(::GetModuleHandleW(nullptr), id));
    return texts;
}

TEST(CoreMessages, AreFoundInASource)
{
    const std::wstring source =
        WithoutComments(L"  // L\"not this\"\na(L\"one \\\"two\\\"\"\n  L\" three\\n\", L\"x\");\n");
    EXPECT_EQ(WideTexts(source), (std::vector<std::wstring>{L"one \"two\" three\n", L"x"}));
    EXPECT_TRUE(LooksLikeAMessage(L"one two three\n"));
    EXPECT_FALSE(LooksLikeAMessage(L"global"));
    EXPECT_FALSE(LooksLikeAMessage(L"%d x %d, %0.2f KB, RGBA 8888"));
}

TEST(CoreMessages, AreAllInTheTableForTranslators)
{
    const auto table = Table();
    std::size_t count = 0;
    for (const wchar_t* folder : {L"base", L"image", L"img", L"rw", L"database", L"codec", L"tools"}) {
        std::error_code error;
        for (const auto& file : std::filesystem::directory_iterator(kSource / folder, error)) {
            if (file.path().extension() != ".cpp" && file.path().extension() != ".h")
                continue;
            for (const std::wstring& text : WideTexts(WithoutComments(ReadSource(file.path())))) {
                if (!LooksLikeAMessage(text))
                    continue;
                ++count;
                // Parts of a message stand in the source where the rest is added to them.
                const bool isKnown = std::any_of(table.begin(), table.end(), [&](const std::wstring& known) {
                    return known.find(Trim(text)) != std::wstring::npos;
                });
                EXPECT_TRUE(isKnown) << file.path().string() << ": \"" << ToUtf8(text) << "\"";
            }
        }
    }
    EXPECT_GT(count, 40U) << "the sources were not found";
}

}  // namespace
