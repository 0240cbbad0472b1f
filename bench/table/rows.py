"""The rows of the table: what is compared with what, on which input, and the ratio to reach."""

import os
from dataclasses import dataclass
from pathlib import Path

SURVEYS = ["uniform", "clusters", "swaths", "jittered_grid", "exact_grid", "single_beam",
           "two_clusters"]

# Real surveys are shown from so many points on. Below, a run is over before a clock can tell.
LEAST_REAL_POINTS = 20_000


@dataclass(frozen=True)
class Row:
    kind: str
    program: str          # ours is bench_<program>
    work: str             # of both programs
    peer: str             # the peer's program is bench_<program>_<peer>
    survey: str
    size: int
    target: float | None  # the ratio to reach, or better. None: shown for interest
    clock: str            # cpu_s or wall_s, or bytes

    @property
    def input(self):
        return f"{self.survey.removesuffix('.xyz')} {short(self.size)}"

    @property
    def name(self):
        return f"{self.kind}/{self.input.replace(' ', '/')}"


def short(size):
    return f"{size // 1_000_000}M" if size >= 1_000_000 else f"{size // 1000}k"


def real_surveys():
    """Returns (file name, number of points) of the surveys in the folder $QELTIN_SURVEYS."""
    folder = os.environ.get("QELTIN_SURVEYS")
    if not folder:
        return []
    counts = [(path.name, path.read_bytes().count(b"\n")) for path in Path(folder).glob("*.xyz")]
    return sorted((name, count) for name, count in counts if count >= LEAST_REAL_POINTS)


def all_rows():
    rows = []

    def add(kind, program, work, peer, surveys, sizes, target, clock="cpu_s"):
        rows.extend(Row(kind, program, work, peer, survey, size, target, clock)
                    for size in sizes for survey in surveys)

    some, many, most = [100_000], [1_000_000], [10_000_000]
    usual = some + many

    add("build", "build_surface", "triangulate", "cgal", SURVEYS, usual, 0.6)
    add("build", "build_surface", "triangulate", "cgal", ["uniform", "swaths"], most, 0.5)
    add("create", "build_surface", "create", "cgal", ["swaths"], usual, 1.2)
    add("create", "build_surface", "create", "cgal", ["exact_grid"], usual, 1.5)
    add("create", "build_surface", "create", "cgal", ["single_beam"], some, None)
    add("memory", "build_surface", "triangulate", "pools", ["uniform", "swaths"], usual, 1.1,
        "bytes")
    add("heights_random", "locate", "random", "cgal", ["uniform"], usual, 0.25)
    add("heights_raster", "locate", "raster", "cgal", ["uniform"], usual, 0.8)
    add("grid", "grid", "grid", "cgal", ["uniform"], usual, 0.6)
    add("points_to_grid", "grid", "points", "gdal", ["uniform"], some, None)
    add("contours", "contours", "levels", "vtk", ["uniform"], usual, 0.25)
    add("isolines", "isolines", "levels", "vtk", ["uniform"], usual, 0.15)
    add("profiles", "profiles", "trace", "cgal", ["uniform"], usual, 0.5)
    add("volume", "volumes", "volume", "scan", ["uniform"], usual, 1.2)
    add("decimate", "decimate", "thin", "vtk", ["uniform", "swaths"], usual, 0.3)
    add("decimate_runs", "decimate", "runs", "vtk", ["uniform"], some, None)
    add("point_map", "point_map", "fill", "tree", ["uniform"], usual, 0.5)
    add("xyz_read", "xyz_text", "read", "fast_float", ["uniform", "single_beam"], usual, 1.4)
    add("xyz_write", "xyz_text", "write", "to_chars", ["uniform"], usual, None)
    add("native_load", "native_file", "load", "copy", ["uniform"], usual, 3.0)
    add("native_save", "native_file", "save", "copy", ["uniform"], usual, 2.0)
    add("trimble_load", "native_file", "load_trimble", "copy", ["uniform"], usual, None)
    add("frames", "frames", "draw", "immediate", ["uniform"], usual, None, "wall_s")
    for survey, size in real_surveys():
        for kind, program, work, peer in [("build", "build_surface", "triangulate", "cgal"),
                                          ("create", "build_surface", "create", "cgal"),
                                          ("heights_random", "locate", "random", "cgal"),
                                          ("contours", "contours", "levels", "vtk")]:
            add(kind, program, work, peer, [survey], [size], None)
    return rows
