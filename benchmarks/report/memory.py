"""The table of what things hold of the heap."""
from programs import LIBRARIES, measured_libraries, print_table, run_counted, select


def held(result):
    """Heap bytes and the blocks they are in, and the bytes of the thing itself where it is none."""
    blocks = round(result["blocks"])
    in_place = f"{result['in_place']:.0f} B in place" if result["in_place"] else ""
    heap = f"{result['bytes']:.0f} B in {blocks}" if blocks else ""
    return " + ".join(part for part in (in_place, heap) if part)


def report(build, pattern):
    things = select("memory", pattern)
    results = run_counted(build / "bench_memory", [thing["id"] for thing in things])
    libraries = measured_libraries(results.values())
    print_table(["thing", *(LIBRARIES[library] for library in libraries)],
                [[thing["title"], *(held(results[thing["id"]][library])
                                    if library in results[thing["id"]] else "-"
                                    for library in libraries)] for thing in things])
