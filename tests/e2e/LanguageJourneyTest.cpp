// A person chooses another interface language: every text changes at once, and the next start comes up in it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utility>

#include "app/resource.h"
#include "tests/e2e/Mavrel.h"
#include "tests/e2e/driver/Screen.h"
#include "tests/e2e/driver/Wait.h"
#include "tests/e2e/driver/WindowLookup.h"

namespace {

// Behind Chinese and Portuguese, by the names of their libraries.
constexpr int kRussian = ID_LANGUAGE_ENGLISH + 3;

std::wstring GameLabel(const CMavrel& mavrel)
{
    return TextOf(FindDescendant(mavrel.Window(), L"Static"));
}

/// The menu bar once it is painted and looks other than `before`.
std::vector<std::uint32_t> WaitForOtherMenuBar(const CMavrel& mavrel,
                                               const std::vector<std::uint32_t>& before)
{
    auto last = before;
    WaitUntil("the menu bar to be painted anew", [&] {
        const auto now = std::exchange(last, MenuBarPixels(mavrel.Window()));
        return now == last && last != before;
    });
    return last;
}

TEST(LanguageJourney, RussianIsSpokenAtOnceAndAtTheNextStart)
{
    const CInstallation installation;
    installation.AddLanguages();
    std::vector<std::uint32_t> english;
    std::vector<std::uint32_t> russian;
    {
        const CMavrel mavrel(installation, {});
        mavrel.WaitForPane(0, L"Mavrel is ready to fuck you up.");
        EXPECT_EQ(GameLabel(mavrel), L"&Game:");
        english = WaitForOtherMenuBar(mavrel, {});
        mavrel.Run(kRussian);
        EXPECT_EQ(mavrel.Pane(0),
                  L"\u042F\u0437\u044B\u043A \u0438\u043D\u0442\u0435\u0440\u0444\u0435\u0439"
                  L"\u0441\u0430 \u0438\u0437\u043C\u0435\u043D\u0451\u043D");
        EXPECT_EQ(GameLabel(mavrel), L"&\u0418\u0433\u0440\u0430:");
        russian = WaitForOtherMenuBar(mavrel, english);
        EXPECT_EQ(installation.Setting(L"global", L"lang"), L"russian");
        EXPECT_EQ(installation.Setting(L"lang", L"russian"), L"\u0420\u0443\u0441\u0441\u043A\u0438\u0439");
        mavrel.Command(ID_EXIT);
        EXPECT_EQ(mavrel.WaitForExit(), 0U);
    }
    const CMavrel mavrel(installation, {});
    mavrel.WaitForPane(0,
                       L"Mavrel \u0433\u043E\u0442\u043E\u0432 \u0432\u044B\u043D\u0435\u0441\u0442\u0438 "
                       L"\u0432\u0430\u043C \u043C\u043E\u0437\u0433.");
    EXPECT_EQ(GameLabel(mavrel), L"&\u0418\u0433\u0440\u0430:");
    EXPECT_NO_THROW(
        WaitUntil("the Russian menu bar", [&] { return MenuBarPixels(mavrel.Window()) == russian; }));
    mavrel.Command(ID_EXPORT_ALL);
    const auto box = WaitForMessageBox(mavrel.Id());
    EXPECT_EQ(box.Caption(), L"\u041E\u0448\u0438\u0431\u043A\u0430");
    EXPECT_EQ(box.Text(),
              L"\u0421\u043D\u0430\u0447\u0430\u043B\u0430 \u0437\u0430\u0433\u0440\u0443\u0437\u0438"
              L"\u0442\u0435 \u043A\u044D\u0448!");
    box.Press(IDOK);
    mavrel.Run(ID_LANGUAGE_ENGLISH);
    EXPECT_EQ(mavrel.Pane(0), L"Interface language changed");
    EXPECT_EQ(GameLabel(mavrel), L"&Game:");
    EXPECT_NO_THROW(
        WaitUntil("the English menu bar", [&] { return MenuBarPixels(mavrel.Window()) == english; }));
    EXPECT_EQ(installation.Setting(L"global", L"lang"), L"");
}

}  // namespace
