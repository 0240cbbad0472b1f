"""The table for people, for a document and for programs."""

import os
import platform
import subprocess

from table.measure import first_value

PACKAGES = {"CGAL": "libcgal-dev", "VTK": "libvtk9-dev", "GDAL": "libgdal-dev",
            "fast_float": "libfast-float-dev"}

BEGIN = "<!-- The table: scripts/bench --into writes it. -->"
END = "<!-- End of the table. -->"

HEADER = (f"{'row':32} {'ours':>10} {'peer':>10} {'ratio':>6} {'(spread)':14} {'target':>6} {'met':4}"
          f" {'peak MiB: ours':>14} {'peer':>6}")


def seconds(value):
    return f"{value:.3f} s" if value >= 0.1 else f"{1e3 * value:.2f} ms"


def mebibytes(value):
    return f"{value / 2**20:.1f}"


def sides(result):
    if result["clock"] == "bytes":
        return tuple(f"{mebibytes(result[side])} MiB"
                     for side in ("ours_peak_bytes", "peer_peak_bytes"))
    return seconds(result["ours_s"]), seconds(result["peer_s"])


def spread(result):
    low, high = result["spread"]
    return f"{low:.2f}..{high:.2f}"


def target(result):
    return "" if result["target"] is None else f"{result['target']:.2f}"


def verdict(result):
    if not result["same_result"]:
        return "X"
    if result["target"] is None:
        return ""
    return "yes" if result["met"] else "no"


def line_of(row, result):
    ours, peer = sides(result)
    return (f"{row.name:32} {ours:>10} {peer:>10} {result['ratio']:6.2f} {f'({spread(result)})':14} "
            f"{target(result):>6} {verdict(result):4} {mebibytes(result['ours_peak_bytes']):>14} "
            f"{mebibytes(result['peer_peak_bytes']):>6}")


def duration(elapsed):
    return f"{elapsed / 60:.0f} min" if elapsed >= 120 else f"{elapsed:.0f} s"


def installed_version(package):
    query = ["dpkg-query", "-W", "-f", "${Version}", package]
    try:
        return subprocess.run(query, capture_output=True, text=True).stdout
    except OSError:
        return ""


def upstream(version):
    """Returns 9.1.0 for 9.1.0+really9.1.0+dfsg2-5: the version without what a packager adds."""
    return version.partition("+")[0].partition("-")[0]


def processor():
    model = first_value("/proc/cpuinfo", "model name") or platform.processor()
    return model.partition(" Processor")[0]


def machine():
    compiler = subprocess.run(["c++", "--version"], capture_output=True, text=True).stdout
    return {
        "processor": processor(),
        "cores": os.cpu_count(),
        "memory_gib": round(os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / 2**30, 1),
        "system": f"{platform.system()} {platform.machine()}",
        "compiler": compiler.partition("\n")[0],
        "load": os.getloadavg()[0],
    } | {name.lower(): installed_version(package) for name, package in PACKAGES.items()}


def markdown(results, rounds, elapsed, command):
    """Returns the machine, the command and the table as a piece of a document."""
    made = machine()
    peers = ", ".join(f"{name} {upstream(made[name.lower()])}" for name in PACKAGES)
    lines = [
        f"Made by `{command}` in {duration(elapsed)}, medians of {rounds}, on {made['processor']}, "
        f"{made['cores']} cores, {made['memory_gib']:.0f} GiB, {made['system']}; "
        f"{made['compiler']}; {peers}.",
        "",
        "| row | input | peer | ours | peer's | ratio | spread | target | met | peak MiB: ours "
        "| peer's |",
        "|---|---|---|--:|--:|--:|:-:|--:|:-:|--:|--:|",
    ]
    for result in results:
        name = f"| `{result['work']}` | {result['input']} | {result['peer']} |"
        if result["ratio"] is None:
            lines.append(f"{name} | | | | {target(result)} | no result | | |")
            continue
        ours, peer = sides(result)
        lines.append(f"{name} {ours} | {peer} | {result['ratio']:.2f} | {spread(result)} | "
                     f"{target(result)} | {verdict(result)} | "
                     f"{mebibytes(result['ours_peak_bytes'])} | "
                     f"{mebibytes(result['peer_peak_bytes'])} |")
    return "\n".join(lines) + "\n"


def put_between_marks(document, text):
    """Replaces what stands between BEGIN and END in the file `document`."""
    old = document.read_text()
    before, begin, rest = old.partition(BEGIN)
    _, end, after = rest.partition(END)
    if not begin or not end:
        raise ValueError(f"{document} has no line {BEGIN!r} with {END!r} after it")
    document.write_text(f"{before}{BEGIN}\n\n{text}\n{END}{after}")
