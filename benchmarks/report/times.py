"""The table of times."""
import os
import sys

from programs import (LIBRARIES, TARGETS, Progress, measured_libraries, names_in, print_table,
                      run_counted, run_timed, select)

OPERATIONS = {operation["id"]: operation for operation in TARGETS["operation"]}
NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def with_compared(operations):
    """The names of the operations and of those that their targets compare them with."""
    names = {operation["id"] for operation in operations}
    return names.union(target["like"] for operation in operations
                       for target in operation.get("target", []) if "like" in target)


def measure(programs, names):
    """{name: {library: nanoseconds}} and {name: our allocations}, of one operation."""
    times, allocations = {}, {}
    progress = Progress(len(names))
    for program in programs:
        for name in (name for name in names_in(program) if name in names):
            progress.step(OPERATIONS[name]["title"])
            per = OPERATIONS[name].get("per", 1)
            times[name] = {
                library: result["cpu_time"] * NANOSECONDS[result["time_unit"]] / per
                for library, result in run_timed(program, [name])[name].items()}
            counted = run_counted(program, [name], "zintar")[name]["zintar"]
            allocations[name] = counted["allocations"] / per
    progress.end()
    return times, allocations


def written(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def judge(target, name, times, allocations):
    """What was reached, what is asked, and whether it holds; None when it cannot be told."""
    ours = times[name]["zintar"]
    if "allocations" in target:
        reached, asked = allocations[name], target["allocations"]
        return (f"{reached:g} allocations", f"{asked} allocations", reached <= asked)
    if "ns" in target:
        return written(ours), f"{target['ns']:g} ns", ours <= target["ns"]
    like, library = target.get("like", name), target.get("than", "zintar")
    other = LIBRARIES[library] + ("" if like == name else f" {OPERATIONS[like]['short']}")
    asked = f"{other} + {target['over']:g} ns" if "over" in target else f"{target['ratio']:g} {other}"
    time = times[like].get(library)
    if time is None:
        return "-", asked, None
    if "over" in target:
        return f"{other} {ours - time:+.2f} ns", asked, ours - time <= target["over"]
    return f"{ours / time:.2f} {other}", asked, ours / time <= target["ratio"]


def verdict(judgements):
    holds = [judgement[2] for judgement in judgements]
    if not holds:
        return "report"
    if False in holds:
        return "over"
    return "not told" if None in holds else "ok"


def row(operation, libraries, times, allocations):
    name = operation["id"]
    judgements = [judge(target, name, times, allocations)
                  for target in operation.get("target", [])]
    return [
        operation["title"],
        *(written(times[name][lib]) if lib in times[name] else "-" for lib in libraries),
        f"{round(allocations[name], 2):g}",
        "; ".join(judgement[0] for judgement in judgements) or "-",
        "; ".join(judgement[1] for judgement in judgements) or "-",
        verdict(judgements),
    ]


def print_raw_limits(operations):
    titles = {}
    for operation in operations:
        if "raw" in operation:
            titles.setdefault(operation["raw"], []).append(operation["title"])
    print("\nThe raw limit is\n")
    for raw, rows in titles.items():
        print(f"- {raw}, for: {'; '.join(rows)}")


def warn_if_busy():
    load = os.getloadavg()[0]
    if load > 0.5:
        print(f"The machine was busy just now (load {load:.1f}). While other work runs even ratios "
              "shift: measure again when it is idle.", file=sys.stderr)


def report(build, pattern):
    """Prints the table, and gives the operations in it and what each took in each library."""
    warn_if_busy()
    programs = sorted(path for path in build.glob("bench_*")
                      if path.is_file() and path.name != "bench_memory")
    shown = select("operation", pattern)
    times, allocations = measure(programs, with_compared(shown))
    libraries = measured_libraries(times[operation["id"]] for operation in shown)
    print_table(["operation", *(LIBRARIES[library] for library in libraries), "allocations",
                 "reached", "target", "verdict"],
                [row(operation, libraries, times, allocations) for operation in shown])
    print_raw_limits(shown)
    return shown, times
