"""Time against size: how the cost of the library grows, as a picture."""

import math
import statistics
from dataclasses import dataclass

from table import measure

HALF_DECADES = [10_000, 30_000, 100_000, 300_000, 1_000_000, 3_000_000, 10_000_000]
QUICK_LIMIT = 100_000
ROUNDS = 3
ONCE_FROM_S = 10.0  # a run that takes longer is not repeated
LONGEST_RUN_S = 240.0


@dataclass(frozen=True)
class Line:
    label: str
    program: str
    work: str
    survey: str
    sizes: list
    unit: str  # of the sizes


SURFACES = [
    Line("build", "build_surface", "triangulate", "uniform", HALF_DECADES, "points"),
    Line("a million heights, random", "locate", "random", "uniform", HALF_DECADES, "points"),
    Line("20 contour levels", "contours", "levels", "uniform", HALF_DECADES, "points"),
    Line("decimate to a tenth", "decimate", "thin", "uniform", HALF_DECADES, "points"),
]

POLYGON_SIZES = [100, 300, 1000, 3000, 10_000]
LINES = [
    Line("join contour fragments", "connect", "connect", "chains",
         [1000, 3000, 10_000, 30_000, 100_000], "fragments"),
    Line("triangulate a star", "polygon", "triangulate", "star", POLYGON_SIZES, "vertices"),
    Line("triangulate a comb", "polygon", "triangulate", "comb", POLYGON_SIZES, "vertices"),
    Line("triangulate a straight line", "polygon", "triangulate", "line", POLYGON_SIZES,
         "vertices"),
]

# Told apart with any kind of colour vision (Okabe and Ito), and by their marks without colour.
STYLES = [("#0072B2", "o"), ("#D55E00", "s"), ("#009E73", "^"), ("#CC79A7", "D")]


def time_of(programs, line, size):
    times = []
    while len(times) < ROUNDS:
        done = measure.run(programs, line.program, line.work, line.survey, size,
                           LONGEST_RUN_S)
        times.append(done["cpu_s"])
        if done["cpu_s"] > ONCE_FROM_S:
            break
    return statistics.median(times)


def slope(sizes, times):
    """Returns the exponent of the power of the size that fits the times best."""
    x = [math.log(size) for size in sizes]
    y = [math.log(time) for time in times]
    mean_x, mean_y = statistics.mean(x), statistics.mean(y)
    return (sum((a - mean_x) * (b - mean_y) for a, b in zip(x, y)) /
            sum((a - mean_x) ** 2 for a in x))


def measure_line(programs, line, quick):
    sizes, times = [], []
    for size in line.sizes:
        if (quick and size > QUICK_LIMIT) or not measure.fits_into_memory(size):
            break
        try:
            times.append(time_of(programs, line, size))
        except measure.Failure as failure:
            print(f"{line.label:28} {size:>10} {line.unit:9} no result: {failure}", flush=True)
            continue
        sizes.append(size)
        print(f"{line.label:28} {size:>10} {line.unit:9} {times[-1]:10.5f} s", flush=True)
    if len(sizes) > 1:
        print(f"{line.label:28} grows with size to the power {slope(sizes, times):.2f}", flush=True)
    return sizes, times


def draw_in_step(axes):
    """Draws what grows in step with the size, from the middle of the panel on."""
    left, right = axes.get_xlim()
    low, high = axes.get_ylim()
    middle = math.sqrt(low * high) / math.sqrt(left * right)
    axes.loglog([left, right], [middle * left, middle * right], color="#888888", linestyle="--",
                linewidth=1, zorder=1, label="in step with the size")
    axes.set_xlim(left, right)
    axes.set_ylim(low, high)


def draw_panel(axes, programs, lines, quick, title, below):
    for line, (colour, mark) in zip(lines, STYLES):
        sizes, times = measure_line(programs, line, quick)
        if len(sizes) < 2:
            continue
        axes.loglog(sizes, times, color=colour, marker=mark, markersize=5,
                    label=f"{line.label}: slope {slope(sizes, times):.2f}")
    draw_in_step(axes)
    axes.set_title(title)
    axes.set_xlabel(below)
    axes.set_ylabel("seconds of processor time")
    axes.grid(True, which="major", color="#dddddd")
    axes.set_axisbelow(True)
    axes.legend(loc="upper center", bbox_to_anchor=(0.5, -0.12), ncol=2, frameon=False,
                fontsize=9, columnspacing=1.0)


def draw(programs, picture, quick):
    """Measures all lines and draws them into the file `picture`. With `quick`, small sizes only."""
    import matplotlib
    matplotlib.use("Agg")
    matplotlib.rcParams.update({"svg.hashsalt": "growth", "font.size": 10})
    from matplotlib import pyplot
    figure, (left, right) = pyplot.subplots(1, 2, figsize=(12, 5.6), constrained_layout=True)
    draw_panel(left, programs, SURFACES, quick, "Surfaces, uniform points", "points")
    draw_panel(right, programs, LINES, quick, "Lines and figures", "fragments, or vertices")
    figure.savefig(picture, metadata={"Date": None})
    print(f"Wrote {picture}")
