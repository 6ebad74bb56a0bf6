#!/usr/bin/env python3
"""Makes the icon font and the enumeration of its glyphs from the drawings in svg/.

  font.py           write KelDockIcon.ttf and Glyph.h (needs fontTools: Debian's python3-fonttools)
  font.py --check   only tell whether they are made from the drawings as they are now (needs nothing)

A drawing is named after its code point and its glyph: e622-pause.svg. It stands on a canvas of 24 units, which becomes the
em square, so that a label of the font's pixel size holds the glyph centred. Elements may be filled and stroked; strokes
have round caps and joins, as a font knows only outlines.
"""

import hashlib
import math
import pathlib
import sys

HERE = pathlib.Path(__file__).parent
FONT = HERE / "KelDockIcon.ttf"
HEADER = HERE / "Glyph.h"

CANVAS = 24
UNITS_PER_EM = 2400
SCALE = UNITS_PER_EM / CANVAS
DESCENT = UNITS_PER_EM // 5
CURVE_STEPS = 12
CAP_STEP = math.pi / 14


def drawings():
    """(code point, name, file) in the order of the code points."""
    for file in sorted(HERE.glob("svg/*.svg")):
        code, name = file.stem.split("-", 1)
        yield int(code, 16), name, file


def digest():
    """Names the state of the drawings and of this script; the font carries it as its version."""
    state = hashlib.sha256(pathlib.Path(__file__).read_bytes())
    for code, name, file in drawings():
        state.update(b"%x %s " % (code, name.encode()) + file.read_bytes())
    return state.hexdigest()


def header():
    names = "".join(f"    {name.title().replace('-', '')} = 0x{code:x},\n" for code, name, _ in drawings())
    return f"""#pragma once

namespace KelDockIcon
{{

/// The glyphs of the icon font and their code points. Made by font.py from the drawings in svg/.
enum class Glyph : char16_t {{
{names}}};

}} // namespace KelDockIcon
"""


class Polylines:
    """A pen that flattens what is drawn into [(points, is closed)]."""

    def __init__(self):
        self.lines = []

    def moveTo(self, point):
        self.lines.append(([point], False))

    def lineTo(self, point):
        if point != self.lines[-1][0][-1]:
            self.lines[-1][0].append(point)

    def curveTo(self, b, c, d):
        a = self.lines[-1][0][-1]
        for step in range(1, CURVE_STEPS + 1):
            t = step / CURVE_STEPS
            u = 1 - t
            self.lineTo(tuple(u**3 * a[i] + 3 * u * u * t * b[i] + 3 * u * t * t * c[i] + t**3 * d[i] for i in (0, 1)))

    def closePath(self):
        self.lines[-1] = (self.lines[-1][0], True)

    def endPath(self):
        pass

    def result(self):
        for points, closed in self.lines:
            if len(points) > 2 and math.dist(points[0], points[-1]) < 1e-6:
                points, closed = points[:-1], True
            yield points, closed


def arc(centre, radius, start, end):
    """Points of an arc, with growing angle."""
    steps = max(1, math.ceil((end - start) / CAP_STEP))
    angles = (start + (end - start) * i / steps for i in range(steps + 1))
    return [(centre[0] + radius * math.cos(a), centre[1] + radius * math.sin(a)) for a in angles]


def right_side(points, radius, closed):
    """What runs beside a polyline on its right; turns to the left get a round join."""
    directions = [math.atan2(b[1] - a[1], b[0] - a[0]) for a, b in zip(points, points[1:] + points[:closed])]
    side = []
    for i, direction in enumerate(directions):
        start, end = points[i], points[(i + 1) % len(points)]
        normal = direction - math.pi / 2
        offset = (radius * math.cos(normal), radius * math.sin(normal))
        side += [(start[0] + offset[0], start[1] + offset[1]), (end[0] + offset[0], end[1] + offset[1])]
        if closed or i + 1 < len(directions):
            turn = (directions[(i + 1) % len(directions)] - direction + math.pi) % (2 * math.pi) - math.pi
            if turn > 0.3:
                side += arc(end, radius, normal, normal + turn)[1:-1]
    return side


def outline(points, closed, radius):
    """The contours around a stroke, all turning the same way, so that overlaps stay filled."""
    if closed:
        return [right_side(points, radius, True), right_side(points[::-1], radius, True)]
    (ax, ay), (bx, by) = points[-2:]
    last = math.atan2(by - ay, bx - ax)
    (ax, ay), (bx, by) = points[:2]
    first = math.atan2(by - ay, bx - ax)
    return [right_side(points, radius, False) +
            arc(points[-1], radius, last - math.pi / 2, last + math.pi / 2)[1:-1] +
            right_side(points[::-1], radius, False) +
            arc(points[0], radius, first + math.pi / 2, first + math.pi * 3 / 2)[1:-1]]


def turns_left(points):
    return sum(a[0] * b[1] - b[0] * a[1] for a, b in zip(points, points[1:] + points[:1])) > 0


def contours(file):
    from fontTools.svgLib.path import parse_path
    from fontTools.svgLib.path.shapes import PathBuilder
    from xml.etree import ElementTree

    root = ElementTree.parse(file).getroot()
    for element in root:
        paths = PathBuilder()
        if not paths.add_path_from_element(element):
            sys.exit(f"{file.name}: {element.tag} is not drawn")
        pen = Polylines()
        parse_path(paths.paths[0], pen)
        style = {**root.attrib, **element.attrib}
        for points, closed in pen.result():
            if style["fill"] != "none":
                yield points if turns_left(points) else points[::-1]
            if style["stroke"] != "none":
                yield from outline(points, closed, float(style["stroke-width"]) / 2)


def glyph(file):
    from fontTools.pens.ttGlyphPen import TTGlyphPen
    from fontTools.ttLib.tables._g_l_y_f import flagOverlapSimple

    pen = TTGlyphPen(None)
    for points in contours(file):
        # The canvas counts downwards, the font upwards.
        placed = [(round(x * SCALE), round((CANVAS - y) * SCALE) - DESCENT) for x, y in points]
        pen.moveTo(placed[0])
        for point in placed[1:]:
            pen.lineTo(point)
        pen.closePath()
    result = pen.glyph()
    result.flags[0] |= flagOverlapSimple
    return result


def write_font():
    from fontTools.fontBuilder import FontBuilder
    from fontTools.pens.ttGlyphPen import TTGlyphPen

    names = [name for _, name, _ in drawings()]
    glyphs = {".notdef": TTGlyphPen(None).glyph()} | {name: glyph(file) for _, name, file in drawings()}
    font = FontBuilder(UNITS_PER_EM, isTTF=True)
    font.setupGlyphOrder([".notdef", *names])
    font.setupCharacterMap({code: name for code, name, _ in drawings()})
    font.setupGlyf(glyphs)
    font.setupHorizontalMetrics({name: (UNITS_PER_EM, getattr(glyphs[name], "xMin", 0)) for name in glyphs})
    font.setupHorizontalHeader(ascent=UNITS_PER_EM - DESCENT, descent=-DESCENT)
    font.setupNameTable({"familyName": "KelDockIcon", "styleName": "Regular", "version": digest()}, mac=False)
    font.setupOS2(sTypoAscender=UNITS_PER_EM - DESCENT, sTypoDescender=-DESCENT, sTypoLineGap=0,
                  usWinAscent=UNITS_PER_EM - DESCENT, usWinDescent=DESCENT)
    font.setupPost(keepGlyphNames=False)
    font.font.recalcTimestamp = False
    font.font["head"].created = font.font["head"].modified = 0
    font.save(FONT)


def main():
    if "--check" not in sys.argv[1:]:
        write_font()
        HEADER.write_text(header())
    elif digest().encode("utf-16-be") not in FONT.read_bytes() or HEADER.read_text() != header():
        sys.exit("The icon font is not made from the drawings as they are: run platform/dockicon/font.py")


main()
