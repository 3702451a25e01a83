"""Measures what the library costs, beside its peers, and prints one table.

What it prints is Markdown.
"""
import argparse
from pathlib import Path

import buildcosts
import memory
import times


def main():
    parser = argparse.ArgumentParser(prog="bench", description=__doc__)
    parser.add_argument("build", type=Path, help=argparse.SUPPRESS)
    parser.add_argument("filter", nargs="?", default=".*",
                        help="a regular expression: only the operations whose names in "
                             "benchmarks/targets.toml it matches")
    kind = parser.add_mutually_exclusive_group()
    kind.add_argument("--memory", action="store_true", help="heap bytes and blocks instead")
    kind.add_argument("--build", dest="building", action="store_true",
                      help="what including and declaring costs the compiler instead")
    arguments = parser.parse_args()
    if arguments.building:
        buildcosts.report()
    elif arguments.memory:
        memory.report(arguments.build / "benchmarks", arguments.filter)
    else:
        times.report(arguments.build / "benchmarks", arguments.filter)


if __name__ == "__main__":
    main()
