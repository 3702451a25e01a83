"""Measures what the library costs, beside its peers, and prints Markdown tables.

Without an option it is the time of each operation, against its target.
"""
import argparse
import signal
from pathlib import Path

import buildcosts
import memory
import page
import times


def main():
    signal.signal(signal.SIGPIPE, signal.SIG_DFL)  # `bench | head` is no mistake
    parser = argparse.ArgumentParser(prog="bench", description=__doc__)
    parser.add_argument("--programs", type=Path, required=True, help=argparse.SUPPRESS)
    parser.add_argument("filter", nargs="?", default=".*",
                        help="a regular expression: only the operations whose names in "
                             "benchmarks/targets.toml it matches")
    kind = parser.add_mutually_exclusive_group()
    kind.add_argument("--memory", action="store_true", help="heap bytes and blocks")
    kind.add_argument("--build", action="store_true", help="what the compiler pays")
    kind.add_argument("--page", action="store_true", help="put all of it into docs/costs.md")
    arguments = parser.parse_args()
    reports = {
        "times": lambda: times.report(arguments.programs, arguments.filter),
        "memory": lambda: memory.report(arguments.programs, arguments.filter),
        "build": buildcosts.report,
    }
    if arguments.page:
        page.refresh(reports)
    else:
        reports["memory" if arguments.memory else "build" if arguments.build else "times"]()


if __name__ == "__main__":
    main()
