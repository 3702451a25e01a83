"""The table of what things hold of the heap."""
from programs import LIBRARIES, measured_libraries, print_table, run_counted, select


def held(result):
    """Heap bytes and the blocks they are in, and the bytes of the thing itself where it is none."""
    blocks = round(result["blocks"])
    in_place = f"{result['in_place']:.0f} B in place" if result["in_place"] else ""
    heap = f"{result['bytes']:.0f} B in {blocks}" if blocks else ""
    return " + ".join(part for part in (in_place, heap) if part)


def judged(thing, result):
    """What is asked, and whether it holds."""
    target = thing.get("target")
    if not target:
        return ["-", "report"]
    holds = round(result["bytes"]) <= target["bytes"]
    asked = f"{target['bytes']} B"
    if "blocks" in target:
        holds = holds and round(result["blocks"]) <= target["blocks"]
        asked += f" in {target['blocks']}"
    return [asked, "ok" if holds else "over"]


def report(build, pattern):
    things = select("memory", pattern)
    results = {}
    for thing in things:  # each in a process of its own, where no other has left its blocks
        results |= run_counted(build / "bench_memory", [thing["id"]])
    libraries = measured_libraries(results.values())
    print_table(["thing", *(LIBRARIES[library] for library in libraries), "target", "verdict"],
                [[thing["title"],
                  *(held(results[thing["id"]][library])
                    if library in results[thing["id"]] else "-" for library in libraries),
                  *judged(thing, results[thing["id"]]["zintar"])] for thing in things])
