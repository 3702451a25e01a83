"""The picture at the top of docs/costs.md: ours as a bar beside each peer, row by row."""
import math
from xml.sax.saxutils import escape

from programs import BENCHMARKS, LIBRARIES
from times import written

PICTURE = BENCHMARKS.parent / "docs" / "costs.svg"

# Times are drawn over ours, on a logarithmic scale from a tenth to a hundred times.
LOWEST, HIGHEST = 0.1, 100
LEFT, WIDTH, BAR, GAP, TOP = 400, 400, 12, 14, 40
TOTAL = LEFT + WIDTH + 150

STYLE = """
text { font: 12px sans-serif; fill: #24292f; }
.small { font-size: 10px; fill: #57606a; }
.ours { fill: #1f6feb; } .peer { fill: #a8b3c1; } .raw { fill: #d5dbe2; }
.grid { stroke: #d0d7de; stroke-width: 1; } .one { stroke: #1f6feb; stroke-width: 1; }
@media (prefers-color-scheme: dark) {
  text { fill: #e6edf3; } .small { fill: #9da7b3; }
  .ours { fill: #58a6ff; } .peer { fill: #6e7a88; } .raw { fill: #414b57; }
  .grid { stroke: #30363d; } .one { stroke: #58a6ff; }
}
"""


def position(ratio):
    """Where a time stands that is so many times ours."""
    within = min(max(ratio, LOWEST), HIGHEST)
    return LEFT + WIDTH * math.log(within / LOWEST) / math.log(HIGHEST / LOWEST)


def kind(library):
    return {"zintar": "ours", "raw": "raw"}.get(library, "peer")


def bars(operation, own_times, top):
    """The rows of one operation and the height that they take."""
    drawn = [f'<text x="{LEFT - 10}" y="{top + BAR}" text-anchor="end">'
             f'{escape(operation["title"])}</text>']
    for library in (library for library in LIBRARIES if library in own_times):
        end = position(own_times[library] / own_times["zintar"])
        drawn.append(f'<rect class="{kind(library)}" x="{LEFT}" y="{top + 1}" '
                     f'width="{end - LEFT:.1f}" height="{BAR - 2}" rx="2"/>')
        drawn.append(f'<text class="small" x="{end + 5:.1f}" y="{top + BAR - 2}">'
                     f'{escape(LIBRARIES[library])} {written(own_times[library])}</text>')
        top += BAR
    return drawn, top + GAP


def draw(operations, times):
    """Writes the picture of what each operation took in each library."""
    top, drawn = TOP, []
    for operation in operations:
        if len(times[operation["id"]]) > 1:
            rows, top = bars(operation, times[operation["id"]], top)
            drawn += rows
    grid = []
    for ratio in (0.1, 1, 10, 100):
        x = position(ratio)
        label = "ours" if ratio == 1 else f"{ratio:g} times"
        grid.append(f'<line class="{"one" if ratio == 1 else "grid"}" x1="{x:.1f}" x2="{x:.1f}" '
                    f'y1="{TOP - 10}" y2="{top - GAP}"/>')
        grid.append(f'<text class="small" x="{x:.1f}" y="{TOP - 16}" '
                    f'text-anchor="middle">{label}</text>')
    PICTURE.write_text("\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {TOTAL} {top}" width="{TOTAL}">',
        "<title>What each operation takes, beside other libraries</title>",
        f"<style>{STYLE}</style>", *grid, *drawn, "</svg>", ""]))
