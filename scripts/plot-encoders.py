#!/usr/bin/env python3
"""Draws quality against speed of the encoders and prints the same figures as a Markdown table.

    scripts/plot-encoders.py TABLE.csv PLOTS.svg

TABLE.csv is what `mavrel-bench --only encode- --table TABLE.csv` wrote. Needs nothing but Python itself.
"""

import csv
import math
import sys
from dataclasses import dataclass
from html import escape

# In the order of the plots; what the table calls a format, and what a reader does.
FORMATS = {
    "DXT1": "DXT1, RGB",
    "DXT5": "DXT5, RGBA",
    "ETC1": "ETC1, RGB",
    "PVRTC4-RGB": "PVRTC 4 bits, RGB",
    "PVRTC4": "PVRTC 4 bits, RGBA",
    "PVRTC2": "PVRTC 2 bits, RGB",
}
LEVELS = ("fast", "normal", "high", "best")

WIDTH, HEIGHT = 430, 270
LEFT, RIGHT, TOP, BOTTOM = 52, 24, 40, 44
COLUMNS = 2

GREY, BLUE, BROWN = "#444", "#1f6fb2", "#b2561f"


@dataclass(frozen=True)
class Row:
    format: str
    encoder: str
    units: float
    units_of_two: float
    mean: float
    worst: float
    visible: float
    pictures: str


def read_rows(path):
    with open(path, newline="", encoding="utf-8") as file:
        lines = list(csv.reader(file))[1:]
    return [Row(line[0], line[1], *(float(cell) for cell in line[2:-1]), line[-1]) for line in lines]


class Axes:
    """Places of one plot: speed on a logarithmic axis to the right, decibels upwards."""

    def __init__(self, rows):
        speeds = [math.log10(row.units) for row in rows]
        psnrs = [row.mean for row in rows]
        self.first = math.floor(min(speeds) - 0.1)
        self.last = math.ceil(max(speeds) + 0.1)
        self.low = math.floor(min(psnrs) - 0.2)
        self.high = math.ceil(max(psnrs) + 0.2)

    def x(self, units):
        return LEFT + (math.log10(units) - self.first) / (self.last - self.first) * (WIDTH - LEFT - RIGHT)

    def y(self, psnr):
        return HEIGHT - BOTTOM - (psnr - self.low) / (self.high - self.low) * (HEIGHT - TOP - BOTTOM)


def text(x, y, words, anchor="middle", color=GREY, size=11):
    return (
        f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" fill="{color}" font-size="{size}">{escape(words)}</text>'
    )


def grid_line(path):
    return f'<path stroke="#ddd" d="{path}"/>'


def draw_grid(axes):
    parts = []
    for power in range(axes.first, axes.last + 1):
        x = axes.x(10.0**power)
        parts.append(grid_line(f"M{x:.1f} {TOP}V{HEIGHT - BOTTOM}"))
        parts.append(text(x, HEIGHT - BOTTOM + 15, f"{10.0**power:g} U"))
    step = max(1, round((axes.high - axes.low) / 6))
    for psnr in range(axes.low, axes.high + 1, step):
        y = axes.y(psnr)
        parts.append(grid_line(f"M{LEFT} {y:.1f}H{WIDTH - RIGHT}"))
        parts.append(text(LEFT - 6, y + 4, f"{psnr} dB", "end"))
    return parts


def draw_point(axes, row, color, name_above):
    x, y = axes.x(row.units), axes.y(row.mean)
    return [
        f'<circle fill="{color}" cx="{x:.1f}" cy="{y:.1f}" r="4"/>',
        text(x, y + (-9 if name_above else 16), row.encoder, color=color),
    ]


def draw_plot(title, rows):
    axes = Axes(rows)
    parts = [text(WIDTH / 2, 22, title, size=14), *draw_grid(axes)]
    ours = sorted((row for row in rows if row.encoder in LEVELS), key=lambda row: LEVELS.index(row.encoder))
    line = " ".join(f"{axes.x(row.units):.1f},{axes.y(row.mean):.1f}" for row in ours)
    parts.append(f'<polyline fill="none" stroke="{BLUE}" stroke-width="2" points="{line}"/>')
    others = [row for row in rows if row not in ours]
    parts += [line for row in ours for line in draw_point(axes, row, BLUE, True)]
    # Some lie close to each other; above and below in turns keeps their names apart.
    parts += [line for turn, row in enumerate(others) for line in draw_point(axes, row, BROWN, turn % 2 == 1)]
    parts.append(text(WIDTH / 2, HEIGHT - 10, "speed on one thread, in units of stb_dxt"))
    return parts


def draw_all(rows):
    formats = [name for name in FORMATS if any(row.format == name for row in rows)]
    width = WIDTH * COLUMNS
    height = HEIGHT * math.ceil(len(formats) / COLUMNS)
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" viewBox="0 0 {width} {height}" '
        'font-family="sans-serif">',
        f'<rect width="{width}" height="{height}" fill="#fff"/>',
    ]
    for place, name in enumerate(formats):
        x, y = place % COLUMNS * WIDTH, place // COLUMNS * HEIGHT
        parts.append(f'<g transform="translate({x} {y})">')
        parts += draw_plot(FORMATS[name], [row for row in rows if row.format == name])
        parts.append("</g>")
    return "\n".join([*parts, "</svg>"]) + "\n"


def markdown(rows):
    lines = [
        "| format | encoder | speed | two threads | mean | worst | visible | by picture |",
        "| --- | --- | ---: | ---: | ---: | ---: | ---: | --- |",
    ]
    for row in rows:
        two = f"{row.units_of_two:.3g} U" if row.units_of_two else ""
        # Without alpha everything can be seen.
        visible = f"{row.visible:.2f} dB" if row.format in ("DXT1-A", "DXT3", "DXT5", "PVRTC4") else ""
        lines.append(
            f"| {row.format} | {row.encoder} | {row.units:.3g} U | {two} "
            f"| {row.mean:.2f} dB | {row.worst:.2f} dB | {visible} | {row.pictures} |"
        )
    return "\n".join(lines)


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: scripts/plot-encoders.py TABLE.csv PLOTS.svg")
    rows = read_rows(sys.argv[1])
    with open(sys.argv[2], "w", encoding="utf-8") as file:
        file.write(draw_all(rows))
    print(markdown(rows))


if __name__ == "__main__":
    main()
