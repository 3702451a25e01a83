"""The tables of what the compiler pays."""
import resource
import statistics
import subprocess
import sys

from programs import BENCHMARKS, print_table

INCLUDE = BENCHMARKS.parent / "include"
COMPILER = ["g++", "-std=c++20", f"-I{INCLUDE}"]
REPETITIONS = 3
CLASSES = 50
# What includes cost elsewhere; those that are not installed are left out.
OTHER_HEADERS = ["string", "iostream", "functional", "boost/signals2.hpp", "rttr/registration",
                 "cereal/archives/binary.hpp"]


def compile_source(source, *options):
    """The output of the compiler, or None when it refuses."""
    done = subprocess.run([*COMPILER, *options, "-xc++", "-"], input=source, capture_output=True,
                          text=True)
    return done.stdout if done.returncode == 0 else None


def processor_seconds():
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def seconds(source, *options, repetitions=REPETITIONS):
    """The processor time of compiling, the median of several runs."""
    taken = []
    for _ in range(repetitions):
        start = processor_seconds()
        if compile_source(source, *options) is None:
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


def classes_row(title, header, make):
    source = "\n".join([f"#include <{header}>", "#include <string>",
                        *(line for i in range(CLASSES) for line in make(i)), ""])
    taken = seconds(source, "-O2", "-S", "-o", "/dev/null", repetitions=1)
    return [title, f"{taken:.2f} s"]


def report():
    headers = [f"zintar/{path.name}" for path in sorted((INCLUDE / "zintar").glob("*.h"))]
    rows = [header_row(header) for header in headers + OTHER_HEADERS]
    print_table(["header", "preprocessed lines", "time"], [row for row in rows if row])
    print()
    rows = [classes_row(f"{CLASSES} declared classes of 10 members", "zintar/zintar.h",
                        declared_class),
            classes_row("the same classes undeclared", "zintar/zintar.h", plain_class),
            classes_row("the header alone", "zintar/zintar.h", lambda number: [])]
    if compile_source("#include <rttr/registration>\n", "-E") is not None:
        rows.append(classes_row("the same classes registered with RTTR", "rttr/registration",
                                rttr_class))
    print_table(["compiled with -O2", "time"], rows)
