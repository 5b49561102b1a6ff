// A cache made in the window, and another one made anew from it, are the files that the command line makes.

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "tests/e2e/DatabaseFiles.h"
#include "tests/e2e/Mavrel.h"
#include "tests/e2e/SampleDatabase.h"
#include "tests/e2e/driver/Wait.h"

namespace {

class ConvertJourney : public testing::Test {
protected:
    static void PressGo(const COpenDialog& dialog)
    {
        ::PostMessageW(dialog.Handle(), WM_COMMAND, IDC_CONVERTER_GO, 0);
    }
    static void Choose(const COpenDialog& dialog, int list, WPARAM item)
    {
        ::SendMessageW(::GetDlgItem(dialog.Handle(), list), CB_SETCURSEL, item, 0);
    }
    static bool IsDone(const COpenDialog& dialog)
    {
        const auto labels = dialog.Labels();
        return ::IsWindowEnabled(::GetDlgItem(dialog.Handle(), IDC_CONVERTER_SOURCE)) != FALSE &&
               std::any_of(labels.begin(), labels.end(),
                           [](const std::wstring& label) { return label.starts_with(L"Done within "); });
    }

    CInstallation m_oInstallation;
    CSampleDatabase m_oByHand;
    CSampleDatabase m_oByCommands;
};

TEST_F(ConvertJourney, WritesTheSameFilesAsTheCommandLine)
{
    const CMavrel mavrel(m_oInstallation, m_oByHand.AsArgument());
    mavrel.ShowTexture(L"wall");
    mavrel.Command(ID_CACHE_CONVERTER);
    const COpenDialog dialog = WaitForDialog(mavrel.Id(), L"Cache converter");
    EXPECT_THAT(dialog.Buttons(), testing::ElementsAre(L"GO", L"Close"));
    PressGo(dialog);
    WaitUntil("the ETC cache to be made", [&] { return IsDone(dialog); });

    // And DXT anew from it: the lists have the new cache now.
    Choose(dialog, IDC_CONVERTER_SOURCE, 1);
    Choose(dialog, IDC_CONVERTER_TARGET, 0);
    PressGo(dialog);
    mavrel.Answer(
        L"Target cache already exists!\r\n\r\nIt's really NOT recommended to overwrite it.\r\n\r\nAre you "
        L"sure "
        L"you want to continue?",
        IDYES);
    WaitUntil("the DXT cache to be made", [&] { return IsDone(dialog); });
    dialog.Press(IDCANCEL);

    // The window shows the new cache.
    EXPECT_EQ(mavrel.Tree().FocusedText(), L"wall");
    mavrel.Tabs().Click(1);
    EXPECT_EQ(mavrel.Tabs().Selected(), 1);
    mavrel.WaitForPane(6, L"ETC1");
    mavrel.Run(ID_CLOSE);

    const std::wstring list = m_oByCommands.List().wstring();
    RunCommandLine({L"convert", list, L"--from", L"dxt", L"--to", L"etc"});
    RunCommandLine({L"--yes", L"convert", list, L"--from", L"etc", L"--to", L"dxt"});
    const FileBytes files = FilesOf(m_oByHand.List().parent_path());
    EXPECT_EQ(files.size(), 10U) << "the list and three files of three caches";
    ExpectSameFiles(files, FilesOf(m_oByCommands.List().parent_path()));
    EXPECT_NO_THROW(RunCommandLine({L"check", m_oByHand.List().wstring()}));
}

}  // namespace
