#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Draws the distributions of the times that bench/latency has measured.

    draw_latency.py SAMPLES NOTE > PICTURE.svg

Each window gets a diagram with a curve per program: how many of the presses (upwards) were carried out within
how many milliseconds (to the right, logarithmic).
"""

import math
import sys
from html import escape

COLOURS = {
    "openbox itself": "#6b7280",
    "raw xcb client": "#b45309",
    "tessarel, halves": "#1d4ed8",
    "tessarel, numbered zones": "#7c3aed",
    "sxhkd + xdotool": "#15803d",
    "sxhkd + wmctrl": "#be123c",
}
WIDTH, HEIGHT = 760, 190  # of a diagram
LEFT, TOP, GAP = 60, 64, 62
TICKS = [0.5, 1, 2, 5, 10, 20, 50, 100, 200, 500, 1000]


def read(path):
    windows = {}
    with open(path, encoding="utf-8") as lines:
        for line in lines:
            window, program, time = line.rstrip("\n").split("\t")
            windows.setdefault(window, {}).setdefault(program, []).append(float(time))
    return windows


def bounds(windows):
    """Returns the ticks next to the smallest and the largest time."""
    times = [time for programs in windows.values() for all_times in programs.values() for time in all_times]
    low = max([tick for tick in TICKS if tick <= min(times)], default=TICKS[0])
    high = min([tick for tick in TICKS if tick >= max(times)], default=TICKS[-1])
    return low, high


def text(x, y, content, anchor="start", more=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" {more}>{escape(content)}</text>'


def curve(times, place):
    """Returns the points of a step curve."""
    points = []
    ordered = sorted(times)
    for index, time in enumerate(ordered):
        points.append(place(time, index / len(ordered)))
        points.append(place(time, (index + 1) / len(ordered)))
    return " ".join(f"{x:.1f},{y:.1f}" for x, y in points)


def diagram(window, programs, top, low, high):
    def place(time, share):
        along = (math.log(min(max(time, low), high)) - math.log(low)) / (math.log(high) - math.log(low))
        return LEFT + along * WIDTH, top + HEIGHT * (1 - share)

    parts = [text(LEFT, top - 10, window, more='font-weight="bold"')]
    for tick in (tick for tick in TICKS if low <= tick <= high):
        x, _ = place(tick, 0)
        parts.append(f'<path d="M{x:.1f} {top}V{top + HEIGHT}" stroke="#e5e7eb"/>')
        parts.append(text(x, top + HEIGHT + 16, f"{tick:g} ms", "middle"))
    for share in (0, 0.5, 0.95, 1):
        _, y = place(low, share)
        parts.append(f'<path d="M{LEFT} {y:.1f}H{LEFT + WIDTH}" stroke="#e5e7eb"/>')
        if share != 1:
            parts.append(text(LEFT - 8, y + 4, f"{share:.0%}", "end"))
    for program, times in programs.items():
        parts.append(f'<polyline points="{curve(times, place)}" fill="none" stroke-width="2" '
                     f'stroke="{COLOURS.get(program, "#000000")}"><title>{escape(program)}</title></polyline>')
    return parts


def legend(programs, top):
    parts = []
    for index, program in enumerate(programs):
        x, y = LEFT + index % 3 * 260, top + index // 3 * 20
        parts.append(f'<path d="M{x} {y - 4}h24" stroke-width="3" stroke="{COLOURS.get(program, "#000000")}"/>')
        parts.append(text(x + 32, y, program))
    return parts


def main():
    windows = read(sys.argv[1])
    low, high = bounds(windows)
    height = TOP + 40 + len(windows) * (HEIGHT + GAP)
    programs = list(next(iter(windows.values())))
    width = LEFT + WIDTH + 40
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
             'font-family="sans-serif" font-size="13" fill="#111827">',
             f'<rect width="{width}" height="{height}" fill="#ffffff"/>',
             text(LEFT, 24, "Share of key presses that have placed the window within a time",
                  more='font-size="16"')]
    parts += legend(programs, 50)
    for index, (window, of_window) in enumerate(windows.items()):
        parts += diagram(window, of_window, TOP + 44 + index * (HEIGHT + GAP), low, high)
    parts.append(text(LEFT, height - 10, sys.argv[2], more='fill="#6b7280"'))
    parts.append("</svg>")
    print("\n".join(parts))


main()
