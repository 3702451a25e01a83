"""The page of the guide that shows the tables: docs/costs.md."""
import contextlib
import io
import re
import subprocess
from pathlib import Path

import chart
from programs import BENCHMARKS

PAGE = BENCHMARKS.parent / "docs" / "costs.md"


def output_of(*command):
    done = subprocess.run(command, capture_output=True, text=True, cwd=BENCHMARKS)
    return done.stdout.strip() if done.returncode == 0 else "unknown"


def print_machine():
    processors = re.findall(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    machine = f"{len(processors)} x {processors[0]}" if processors else "an unknown processor"
    commit = output_of("git", "describe", "--always", "--dirty", "--exclude=*")
    print(f"Measured at commit {commit} on {machine}, with GCC "
          f"{output_of('g++', '-dumpfullversion')}.")


def refresh(reports):
    """Puts what each report prints between the two marks of its name, and draws the picture."""
    text = PAGE.read_text()
    for name, report in {"machine": print_machine, **reports}.items():
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            measured = report()
        if name == "times":
            chart.draw(*measured)
        begin, end = f"<!-- {name} -->\n", f"<!-- end of {name} -->"
        before, rest = text.split(begin)
        after = rest.split(end)[1]
        text = f"{before}{begin}\n{printed.getvalue().strip()}\n\n{end}{after}"
    PAGE.write_text(text)
    print(f"Wrote {PAGE.name}")
