"""Charts as SVG, readable on light and dark pages. Pure functions."""

import math
from xml.sax.saxutils import escape

from summary import number

STYLE = """
svg { color-scheme: light dark; }
text { font: 12px sans-serif; fill: #333; }
.title { font-size: 14px; font-weight: bold; }
.grid { stroke: #ddd; }
.own { fill: #1f6fb5; } .c { fill: #6aa6d8; } .limit { fill: #8c8c8c; } .peer { fill: #d9822b; }
.line { stroke-width: 2; }
.line.own { stroke: #1f6fb5; } .line.limit { stroke: #8c8c8c; } .line.peer { stroke: #d9822b; }
.line.stat { stroke: #4f9a4f; }
.line.second { stroke-dasharray: 6 4; }
@media (prefers-color-scheme: dark) {
  text { fill: #ddd; }
  .grid { stroke: #444; }
  .own { fill: #58a6e8; } .c { fill: #2f6ea5; } .limit { fill: #9a9a9a; } .peer { fill: #f0a350; }
  .line.own { stroke: #58a6e8; } .line.limit { stroke: #9a9a9a; } .line.peer { stroke: #f0a350; }
  .line.stat { stroke: #7cc47c; }
}
"""
WIDTH = 760
def document(height, title, elements):
    return "\n".join(
        [
            f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" '
            f'width="{WIDTH}" height="{height}" role="img">',
            f"<title>{escape(title)}</title>",
            f"<style>{STYLE}</style>",
            *elements,
            "</svg>\n",
        ]
    )


def text(x, y, content, anchor="start", kind=""):
    kind = f' class="{kind}"' if kind else ""
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}"{kind}>{escape(content)}</text>'


def segment(x1, y1, x2, y2):
    return f'<line class="grid" x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}"/>'


class Scale:
    """From values to pixels, in proportion to the logarithm, over whole powers of ten."""

    def __init__(self, values, begin, end):
        self.low = math.floor(math.log10(min(values)))
        self.high = max(math.ceil(math.log10(max(values))), self.low + 1)
        self.begin, self.end = begin, end

    def __call__(self, value):
        share = (math.log10(value) - self.low) / (self.high - self.low)
        return self.begin + share * (self.end - self.begin)

    def powers(self):
        return [10.0**exponent for exponent in range(self.low, self.high + 1)]


def bars(title, unit, groups):
    """Horizontal bars; `groups` holds for each heading a list of names, classes and values."""
    left, right, row = 190, WIDTH - 70, 17
    values = [value for _, entries in groups for _, _, value in entries]
    scale = Scale(values, left, right)
    elements, y = [text(10, 22, f"{title} ({unit})", kind="title")], 40
    top = y
    for heading, entries in groups:
        if heading:
            y += row
            elements.append(text(10, y, heading))
        for name, kind, value in entries:
            y += row
            width = max(scale(value) - left, 1)
            elements.append(text(left - 8, y, name, "end"))
            elements.append(
                f'<rect class="{kind}" x="{left}" y="{y - 10}" width="{width:.1f}" height="12"/>'
            )
            elements.append(text(left + width + 5, y, number(value)))
        y += row / 2
    grid = [segment(scale(power), top, scale(power), y) for power in scale.powers()]
    labels = [text(scale(power), y + 16, f"{power:g}", "middle") for power in scale.powers()]
    return document(y + 30, title, elements[:1] + grid + elements[1:] + labels)


def lines(title, x_title, y_title, series):
    """Curves on logarithmic axes; `series` holds names, classes and lists of points."""
    left, right, top, bottom = 70, WIDTH - 270, 50, 330
    points = [point for _, _, curve in series for point in curve]
    across = Scale([x for x, _ in points], left, right)
    up = Scale([y for _, y in points], bottom, top)
    elements = [text(10, 22, title, kind="title"), text(10, 40, y_title)]
    elements.append(text(right, bottom + 36, x_title, "end"))
    for power in across.powers():
        elements.append(segment(across(power), top, across(power), bottom))
        elements.append(text(across(power), bottom + 18, f"{power:g}", "middle"))
    for power in up.powers():
        elements.append(segment(left, up(power), right, up(power)))
        elements.append(text(left - 8, up(power) + 4, f"{power:g}", "end"))
    for place, (name, kind, curve) in enumerate(series):
        key = top + 12 + 20 * place
        path = " ".join(f"{across(x):.1f},{up(y):.1f}" for x, y in curve)
        for points in (path, f"{right + 20},{key - 4} {right + 50},{key - 4}"):
            elements.append(f'<polyline class="line {kind}" style="fill: none" points="{points}"/>')
        elements.append(text(right + 58, key, name))
    return document(bottom + 50, title, elements)
