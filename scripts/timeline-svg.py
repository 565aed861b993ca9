#!/usr/bin/env python3
"""Draws a profiler timeline as an SVG picture: one lane per thread, each run a bar on a time
axis, nested runs one row below the run that holds them, and each process's resident memory as
a line under its lanes. The picture in docs/ is made with it from docs/timeline-example.json:

    scripts/timeline-svg.py docs/timeline-example.json docs/timeline-example.svg
"""
import json
import math
import sys
import zlib
from xml.sax.saxutils import escape

WIDTH = 960
LEFT = 150  # room for the lane names
RIGHT = 20
ROW = 20  # height of one nesting level
MEMORY = 36  # height of a process's memory line
COLOURS = ["#a6cee3", "#fdbf6f", "#b2df8a", "#fb9a99", "#cab2d6", "#8dd3c7", "#fccde5", "#d9d9d9"]


def read_trace(path):
    """The events of a trace; the closing bracket and a last event may be missing."""
    with open(path, encoding="utf-8") as stream:
        text = stream.read().strip()
    while text:
        try:
            return json.loads(text if text.endswith("]") else text.rstrip(",") + "]")
        except json.JSONDecodeError:
            text = text[: text.rfind("\n")]  # a last event cut short
    return []


def nice_step(span):
    """A tick step of 1, 2 or 5 times a power of ten that gives five to ten ticks."""
    power = 10 ** math.floor(math.log10(span / 5))
    return next(step * power for step in (1, 2, 5, 10) if span / (step * power) <= 10)


def main(source, target):
    events = read_trace(source)
    runs = [e for e in events if e.get("ph") == "X"]
    counters = [e for e in events if e.get("ph") == "C"]
    if not runs:
        sys.exit(f"{source}: no runs to draw")
    start = min(r["ts"] for r in runs)
    end = max(r["ts"] + r["dur"] for r in runs)
    scale = (WIDTH - LEFT - RIGHT) / (end - start)

    def x(ts):
        return LEFT + (ts - start) * scale

    lanes = sorted({(r["pid"], r["tid"]) for r in runs})
    parts = []
    top = 40
    for pid in sorted({pid for pid, _ in lanes}):
        for lane in [lane for lane in lanes if lane[0] == pid]:
            lane_runs = [r for r in runs if (r["pid"], r["tid"]) == lane]
            depth = 1 + max(r.get("args", {}).get("level", 0) for r in lane_runs)
            parts.append(f'<text x="8" y="{top + 14}" class="lane">process {pid}, thread {lane[1]}</text>')
            parts.append(f'<line x1="{LEFT}" y1="{top - 3}" x2="{WIDTH - RIGHT}" y2="{top - 3}" class="rule"/>')
            for run in lane_runs:
                level = run.get("args", {}).get("level", 0)
                left, width = x(run["ts"]), max(run["dur"] * scale, 1)
                colour = COLOURS[zlib.crc32(run["name"].encode()) % len(COLOURS)]
                label = f'{run["name"]} {run["dur"] / 1000:.2f} ms'
                parts.append(
                    f'<rect x="{left:.1f}" y="{top + level * ROW}" width="{width:.1f}" height="{ROW - 2}" '
                    f'fill="{colour}"><title>{escape(label)}</title></rect>')
                if width > 7 * len(label):
                    parts.append(f'<text x="{left + 4:.1f}" y="{top + level * ROW + 13}" class="bar">'
                                 f"{escape(label)}</text>")
            top += depth * ROW + 10
        memory = [(c["ts"], c["args"]["bytes"]) for c in counters if c.get("pid") == pid]
        if memory:
            low = min(b for _, b in memory)
            high = max(max(b for _, b in memory), low + 1)
            points = " ".join(f"{x(ts):.1f},{top + MEMORY - 4 - (b - low) / (high - low) * (MEMORY - 12):.1f}"
                              for ts, b in sorted(memory))
            parts.append(f'<text x="8" y="{top + MEMORY / 2}" class="lane">resident memory</text>')
            parts.append(f'<text x="8" y="{top + MEMORY / 2 + 13}" class="note">'
                         f"{low / 2**20:.1f} to {high / 2**20:.1f} MiB</text>")
            parts.append(f'<polyline points="{points}" class="memory"/>')
            top += MEMORY + 10

    # The time axis, from the first run's start, drawn under the bars.
    step = nice_step(end - start)
    ticks = []
    for index in range(int((end - start) / step) + 1):
        at = start + index * step
        ticks.append(f'<line x1="{x(at):.1f}" y1="24" x2="{x(at):.1f}" y2="{top}" class="tick"/>')
        ticks.append(f'<text x="{x(at):.1f}" y="18" class="axis">{index * step / 1000:g} ms</text>')
    parts = ticks + parts

    height = top + 10
    style = ("text{font-family:sans-serif;font-size:11px}.lane{font-weight:bold}.bar{fill:#222}"
             ".axis{text-anchor:middle;fill:#555}.note{fill:#555}.tick{stroke:#ddd}.rule{stroke:#999}"
             ".memory{fill:none;stroke:#e15759;stroke-width:1.5}")
    svg = (f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
           f'viewBox="0 0 {WIDTH} {height}"><style>{style}</style>'
           f'<rect width="{WIDTH}" height="{height}" fill="#fff"/>' + "\n".join(parts) + "</svg>\n")
    with open(target, "w", encoding="utf-8") as stream:
        stream.write(svg)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: timeline-svg.py TRACE OUTPUT.svg")
    main(sys.argv[1], sys.argv[2])
