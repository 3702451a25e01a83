"""The tables of what the compiler pays."""
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile

from programs import BENCHMARKS, TARGETS, print_table

INCLUDE = BENCHMARKS.parent / "include"
OPTIONS = ["-std=c++20", f"-I{INCLUDE}"]
REPETITIONS = 3
CLASSES = 50
# What includes cost elsewhere; those that are not installed are left out.
OTHER_HEADERS = ["string", "iostream", "functional", "boost/signals2.hpp", "rttr/registration",
                 "cereal/archives/binary.hpp"]


def compile_source(source, *options, compiler="g++"):
    """The output of the compiler, or None when it refuses or is not there."""
    if not shutil.which(compiler):
        return None
    done = subprocess.run([compiler, *OPTIONS, *options, "-xc++", "-"], input=source,
                          capture_output=True, text=True)
    return done.stdout if done.returncode == 0 else None


def processor_seconds():
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def seconds(source, *options, compiler="g++", repetitions=REPETITIONS):
    """The processor time of compiling, the median of several runs."""
    taken = []
    for _ in range(repetitions):
        start = processor_seconds()
        if compile_source(source, *options, compiler=compiler) is None:
            sys.exit("What the benchmark generated does not compile.")
        taken.append(processor_seconds() - start)
    return statistics.median(taken)


def header_row(header):
    source = f"#include <{header}>\n"
    preprocessed = compile_source(source, "-E")
    if preprocessed is None:
        return None
    return [f"`<{header}>`", f"{len(preprocessed.splitlines())}",
            f"{seconds(source, '-fsyntax-only'):.2f} s"]


# Ten members: four properties, four methods, two events.
PROPERTIES, METHODS, EVENTS = range(4), range(4), range(2)


def members(raise_event):
    lines = []
    for i in PROPERTIES:
        lines += [f"    int value{i}() const {{ return m_value{i}; }}",
                  f"    void setValue{i}(int value) {{ m_value{i} = value; }}"]
    lines += [f"    double method{i}(int a, const std::string& b) {{ return a + double(b.size()); }}"
              for i in METHODS]
    lines += [f"    void happened{i}(int value) {{ {raise_event(i)} }}" for i in EVENTS]
    lines += ["private:", *(f"    int m_value{i} = 0;" for i in PROPERTIES)]
    return lines


def declared_class(number):
    listed = [f"zt::property<&Self::value{i}, &Self::setValue{i}>()" for i in PROPERTIES]
    listed += [f"zt::method<&Self::method{i}>()" for i in METHODS]
    listed += [f"zt::event<&Self::happened{i}>()" for i in EVENTS]
    return [f"class Class{number} : public ZTBase", "{", f"    ZT_OBJECT(Class{number}, ZTBase)",
            "public:", *members(lambda i: f"sendEvent<&Self::happened{i}>(value);"),
            "    static constexpr auto members()", "    {",
            f"        return zt::members({', '.join(listed)});", "    }", "};",
            f"ZT_CLASS(Class{number})"]


def plain_class(number):
    return [f"class Class{number} : public ZTBase", "{", "public:",
            *members(lambda i: "(void)value;"), "};"]


def rttr_class(number):
    name = f"Class{number}"
    listed = [f'.property("value{i}", &{name}::value{i}, &{name}::setValue{i})' for i in PROPERTIES]
    listed += [f'.method("method{i}", &{name}::method{i})' for i in METHODS]
    listed += [f'.method("happened{i}", &{name}::happened{i})' for i in EVENTS]
    return [f"class {name}", "{", "    RTTR_ENABLE()", "public:", f"    virtual ~{name}() {{}}",
            *members(lambda i: "(void)value;"), "};",
            f"void list{number}() {{ rttr::registration::class_<{name}>(\"{name}\")",
            *listed, "; }"]


def file_of(header, make, count=CLASSES):
    return "\n".join([f"#include <{header}>", "#include <string>",
                      *(line for i in range(count) for line in make(i)), ""])


def class_of(members):
    """One class with that many members, all of them properties."""
    lines = ["class Long : public ZTBase", "{", "    ZT_OBJECT(Long, ZTBase)", "public:"]
    for i in range(members):
        lines += [f"    int value{i}() const {{ return {i}; }}", f"    void setValue{i}(int) {{}}"]
    listed = ", ".join(f"zt::property<&Self::value{i}, &Self::setValue{i}>()"
                       for i in range(members))
    return "\n".join(["#include <zintar/zintar.h>", *lines, "    static constexpr auto members()",
                      "    {", f"        return zt::members({listed});", "    }", "};",
                      "ZT_CLASS(Long)", ""])


def bytes_of_classes():
    """The bytes that one declared class adds to a program."""
    def size(count):
        with tempfile.NamedTemporaryFile(suffix=".o") as made:
            compile_source(file_of("zintar/zintar.h", declared_class, count), "-O2", "-c", "-o",
                           made.name)
            told = subprocess.run(["size", made.name], capture_output=True, text=True, check=True)
        return sum(int(number) for number in told.stdout.splitlines()[1].split()[:3])
    return (size(11) - size(1)) / 10


def optimised(source, compiler="g++"):
    if compile_source("", "-E", compiler=compiler) is None:
        return None
    return seconds(source, "-O2", "-S", "-o", "/dev/null", compiler=compiler, repetitions=1)


def checked(source):
    return seconds(source, "-fsyntax-only", repetitions=7)


def costs():
    """{id: seconds or bytes}, of the entries of targets.toml; None for what is not installed."""
    header = "zintar/zintar.h"
    has_rttr = compile_source("#include <rttr/registration>\n", "-E") is not None
    included = lambda number: declared_class(number)[:-1]  # without the ZT_CLASS at the end
    return {
        "classes": optimised(file_of(header, declared_class)),
        "classes_rttr": optimised(file_of("rttr/registration", rttr_class)) if has_rttr else None,
        "classes_plain": optimised(file_of(header, plain_class)),
        "classes_included": optimised(file_of(header, included)),
        "header": optimised(file_of(header, declared_class, 0)),
        "base": checked("#include <zintar/base.h>\n"),
        "nothing": checked("\n"),
        "long_250": optimised(class_of(250)),
        "long_500": optimised(class_of(500)),
        "long_250_clang": optimised(class_of(250), "clang++"),
        "long_500_clang": optimised(class_of(500), "clang++"),
        "class_bytes": bytes_of_classes(),
    }


def written(entry, cost):
    if cost is None:
        return "-"
    return f"{cost:.0f} B" if entry.get("unit") == "bytes" else f"{cost:.2f} s"


def judged(entry, measured):
    """What was reached, what is asked, and the verdict."""
    target, cost = entry.get("target"), measured[entry["id"]]
    if not target:
        return "-", "-", "report"
    other, title = measured[target["like"]], TITLES[target["like"]]
    if cost is None or other is None:
        return "-", title, "not told"
    if "ratio" in target:
        reached, asked = cost / other, target["ratio"]
        return f"{reached:.2f} of it", f"{asked:g} of {title}", "ok" if reached <= asked else "over"
    reached, asked = cost - other, target["over"]
    return f"{reached:+.2f} s", f"{title} + {asked:g} s", "ok" if reached <= asked else "over"


TITLES = {entry["id"]: entry.get("short", entry["title"]) for entry in TARGETS["build"]}


def report():
    headers = [f"zintar/{path.name}" for path in sorted((INCLUDE / "zintar").glob("*.h"))]
    rows = [header_row(header) for header in headers + OTHER_HEADERS]
    print_table(["header", "preprocessed lines", "time"], [row for row in rows if row])
    print()
    measured = costs()
    print_table(["what is compiled", "cost", "reached", "target", "verdict"],
                [[entry["title"], written(entry, measured[entry["id"]]), *judged(entry, measured)]
                 for entry in TARGETS["build"]])
