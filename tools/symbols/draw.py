#!/usr/bin/python3
"""Draws the symbol set: one SVG each on a 24-unit grid, in one stroke weight.

Every symbol is geometry (strokes with round ends, filled shapes, holes), so that one hand is felt in all of them
and so that a filled symbol needs no mask, which the SVG profile of the toolkit lacks. Needs python3-shapely; the
build uses the files that this writes.

    tools/symbols/draw.py            # rewrites src/ui/symbols/*.svg
"""

import math
import pathlib

from shapely import affinity
from shapely.geometry import LineString, Point, Polygon, box
from shapely.ops import unary_union

WEIGHT = 1.7
FOLDER = pathlib.Path(__file__).resolve().parents[2] / "src" / "ui" / "symbols"


def stroke(*points, weight=WEIGHT):
    return LineString(points).buffer(weight / 2, resolution=8)


def ring(line, weight=WEIGHT):
    """The outline of a closed shape, as a stroke centred on its edge."""
    return line.exterior.buffer(weight / 2, resolution=8)


def polygon(*points):
    return Polygon(points)


def soft(shape, radius):
    """The same shape with its outer corners rounded."""
    return shape.buffer(-radius, join_style=2).buffer(radius, resolution=8)


def circle(x, y, r):
    return Point(x, y).buffer(r, resolution=24)


def rounded(x, y, w, h, r):
    return box(x + r, y + r, x + w - r, y + h - r).buffer(r, resolution=10)


def arc(x, y, r, start, end, weight=WEIGHT):
    steps = max(8, int(abs(end - start) / 5))
    points = [
        (x + r * math.cos(math.radians(start + (end - start) * i / steps)),
         y + r * math.sin(math.radians(start + (end - start) * i / steps)))
        for i in range(steps + 1)
    ]
    return stroke(*points, weight=weight)


def curve(p0, p1, p2, p3, steps=24):
    out = []
    for i in range(steps + 1):
        t = i / steps
        u = 1 - t
        out.append((u**3 * p0[0] + 3 * u * u * t * p1[0] + 3 * u * t * t * p2[0] + t**3 * p3[0],
                    u**3 * p0[1] + 3 * u * u * t * p1[1] + 3 * u * t * t * p2[1] + t**3 * p3[1]))
    return out


def join(*shapes):
    return unary_union(shapes)


def move(shape, dx, dy):
    return affinity.translate(shape, dx, dy)


def scale(shape, factor, about=(12, 12)):
    return affinity.scale(shape, factor, factor, origin=about)


def flip(shape):
    return affinity.scale(shape, -1, 1, origin=(12, 12))


# Building blocks


def handset():
    """A telephone handset, earpiece at the upper left, mouthpiece at the lower right."""
    body = arc(19.6, 4.4, 12.6, 100, 170, weight=3.7)
    ear = affinity.rotate(rounded(3.0, 2.9, 6.6, 6.0, 2.0), -14, origin=(6.3, 5.9))
    mouth = affinity.rotate(rounded(15.1, 14.4, 6.0, 6.6, 2.0), 14, origin=(18.1, 17.7))
    return join(body, ear, mouth).buffer(0.9, resolution=8).buffer(-0.9, resolution=8)


def handset_outline():
    return ring(scale(handset(), 0.93))


def handset_small():
    return move(scale(handset(), 0.78), -1.8, 1.8)


def handset_down():
    laid = affinity.rotate(handset(), 135, origin=(11.6, 12.4))
    centre = laid.centroid
    return move(laid, 12 - centre.x, 12.2 - centre.y)


def plane():
    return polygon((21.5, 2.5), (2.8, 9.8), (10.6, 13.4), (14.2, 21.2))


def bell():
    body = Polygon(curve((5.2, 17), (7.4, 14.6), (6.0, 12), (6.3, 9.2), 16)
                   + curve((6.3, 9.2), (6.8, 5.2), (9.4, 3.6), (12, 3.6), 16)
                   + curve((12, 3.6), (14.6, 3.6), (17.2, 5.2), (17.7, 9.2), 16)
                   + curve((17.7, 9.2), (18.0, 12), (16.6, 14.6), (18.8, 17), 16))
    clapper = Polygon(curve((9.6, 18.6), (10.0, 21.4), (14.0, 21.4), (14.4, 18.6), 20))
    return soft(body, 0.6), clapper


def document(x, y, w, h):
    return rounded(x, y, w, h, 2.2)


def arrow_head(x, y, direction, size=4.2):
    """Two strokes that meet at (x, y)."""
    dx, dy = {"up": (0, 1), "down": (0, -1), "left": (1, 0), "right": (-1, 0)}[direction]
    if dx:
        return stroke((x + dx * size, y - size), (x, y), (x + dx * size, y + size))
    return stroke((x - size, y + dy * size), (x, y), (x + size, y + dy * size))


def hole(shape, *holes):
    for cut in holes:
        shape = shape.difference(cut)
    return shape


def speaker():
    return soft(polygon((2.6, 9.2), (5.6, 9.2), (10.6, 5), (10.6, 19), (5.6, 14.8), (2.6, 14.8)), 0.5)


def microphone():
    return join(rounded(9, 2.6, 6, 11.6, 3), arc(12, 11.2, 6.2, 0, 180), stroke((12, 17.4), (12, 21)),
                stroke((8.8, 21), (15.2, 21)))


def bubble(x, y, w, h, tail):
    body = rounded(x, y, w, h, min(h, w) * 0.36)
    tip = {"left": polygon((x + 1.5, y + h * 0.5), (x + 0.6, y + h + 2.2), (x + w * 0.45, y + h - 0.6)),
           "right": polygon((x + w - 1.5, y + h * 0.5), (x + w - 0.6, y + h + 2.2), (x + w * 0.55, y + h - 0.6))}[tail]
    return join(body, tip).buffer(0.35, resolution=6).buffer(-0.35, resolution=6)


def battery():
    shell = ring(rounded(1.6, 7, 18.4, 10, 2.9))
    pin = rounded(21, 10.2, 1.6, 3.6, 0.8)
    return join(shell, pin), rounded(3.7, 9.1, 14.2, 5.8, 1.3)


def five(x, y, s=1.0):
    """The figure five, drawn small inside an arrow."""
    w = 1.35
    top = stroke((x + 1.5 * s, y - 2.5 * s), (x - 1.1 * s, y - 2.5 * s), (x - 1.4 * s, y - 0.35 * s), weight=w)
    bowl = stroke(*curve((x - 1.4 * s, y - 0.35 * s), (x + 0.2 * s, y - 1.3 * s), (x + 1.7 * s, y - 0.4 * s),
                         (x + 1.6 * s, y + 0.9 * s), 12), weight=w)
    foot = stroke(*curve((x + 1.6 * s, y + 0.9 * s), (x + 1.5 * s, y + 2.5 * s), (x - 0.6 * s, y + 3.0 * s),
                         (x - 1.7 * s, y + 1.9 * s), 12), weight=w)
    return join(top, bowl, foot)


def skip_triangles(x1, x2):
    left = soft(polygon((x1, 12), (x1 + 8.6, 6), (x1 + 8.6, 18)), 0.7)
    right = soft(polygon((x2, 12), (x2 + 8.6, 6), (x2 + 8.6, 18)), 0.7)
    return join(left, right)


def waves(x, y, radii, spread):
    return join(*[arc(x, y, r, -spread, spread) for r in radii])


def exclamation(x, top, middle, dot):
    return join(stroke((x, top), (x, middle), weight=2.0), circle(x, dot, 1.2))


def turning_arrow():
    """A ring open at the upper right, with a head that follows the clock."""
    x, y = 12 + 8 * math.cos(math.radians(290)), 12.8 + 8 * math.sin(math.radians(290))
    head = stroke((x - 2.6, y - 3.9), (x + 1.2, y + 0.2), (x - 3.2, y + 3.6))
    return join(arc(12, 12.8, 8, -12, 292), head)


def skip_ring():
    ring_ = arc(12, 13, 8.2, -55, 225)
    angle = math.radians(-55)
    x, y = 12 + 8.2 * math.cos(angle), 13 + 8.2 * math.sin(angle)
    head = soft(polygon((x - 4.6, y - 2.9), (x + 0.8, y + 0.4), (x - 4.9, y + 3.4)), 0.4)
    return join(ring_, head)


def symbols():
    ear, flat = handset(), plane()
    bell_body, clapper = bell()
    shell, charge = battery()
    slash = stroke((4, 3.4), (20, 20.6))
    slash_gap = stroke((4, 3.4), (20, 20.6), weight=WEIGHT * 2.6)
    plane_fold = stroke((10.6, 13.4), (21.5, 2.5))
    plane_gap = stroke((10.9, 13.1), (20.6, 3.4), weight=1.1)
    disc = circle(12, 12, 9.8)
    gear_teeth = join(*[affinity.rotate(rounded(10.5, 1.7, 3, 5, 1.1), a, origin=(12, 12)) for a in range(0, 360, 45)])
    gear = join(circle(12, 12, 7.6), gear_teeth)
    heart = Polygon(curve((12, 20.8), (2.4, 13.6), (1.4, 10.2), (2.6, 7.2), 20)
                    + curve((2.6, 7.2), (4.2, 3.4), (9.6, 3.0), (12, 7.2), 20)
                    + curve((12, 7.2), (14.4, 3.0), (19.8, 3.4), (21.4, 7.2), 20)
                    + curve((21.4, 7.2), (22.6, 10.2), (21.6, 13.6), (12, 20.8), 20))
    shield = Polygon(curve((12, 2), (14.6, 3.6), (17.4, 4.6), (20.2, 4.8), 10)
                     + curve((20.2, 4.8), (20.6, 13), (18.4, 18.4), (12, 22), 24)
                     + curve((12, 22), (5.6, 18.4), (3.4, 13), (3.8, 4.8), 24)
                     + curve((3.8, 4.8), (6.6, 4.6), (9.4, 3.6), (12, 2), 10))
    bolt = polygon((12.6, 5.4), (7.4, 13), (10.9, 13), (9.6, 18.6), (15.2, 10.8), (11.6, 10.8))
    back_sheet = ring(document(3, 3, 11.6, 13.6))
    front_sheet = document(9.2, 7.4, 11.8, 13.6)
    clip_sheet = ring(document(4.2, 4.4, 13, 17))
    house = join(soft(polygon((12, 2.8), (22, 11.6), (19.4, 11.6), (19.4, 20.8), (4.6, 20.8), (4.6, 11.6), (2, 11.6)), 0.7))
    folder = soft(polygon((2.6, 5), (9.2, 5), (11.2, 7.2), (21.4, 7.2), (21.4, 19.4), (2.6, 19.4)), 1.4)
    cross_keys = []
    for cx, cy in ((7, 7), (17, 7), (7, 17), (17, 17)):
        loop = circle(cx, cy, 2.9)
        cross_keys.append(ring(loop))
    command = join(*cross_keys, ring(box(9.9, 9.9, 14.1, 14.1)),
                   stroke((9.9, 7), (9.9, 17)), stroke((14.1, 7), (14.1, 17)),
                   stroke((7, 9.9), (17, 9.9)), stroke((7, 14.1), (17, 14.1)))
    delete_body = soft(polygon((1.6, 12), (8, 4.6), (22.4, 4.6), (22.4, 19.4), (8, 19.4)), 1.2)
    cross = join(stroke((11.9, 9), (17.9, 15)), stroke((17.9, 9), (11.9, 15)))

    return {
        "phone": handset_outline(),
        "phone.fill": ear,
        "phone.down.fill": handset_down(),
        "phone.arrow.down.left": join(handset_small(), stroke((21, 3.4), (14.4, 10)),
                                      stroke((14.4, 4.6), (14.4, 10), (19.8, 10))),
        "phone.arrow.up.right": join(handset_small(), stroke((14.2, 10), (20.8, 3.4)),
                                     stroke((15.4, 3.4), (20.8, 3.4), (20.8, 8.8))),
        "paperplane": join(ring(soft(flat, 0.4)), plane_fold),
        "paperplane.fill": hole(soft(flat, 0.5), plane_gap),
        "paperplane.circle.fill": hole(disc, hole(move(scale(soft(flat, 0.5), 0.56), -0.6, 0.5),
                                                  move(scale(plane_gap, 0.56), -0.6, 0.5))),
        "arrow.down.doc": join(ring(document(4.4, 2.8, 15.2, 18.4)), stroke((12, 7.6), (12, 15.6)),
                               arrow_head(12, 16, "down", 3.2)),
        "arrow.down.circle.fill": hole(disc, join(stroke((12, 7), (12, 16.4)), arrow_head(12, 17, "down", 4))),
        "arrow.up.circle.fill": hole(disc, join(stroke((12, 17), (12, 7.6)), arrow_head(12, 7, "up", 4))),
        "clock": join(ring(circle(12, 12, 9.2)), stroke((12, 6.8), (12, 12.4), (16, 14.4))),
        "command": command,
        "doc.on.clipboard": join(clip_sheet.difference(rounded(6.9, 2.2, 7.6, 4.6, 1.6).buffer(0.7)),
                                 ring(rounded(7.4, 2.9, 6.6, 3.2, 1.5)).difference(Point(0, 0).buffer(0.1)),
                                 rounded(11.6, 10.4, 9.6, 11.4, 2.0)),
        "doc.on.doc": join(back_sheet.difference(front_sheet.buffer(1.5)), ring(front_sheet)),
        "gearshape": join(ring(soft(gear, 0.3)), ring(circle(12, 12, 3.1))),
        "info.circle": join(ring(circle(12, 12, 9.4)), circle(12, 7.7, 1.25), stroke((10.6, 11.2), (12.1, 11.2), (12.1, 16.6)),
                            stroke((10.3, 16.8), (13.9, 16.8))),
        "arrow.clockwise": turning_arrow(),
        "magnifyingglass": join(ring(circle(10.4, 10.4, 6.8)), stroke((15.5, 15.5), (20.8, 20.8))),
        "xmark.circle.fill": hole(disc, join(stroke((8.4, 8.4), (15.6, 15.6)), stroke((15.6, 8.4), (8.4, 15.6)))),
        "message.fill": bubble(2.2, 3.4, 19.6, 14.6, "left"),
        "bubble.left.and.bubble.right.fill": join(
            hole(bubble(1.2, 2.6, 14.6, 10.4, "left"), bubble(9.6, 9.2, 13.2, 9.4, "right").buffer(1.1)),
            bubble(9.6, 9.2, 13.2, 9.4, "right")),
        "mic.fill": microphone(),
        "mic.slash.fill": join(hole(microphone(), slash_gap), slash),
        "delete.left.fill": hole(delete_body, cross),
        "bell.fill": join(bell_body, clapper),
        "bell.slash": join(hole(join(ring(bell_body), clapper), slash_gap), slash),
        "bell.badge.fill": join(hole(join(bell_body, clapper), circle(17.6, 5.8, 5.2)), circle(17.6, 5.8, 3.7)),
        "folder": join(ring(folder), stroke((3.4, 10.4), (20.6, 10.4))),
        "square.and.arrow.up": join(
            hole(ring(rounded(4.6, 8.4, 14.8, 12.8, 2.6)), box(8.4, 6.6, 15.6, 10.2)),
            stroke((12, 3.2), (12, 14.6)), arrow_head(12, 2.8, "up", 3.6)),
        "text.justify.left": join(*[stroke((3.6, y), (20.4, y)) for y in (5.4, 9.8, 14.2)], stroke((3.6, 18.6), (14, 18.6))),
        "backward.fill": skip_triangles(2.0, 11.6),
        "forward.fill": flip(skip_triangles(2.0, 11.6)),
        "playpause.fill": join(soft(polygon((2.4, 5.4), (12.4, 12), (2.4, 18.6)), 0.7),
                               rounded(14.4, 5.6, 2.7, 12.8, 1.0), rounded(19.0, 5.6, 2.7, 12.8, 1.0)),
        "goforward.5": join(skip_ring(), five(12, 13.2, 1.15)),
        "gobackward.5": join(flip(skip_ring()), five(12, 13.2, 1.15)),
        "speaker.wave.1.fill": move(join(speaker(), waves(9.6, 12, (5.4,), 38)), 3.4, 0),
        "speaker.wave.3.fill": join(speaker(), waves(9.2, 12, (5.0, 8.9, 12.8), 40)),
        "chevron.up": stroke((4.6, 15.6), (12, 8.2), (19.4, 15.6), weight=2.2),
        "chevron.down": stroke((4.6, 8.4), (12, 15.8), (19.4, 8.4), weight=2.2),
        "chevron.left": stroke((15.6, 4.6), (8.2, 12), (15.6, 19.4), weight=2.2),
        "chevron.right": stroke((8.4, 4.6), (15.8, 12), (8.4, 19.4), weight=2.2),
        "circle.fill": circle(12, 12, 8.6),
        "arrow.left": join(stroke((3.6, 12), (20.6, 12)), arrow_head(3.2, 12, "left", 6.2)),
        "return": join(stroke((20.2, 5.6), (20.2, 13.4), (4.2, 13.4)), arrow_head(3.8, 13.4, "left", 4.6)),
        "arrow.right.to.line": join(stroke((3, 12), (16, 12)), arrow_head(16.6, 12, "right", 5.2), stroke((20.8, 5.4), (20.8, 18.6))),
        "arrow.left.to.line": flip(join(stroke((3, 12), (16, 12)), arrow_head(16.6, 12, "right", 5.2),
                                        stroke((20.8, 5.4), (20.8, 18.6)))),
        "house.fill": hole(house, rounded(9.9, 13.6, 4.2, 8.4, 0.8)),
        "square.stack.fill": join(rounded(3.4, 9.2, 17.2, 12, 2.8), stroke((5.6, 6.2), (18.4, 6.2)), stroke((7.8, 3.0), (16.2, 3.0))),
        "ellipsis.circle.fill": hole(disc, circle(7.4, 12, 1.45), circle(12, 12, 1.45), circle(16.6, 12, 1.45)),
        "exclamationmark.shield.fill": hole(shield, exclamation(12, 7.4, 12.6, 16.4)),
        "exclamationmark.triangle.fill": hole(
            polygon((12, 3.6), (21.0, 19.6), (3.0, 19.6)).buffer(1.7, resolution=10), exclamation(12, 9, 13.6, 17.2)),
        "checkmark.circle.fill": hole(disc, stroke((7.4, 12.6), (10.7, 16), (16.6, 8.4), weight=1.9)),
        "battery.100": join(shell, charge),
        "battery.100.bolt": join(hole(join(shell, charge), bolt.buffer(1.3, join_style=2)), soft(bolt, 0.2)),
        "heart.fill": heart,
        "antenna.radiowaves.left.and.right": join(
            circle(12, 9.4, 2.0), stroke((12, 9.4), (12, 21)),
            arc(12, 9.4, 5.6, -42, 42), arc(12, 9.4, 9.6, -42, 42),
            arc(12, 9.4, 5.6, 138, 222), arc(12, 9.4, 9.6, 138, 222)),
    }


def path(shape):
    pieces = []
    for part in getattr(shape, "geoms", [shape]):
        for edge in (part.exterior, *part.interiors):
            points = list(edge.simplify(0.012).coords)[:-1]
            pieces.append("M" + "L".join(f"{x:.2f} {y:.2f}" for x, y in points) + "Z")
    return "".join(pieces)


def main():
    FOLDER.mkdir(parents=True, exist_ok=True)
    for name, shape in symbols().items():
        text = ('<svg xmlns="http://www.w3.org/2000/svg" width="24" height="24" viewBox="0 0 24 24">'
                f'<path fill-rule="evenodd" d="{path(shape)}"/></svg>\n')
        (FOLDER / (name.replace(".", "_") + ".svg")).write_text(text)
    print(f"{len(symbols())} symbols in {FOLDER}")


if __name__ == "__main__":
    main()
