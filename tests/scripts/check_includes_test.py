#!/usr/bin/env python3
"""Feeds bad examples to scripts/check-includes.py, one tree a test, and expects the complaint."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "scripts" / "check-includes.py"


def check(**kwargs):
    return check_tree({kwargs["path"]: kwargs["text"]})


def check_tree(tree):
    with tempfile.TemporaryDirectory() as folder:
        for path, text in tree.items():
            file = Path(folder, path)
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(text, encoding="utf-8")
        done = subprocess.run([sys.executable, str(SCRIPT), folder], capture_output=True, text=True, check=False)
        return done.returncode, done.stdout


class CheckIncludes(unittest.TestCase):
    def assert_complains(self, path, text, expected):
        code, printed = check(path=path, text=text)
        self.assertEqual(code, 1, f"{path}: {text!r} passed")
        self.assertIn(expected, printed)
        self.assertTrue(printed.startswith(path + ":"), printed)

    def assert_passes(self, path, text):
        code, printed = check(path=path, text=text)
        self.assertEqual(code, 0, printed)

    def test_an_empty_tree_passes(self):
        self.assertEqual(check_tree({})[0], 0)

    def test_arrows_that_point_upwards(self):
        for path, header in (
            ("base/File.cpp", "image/Bitmap.h"),
            ("image/Bitmap.cpp", "database/TextureDatabase.h"),
            ("rw/Stream.cpp", "image/Bitmap.h"),
            ("database/TextList.cpp", "codec/PluginTable.h"),
            ("database/TextList.cpp", "tools/Optimizer.h"),
            ("codec/PluginTable.cpp", "tools/Optimizer.h"),
            ("codec/RasterFormat.cpp", "image/Bitmap.h"),
            ("tools/Optimizer.cpp", "ui/Window.h"),
            ("ui/Tree.cpp", "database/TextureEntry.h"),
            ("app/DlgMain.cpp", "cli/Options.h"),
            ("cli/Import.cpp", "app/resource.h"),
            ("plugins/dxt/Plugin.cpp", "base/ByteReader.h"),
            ("plugins/dxt/Plugin.cpp", "plugins/unc/Kernel.h"),
        ):
            folder = path.split("/", maxsplit=1)[0]
            self.assert_complains(path, f'#include "{header}"\n', f'{folder}/ may not include "{header}"')

    def test_arrows_that_point_downwards_pass(self):
        for path, header in (
            ("database/TextList.cpp", "codec/RasterFormat.h"),
            ("codec/PluginTable.cpp", "plugins/plugin.h"),
            ("tools/Optimizer.cpp", "rw/Stream.h"),
            ("app/DlgMain.cpp", "tools/Optimizer.h"),
            ("plugins/dxt/Plugin.cpp", "plugins/common/Block.h"),
            ("plugins/dxt/Plugin.cpp", "plugins/dxt/Kernel.h"),
            ("tests/codec/PluginTableTest.cpp", "codec/PluginTable.h"),
        ):
            self.assert_passes(path, f'#include "{header}"\n')

    def test_a_header_named_without_its_folder(self):
        self.assert_complains("base/File.cpp", '#include "File.h"\n', "a path from the project's root")

    def test_windows_headers_have_one_door(self):
        self.assert_complains("app/Main.cpp", "#include <windows.h>\n", "through base/Windows.h only")
        self.assert_complains("app/Main.cpp", "#  include <Windows.h>\n", "through base/Windows.h only")
        self.assert_passes("base/Windows.h", "#pragma once\n#include <windows.h>\n")
        self.assert_passes("app/mavrel.rc", "#include <windows.h>\n")

    def test_the_core_stays_portable(self):
        self.assert_complains("tools/Export.cpp", '#include "base/Windows.h"\n', "*_Win32 file")
        self.assert_complains("image/Load.cpp", "#include <gdiplus.h>\n", "*_Win32 file")
        self.assert_complains("tools/Export.h", "#pragma once\nvoid Show(HWND window);\n", "a window handle below ui/")
        self.assert_passes("image/Load_Win32.cpp", '#include "base/Windows.h"\n#include <gdiplus.h>\n')
        self.assert_passes("ui/Window.cpp", '#include "base/Windows.h"\nHWND window;\n')

    def test_members_carry_a_type_letter(self):
        for name in ("m_count", "m_Count", "m_xCount", "m_n", "m_ncount", "m_fnother"):
            self.assert_complains("base/File.cpp", f"int {name} = 0;\n", f"{name} needs a type letter")
        self.assert_passes("base/File.cpp", "m_nCount m_fnDone m_pRoot m_aRest m_oTree m_eMode m_hFile m_sName m_bOk\n")

    def test_words_without_a_place_here(self):
        for word in (
            "see Pa" + "rt 9.3", "the specifi" + "cation", "spec" + ".md", "../sha" + "red/vectors", "issu" + "e #2",
            "R-" + "12", "S-" + "3", "TO" + "DO", "FIX" + "ME",
        ):
            self.assert_complains("base/File.cpp", f"// {word}\n", "names")
            self.assert_complains("docs/about.md", f"{word}\n", "names")
            self.assert_complains("scripts/tool", f"# {word}\n", "names")

    def test_ordinary_words_pass(self):
        self.assert_passes("docs/about.md", "A part of it, an issue of taste, R-tree, UTF-8, Data Format Specification\n")

    def test_the_length_of_a_file(self):
        self.assert_passes("base/Long.cpp", "\n" * 800)
        self.assert_complains("base/Long.cpp", "\n" * 801, "split a file")

    def test_a_header_guards_itself(self):
        self.assert_complains("base/File.h", "int one;\n", "#pragma once")

    def test_build_folders_are_left_alone(self):
        self.assert_passes("out/linux-check/Copy.cpp", "int m_count;\n")


if __name__ == "__main__":
    unittest.main()
