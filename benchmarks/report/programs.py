"""The benchmark programs, what is measured with them, and the table that shows it."""
import json
import os
import re
import subprocess
import sys
import tomllib
from pathlib import Path

BENCHMARKS = Path(__file__).resolve().parent.parent
TARGETS = tomllib.loads((BENCHMARKS / "targets.toml").read_text())
LIBRARIES = {"zintar": "ours", "raw": "raw limit", "std": "std", "sigc": "libsigc++",
             "boost": "Boost", "gobject": "GObject", "rttr": "RTTR", "cereal": "cereal"}


def select(kind, pattern):
    """The entries of a list of targets.toml whose names a regular expression matches."""
    selected = [entry for entry in TARGETS[kind] if re.search(pattern, entry["id"])]
    if not selected:
        sys.exit(f"Nothing is called {pattern}; the names are in benchmarks/targets.toml.")
    return selected


class Progress:
    """Shows on a terminal how far a long run is."""

    def __init__(self, steps):
        self._steps, self._done = steps, 0

    def step(self, title):
        self._done += 1
        if sys.stderr.isatty():
            print(f"\r{self._done:3} of {self._steps}  {title[:64]:64}", end="", file=sys.stderr,
                  flush=True)

    def end(self):
        if sys.stderr.isatty():
            print(f"\r{'':80}\r", end="", file=sys.stderr, flush=True)


def names_in(program):
    """The operations that a program measures."""
    listed = subprocess.run([program, "--benchmark_list_tests"], capture_output=True, text=True,
                            check=True).stdout
    return dict.fromkeys(line.split("/")[0] for line in listed.splitlines() if "/" in line)


def run(program, names, options, libraries="", environment=None):
    """What a program measured of the operations with these names: {name: {library: result}}.

    `libraries` is a regular expression.
    """
    command = [program, "--benchmark_format=json",
               f"--benchmark_filter=^({'|'.join(names)})/({libraries})", *options]
    done = subprocess.run(command, env=os.environ | (environment or {}), capture_output=True,
                          text=True)
    if done.returncode != 0:
        sys.exit(f"{program.name} failed:\n{done.stderr}")
    results = {}
    for result in json.loads(done.stdout)["benchmarks"] if done.stdout.strip() else []:
        if result.get("error_occurred"):
            sys.exit(f"{result['name']}: {result['error_message']}")
        name, library = result["run_name"].split("/")[:2]
        if result.get("aggregate_name", "median") == "median":
            results.setdefault(name, {})[library] = result
    return results


def run_timed(program, names):
    """Medians of several repetitions, which alternate between the libraries."""
    # Many short ones, so that whatever else runs for a while spoils few of them. The receivers take
    # up to seconds each.
    repetitions, seconds = (11, 0.03) if program.name == "bench_receivers" else (51, 0.01)
    return run(program, names,
               [f"--benchmark_repetitions={repetitions}", f"--benchmark_min_time={seconds}",
                "--benchmark_report_aggregates_only=true",
                "--benchmark_enable_random_interleaving=true"])


def run_counted(program, names, libraries=""):
    """The counters, from a run in which malloc counts."""
    return run(program, names, ["--benchmark_min_time=0.000001"], libraries, {
        "LD_PRELOAD": str(program.resolve().parent / "libbench_allocations.so"),
        # Or GLib keeps freed blocks in lists of its own, which malloc does not see.
        "G_SLICE": "always-malloc",
    })


def measured_libraries(results):
    """Those that measured any of the operations whose results these are."""
    results = list(results)
    return [library for library in LIBRARIES if any(library in own for own in results)]


def print_table(head, rows):
    widths = [max(len(row[i]) for row in [head, *rows]) for i in range(len(head))]

    def line(row):
        cells = [cell.rjust(width) for cell, width in zip(row[1:], widths[1:])]
        return f"| {row[0].ljust(widths[0])} | {' | '.join(cells)} |"

    rules = ["-" * (width + 1) + ":" for width in widths[1:]]
    print(line(head))
    print(f"|{'-' * (widths[0] + 2)}|{'|'.join(rules)}|")
    for row in rows:
        print(line(row))
