#!/usr/bin/env python3
"""Runs scripts/plot-encoders.py on a small table and looks at what it drew and printed."""

import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "scripts" / "plot-encoders.py"
SVG = "{http://www.w3.org/2000/svg}"

TABLE = """format,encoder,units,units of two threads,mean dB,worst dB,visible dB,dB by picture
DXT1,stb,1.0000,0.0000,32.000,30.000,33.000,30.00 34.00
DXT1,fast,60.0000,90.0000,31.000,29.000,32.000,29.00 33.00
DXT1,normal,8.0000,16.0000,33.000,31.000,34.000,31.00 35.00
DXT5,normal,7.0000,14.0000,39.500,38.000,40.250,38.00 41.00
"""


def plot(table):
    with tempfile.TemporaryDirectory() as folder:
        source, target = Path(folder, "table.csv"), Path(folder, "plots.svg")
        source.write_text(table, encoding="utf-8")
        done = subprocess.run(
            [sys.executable, str(SCRIPT), str(source), str(target)], capture_output=True, text=True, check=True
        )
        return ElementTree.fromstring(target.read_text(encoding="utf-8")), done.stdout


class PlotEncoders(unittest.TestCase):
    def test_draws_a_plot_for_each_format_and_a_point_for_each_row(self):
        picture, _ = plot(TABLE)
        self.assertEqual(len(picture.findall(f"{SVG}g")), 2)
        self.assertEqual(len(picture.findall(f".//{SVG}circle")), 4)

    def test_faster_is_further_right_and_better_is_higher_up(self):
        picture, _ = plot(TABLE)
        plots = picture.findall(f"{SVG}g")
        fast, normal, stb = plots[0].findall(f"{SVG}circle")
        self.assertLess(float(stb.get("cx")), float(normal.get("cx")))
        self.assertLess(float(normal.get("cx")), float(fast.get("cx")))
        self.assertLess(float(normal.get("cy")), float(stb.get("cy")))
        self.assertLess(float(stb.get("cy")), float(fast.get("cy")))

    def test_prints_what_can_be_seen_only_where_something_is_hidden(self):
        _, printed = plot(TABLE)
        self.assertIn("| DXT1 | normal | 8 U | 16 U | 33.00 dB | 31.00 dB |  | 31.00 35.00 |", printed)
        self.assertIn("| DXT5 | normal | 7 U | 14 U | 39.50 dB | 38.00 dB | 40.25 dB | 38.00 41.00 |", printed)
        self.assertIn("| DXT1 | stb | 1 U |  | 32.00 dB |", printed)


if __name__ == "__main__":
    unittest.main()
