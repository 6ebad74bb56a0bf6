#!/usr/bin/env python3
"""Generates the click and wheel effects, one Lottie file each, next to this script.

  animations.py           write the files
  animations.py --check   only check that the files are up to date

All effects are 48 frames long at 60 frames per second, on a canvas of 256 units centered on the pointer. They use two
colors: "accent" is replaced by the color from the settings, "rim" is a thin white outline that sets the accent off
against a background of the same color. While a button is held, its effect stops at the hold frame, which is visible
the longest; frame 0 is visible at once.
"""

import json
import math
import pathlib
import sys

SIZE = 256
RATE = 60
FRAMES = 48

ACCENT = [0.2, 0.533, 1, 1]
RIM_WIDTH = 4  # on either side
RIM_OPACITY = 92

# Easing: the Bezier control points of a keyframe.
OUT = ((0.16, 1), (0.3, 1))
IN = ((0.55, 0), (0.8, 0.45))
BOTH = ((0.5, 0), (0.5, 1))
POP = ((0.3, 1.5), (0.55, 1))  # overshoots


def fixed(value):
    return {"a": 0, "k": value}


def animated(*keys):
    """Keyframes (frame, value, easing to the next). The value is constant before the first and after the last."""
    frames = []
    for (frame, value, *ease), following in zip(keys, [*keys[1:], None]):
        start = value if isinstance(value, list) else [value]
        key = {"t": frame, "s": start}
        if following:
            end = following[1] if isinstance(following[1], list) else [following[1]]
            (ox, oy), (ix, iy) = ease[0] if ease else OUT
            key |= {"e": end, "o": {"x": [ox], "y": [oy]}, "i": {"x": [ix], "y": [iy]}}
        frames.append(key)
    return {"a": 1, "k": frames}


def number(value):
    return value if isinstance(value, dict) else fixed(value)


def point(angle, radius):
    """Polar coordinates: the angle is in degrees, clockwise from straight up."""
    turn = math.radians(angle)
    return [round(radius * math.sin(turn), 3), round(-radius * math.cos(turn), 3)]


def path(vertices, tangents_in=None, tangents_out=None, closed=False):
    still = [[0, 0]] * len(vertices)
    return {"ty": "sh", "ks": fixed({"c": closed, "v": vertices, "i": tangents_in or still, "o": tangents_out or still})}


def line(start, end):
    return path([start, end])


def circle(radius, center=(0, 0)):
    size = radius if isinstance(radius, dict) else fixed([2 * radius, 2 * radius])
    return {"ty": "el", "p": number(list(center)), "s": size}


def growing_circle(*keys):
    return circle(animated(*[(frame, [2 * radius, 2 * radius], *ease) for frame, radius, *ease in keys]))


def star(outer, inner, points=5):
    """A star; stroking it rounds its points."""
    vertices = [point(180 / points * i, inner if i % 2 else outer) for i in range(2 * points)]
    return path(vertices, closed=True)


def petal(inner, outer, width, widest=0.62):
    """A petal pointing up, from the inner to the outer radius, sharp at the inner end and round at the outer one."""
    length = outer - inner
    middle = -(inner + widest * length)
    foot, tip, side = 0.45 * widest * length, 0.5 * (1 - widest) * length, 0.27 * width
    return path([[0, -inner], [width / 2, middle], [0, -outer], [-width / 2, middle]],
                [[0, 0], [0, foot], [side, 0], [0, -tip]],
                [[0, 0], [0, -tip], [-side, 0], [0, foot]], closed=True)


def trim(start, end):
    return {"ty": "tm", "s": number(start), "e": number(end), "o": fixed(0), "m": 1}


def stroke(name, color, width, opacity=100):
    return {"ty": "st", "nm": name, "c": fixed(color), "o": number(opacity), "w": number(width), "lc": 2, "lj": 2}


def fill(opacity=100):
    return {"ty": "fl", "nm": "accent", "c": fixed(ACCENT), "o": number(opacity), "r": 1}


def wider(width):
    """A stroke width, constant or animated, plus the rim; 0 stays 0."""
    if not isinstance(width, dict):
        return width + 2 * RIM_WIDTH
    keys = []
    for key in width["k"]:
        key = dict(key)
        for part in "se":
            if part in key:
                key[part] = [w + 2 * RIM_WIDTH if w else 0 for w in key[part]]
        keys.append(key)
    return {"a": 1, "k": keys}


def rim(width):
    return stroke("rim", [1, 1, 1, 1], width, RIM_OPACITY)


def group(*items, position=(0, 0), anchor=(0, 0), scale=100, rotation=0, opacity=100):
    scales = scale if isinstance(scale, dict) else fixed([scale, scale])
    return {"ty": "gr", "it": [*items, {"ty": "tr", "p": number(list(position) if isinstance(position, tuple) else position),
                                        "a": fixed(list(anchor)), "s": scales, "r": number(rotation),
                                        "o": number(opacity)}]}


def scaled(*keys):
    return animated(*[(frame, [scale, scale], *ease) for frame, scale, *ease in keys])


def drawn(shape, width, *modifiers, **place):
    """A stroked line with a rim."""
    return group(shape, *modifiers, stroke("accent", ACCENT, width), rim(wider(width)), **place)


def solid(shape, **place):
    """A filled shape with a rim and slightly rounded corners."""
    return group(shape, fill(), stroke("accent", ACCENT, 4), rim(4 + 2 * RIM_WIDTH), **place)


def movie(name, shapes):
    """The first shape is on top."""
    layer = {"ddd": 0, "ind": 1, "ty": 4, "nm": name, "ip": 0, "op": FRAMES, "st": 0, "bm": 0, "shapes": shapes,
             "ks": {"o": fixed(100), "r": fixed(0), "p": fixed([SIZE / 2, SIZE / 2, 0]), "a": fixed([0, 0, 0]),
                    "s": fixed([100, 100, 100])}}
    return {"v": "5.5.7", "nm": name, "fr": RATE, "ip": 0, "op": FRAMES, "w": SIZE, "h": SIZE, "ddd": 0, "assets": [],
            "layers": [layer]}


def click_ray():
    """Three rays from the pointer; playback rotates them to the side of the button. Hold frame: 8."""
    shapes = []
    for angle, reach, delay in ((0, 116, 0), (-38, 104, 1), (38, 104, 1)):
        ray = trim(animated((9 + delay, 0, BOTH), (34 + delay, 100)), animated((0, 42, OUT), (8 + delay, 100)))
        width = animated((0, 20, OUT), (8, 17, BOTH), (27 + delay, 13, IN), (35 + delay, 0))
        shapes.append(drawn(line(point(angle, 50), point(angle, reach)), width, ray))
    return shapes


def click_floral():
    """A flower that opens, turns and sheds its petals. Hold frame: 0, the whole flower."""
    shapes = [solid(circle(14), scale=scaled((0, 100, OUT), (10, 118, BOTH), (32, 0)))]
    for i in range(8):
        late = 6 if i % 2 else 0
        opens = scaled((0, 100, OUT), (14, 118, BOTH), (22 + late, 112, IN), (40 + late, 0))
        outwards = animated((0, [0, 0], OUT), (14, point(0, 6), BOTH), (22 + late, point(0, 8), IN),
                            (40 + late, point(0, 104)))
        leaf = solid(petal(26, 90, 41), position=outwards, scale=opens)
        shapes.append(group(leaf, rotation=animated((0, 45 * i, OUT), (16, 45 * i + 14, BOTH), (46, 45 * i + 40))))
    return shapes


def click_fireworks():
    """Two rings of comets and sparks between them. Hold frame: 12, the burst at its widest."""
    shapes = []
    for i in range(12):
        far = i % 2 == 0
        reach, length, width, late = (112, 62, 19, 0) if far else (82, 42, 15, 2)
        head = -length  # the tail is at the origin
        flight = animated((0, [0, -38], OUT), (13 + late, [0, -reach], BOTH), (44, [0, -reach - 5]))
        tail = animated((0, [70, 22], OUT), (12 + late, [100, 100], BOTH), (30 + late, [72, 16], IN), (44, [0, 0]))
        comet = solid(petal(0, length, width, 0.84), position=flight, anchor=(0, head), scale=tail)
        shapes.append(group(comet, rotation=30 * i))
    for i in range(12):
        spark = solid(circle(5), position=animated((8, [0, -92], OUT), (34, [0, -104])),
                      scale=scaled((8, 0, POP), (16, 100, BOTH), (26 + i % 3 * 3, 80, IN), (36 + i % 3 * 4, 0)))
        shapes.append(group(spark, rotation=30 * i + 15))
    return shapes


def click_starts():
    """Stars of two sizes that pop out, linger and spin away. Hold frame: 8."""
    shapes = []
    for i in range(6):
        large = i % 2 == 0
        angle, reach, size, late = 60 * i, (74 if large else 86), (35 if large else 22), (0 if large else 2)
        spin = -30 if large else 36
        flight = animated((0, point(angle, 34), OUT), (8 + late, point(angle, reach), BOTH),
                          (42 + late, point(angle, reach + 26)))
        scale = scaled((0, 45, POP), (9 + late, 100, BOTH), (22 + late, 94, IN), (42 + late, 0))
        turn = animated((0, angle + spin, OUT), (10, angle, BOTH), (44, angle - 4 * spin))
        shapes.append(solid(star(size, size * 0.5), position=flight, scale=scale, rotation=turn))
    return shapes


def click_ripple():
    """Two rings that expand from a soft drop. Hold frame: 12."""
    first = animated((0, 18, OUT), (14, 13, BOTH), (38, 4, IN), (44, 0))
    second = animated((4, 0, OUT), (10, 14, BOTH), (38, 4, IN), (46, 0))
    return [
        drawn(growing_circle((0, 36, OUT), (44, 116)), first),
        drawn(growing_circle((4, 12, OUT), (46, 80)), second),
        group(growing_circle((0, 26, OUT), (14, 50, BOTH), (44, 74)),
              fill(animated((0, 60, OUT), (14, 42, BOTH), (36, 0)))),
    ]


def wheel_arrow():
    """Three arrow heads that move down, away from the pointer; playback rotates them by 180
    degrees for scrolling up."""
    shapes = []
    for i in range(3):
        late = 4 * i
        y = 26 + 35 * i
        head = path([[-35, -15], [0, 15], [35, -15]])
        grow = trim(animated((late, 25 if i == 0 else 50, OUT), (late + 9, 0)),
                    animated((late, 75 if i == 0 else 50, OUT), (late + 9, 100)))
        width = animated((late, 14 if i == 0 else 0, OUT), (late + 5, 18, BOTH), (late + 22, 18, IN), (late + 36, 0))
        run = animated((late, [0, y - 14], OUT), (late + 10, [0, y], BOTH), (late + 22, [0, y + 1], IN),
                       (late + 36, [0, y + 10]))
        shapes.append(drawn(head, width, grow, position=run))
    return shapes


def main():
    check = "--check" in sys.argv[1:]
    stale = []
    for draw in (click_ray, click_floral, click_fireworks, click_starts, click_ripple, wheel_arrow):
        file = pathlib.Path(__file__).with_name(draw.__name__ + ".json")
        text = json.dumps(movie(draw.__name__, draw()), separators=(",", ":")) + "\n"
        if not check:
            file.write_text(text)
        elif not file.exists() or file.read_text() != text:
            stale.append(file.name)
    if stale:
        sys.exit("out of date, run animations.py: " + ", ".join(stale))


main()
