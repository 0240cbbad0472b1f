"""Runs the benchmark programs of a row in turn and compares what they report."""

import json
import os
import statistics
import subprocess
import sys
from pathlib import Path

# How far facts about the two results may differ, relative to the larger. A Delaunay triangulation of
# the plane has a convex hull; the surface within its world box lacks slivers there, of which lonely
# tracks have many.
TOLERANCES = {
    "triangles": 0.1, "found": 1e-3, "sides_crossed": 5e-3, "mean_height": 1e-4,
    "points": 1e-4, "mean_coordinate": 1e-12, "file_bytes": 1e-4, "keys": 0.0,
    "left": 0.02, "covered": 1e-3, "crossings": 0.03, "above": 1e-3, "below": 1e-3,
    "nodes": 0.0, "length": 0.03, "frames": 0.0,
}

# Facts that may be lower on our side, and no higher than the peer's by more than this share.
CEILINGS = {"rms_error": 0.0, "largest_error": 1.0}

BYTES_A_POINT = 500    # what a program may need, generously
LONGEST_RUN_S = 600.0  # one measurement
MEMORY_FOLDER = "/dev/shm"


class Failure(Exception):
    pass


def first_value(path, key):
    """Returns the value of the first line `key: value` of a file, or an empty text."""
    try:
        for line in Path(path).read_text().splitlines():
            name, _, value = line.partition(":")
            if name.strip() == key:
                return value.strip()
    except OSError:
        pass
    return ""


def fits_into_memory(size):
    kilobytes = first_value("/proc/meminfo", "MemAvailable").split()
    return not kilobytes or 1024 * int(kilobytes[0]) > BYTES_A_POINT * size


def environment():
    """Puts scratch files into memory, where there is such a folder: no disk takes part then."""
    folder = os.environ.get("TMPDIR") or (
        MEMORY_FOLDER if os.access(MEMORY_FOLDER, os.W_OK) else "/tmp")
    return os.environ | {"TMPDIR": folder}


def run(programs, program, work, survey, size, limit_s=LONGEST_RUN_S):
    command = [programs / f"bench_{program}", work, survey, str(size)]
    try:
        done = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True,
                              timeout=limit_s, env=environment())
    except (OSError, subprocess.SubprocessError) as failure:
        raise Failure(str(failure)) from failure
    return json.loads(done.stdout)


def facts_agree(ours, peer):
    agree = True
    for name in sorted(ours["facts"].keys() & peer["facts"].keys()):
        a, b = ours["facts"][name], peer["facts"][name]
        differ = (a > b * (1 + CEILINGS[name]) if name in CEILINGS else
                  abs(a - b) > TOLERANCES[name] * max(abs(a), abs(b)))
        if differ:
            print(f"  {name}: {a:.17g} here, {b:.17g} there", file=sys.stderr)
            agree = False
    return agree


def run_in_turn(row, programs, rounds):
    ours, peer = [], []
    for turn in range(rounds):
        sides = [(ours, row.program), (peer, f"{row.program}_{row.peer}")]
        for runs, program in sides if turn % 2 == 0 else reversed(sides):
            runs.append(run(programs, program, row.work, row.survey, row.size))
    return ours, peer


def median(values):
    return statistics.median(list(values))


def result_of(row, rounds, ours, peer, agree):
    """Returns a row of the table. `ours` and `peer` are the figures of the rounds."""
    ratio = median(ours) / median(peer)
    ratios = [a / b for a, b in zip(ours, peer)]
    times = row.clock != "bytes"
    return {
        "work": row.kind,
        "input": row.input,
        "peer": row.peer,
        "ours_s": median(ours) if times else None,
        "peer_s": median(peer) if times else None,
        "ratio": ratio,
        "spread": [min(ratios), max(ratios)],
        "target": row.target,
        "met": agree and (row.target is None or ratio <= row.target),
        "clock": row.clock,
        "rounds": rounds,
        "same_result": agree,
    }


def measure_times(row, programs, rounds):
    ours, peer = run_in_turn(row, programs, rounds)
    agree = all([facts_agree(a, b) for a, b in zip(ours, peer)])
    result = result_of(row, rounds, [one[row.clock] for one in ours],
                       [one[row.clock] for one in peer], agree)
    return result | {"ours_peak_bytes": median(one["peak_bytes"] for one in ours),
                     "peer_peak_bytes": median(one["peak_bytes"] for one in peer)}


def measure_memory(row, programs, rounds):
    runs = [run(programs, row.program, row.work, row.survey, row.size) for _ in range(rounds)]
    ours = [one["peak_bytes"] for one in runs]
    pools = [one["facts"]["pool_bytes"] for one in runs]
    return result_of(row, rounds, ours, pools, True) | {"ours_peak_bytes": median(ours),
                                                        "peer_peak_bytes": median(pools)}


def measure(row, programs, rounds):
    how = measure_memory if row.clock == "bytes" else measure_times
    return how(row, programs, rounds)


def unfinished(row, rounds):
    """A row that one of the sides could not bring to an end."""
    return {
        "work": row.kind, "input": row.input, "peer": row.peer, "ours_s": None, "peer_s": None,
        "ratio": None, "spread": None, "target": row.target, "met": False, "clock": row.clock,
        "rounds": rounds, "same_result": False, "ours_peak_bytes": None, "peer_peak_bytes": None,
    }
