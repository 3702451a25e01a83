#include "dump.h"

#include <CLI/CLI.hpp>

#include <cstddef>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <string>

namespace
{
constexpr const char* summary =
    "Shows what a byte stream of the Zintar library holds: classes, or values.";

constexpr const char* more = R"(Examples:
  zintar-dump plugin.classes
  zintar-dump --dot base.classes plugin.classes | dot -Tsvg -o classes.svg
  zintar-dump --variants --json < settings.bin | jq '.files[].variants[].value'

A stream does not say whether it holds classes or variants; it is taken for classes
unless an option tells otherwise. A class without name, super class and members ends
them, and variants follow. A variant can be shown when its type is one of the
library's own. A super class may stand in any of the files, whatever their order.

In text, what a terminal would not show as it is stands escaped. In JSON a number that
is none of JSON's is one of the texts "NaN", "Infinity" and "-Infinity".

The byte at which a file stops making sense is told on standard error, and what was
read before it is shown.

Exit code: 0 when all was sound, 1 when anything was damaged, 2 when the command
line was wrong or a file could not be read.)";

/// Leaves out what the descriptions of the options say already.
class Formatter : public CLI::Formatter
{
public:
    Formatter()
    {
        label("Positionals", "Arguments");
        column_width(20);
    }
    std::string make_usage(const CLI::App*, std::string) const override
    {
        return "\nUsage: zintar-dump [OPTION...] [FILE...]\n";
    }
    std::string make_option_opts(const CLI::Option* option) const override
    {
        return option->get_type_size() > 0 ? " " + option->get_type_name() : "";
    }
};

std::string oneLine(const CLI::App*, const CLI::Error& error)
{
    return std::string("zintar-dump: ") + error.what() + " (see zintar-dump --help)\n";
}

/// What is wrong with it; nothing when it may be one.
std::string faultOfNumber(const std::string& text)
{
    bool beginsWithDigit = !text.empty() && text[0] >= '0' && text[0] <= '9';
    return beginsWithDigit ? "" : text + " is no number from 0 on";
}

CLI::Option* addNumber(CLI::App& app, const std::string& name, std::size_t& number,
                       const std::string& description)
{
    return app.add_option(name, number, description)->type_name("N")->check(faultOfNumber);
}

void describe(CLI::App& app, dump::Options& options)
{
    app.formatter(std::make_shared<Formatter>());
    app.footer(more);
    app.failure_message(oneLine);
    app.set_help_flag("-h,--help", "Print this and exit");
    app.set_version_flag("--version", "zintar-dump " ZINTAR_DUMP_VERSION,
                         "Print the version and exit");
    app.add_option("FILE", options.files, "What to read; standard input when absent or -")
        ->type_name("...");

    auto* json = app.add_flag_callback(
        "--json", [&options] { options.form = dump::Form::Json; }, "Print JSON");
    auto* dot = app.add_flag_callback(
        "--dot", [&options] { options.form = dump::Form::Dot; },
        "Print a class diagram for Graphviz");
    auto* variants = app.add_flag_callback(
        "--variants", [&options] { options.classCount = 0; },
        "Each file holds variants rather than classes");
    addNumber(app, "--classes", options.classCount, "Each file holds N classes and then variants")
        ->excludes(variants);
    addNumber(app, "--from", options.from, "Begin at byte N of each file; the first is byte 0");
    addNumber(app, "--skip", options.skip, "Leave out the first N classes and variants of a file");
    addNumber(app, "--count", options.count, "Show no more than N classes and variants of a file");
    addNumber(app, "--limit", options.limit,
              "Refuse a file of more than N bytes, or than 256 MiB when absent");
    dot->excludes(json)->excludes(variants);
}
} // namespace

int main(int argc, char** argv)
{
    dump::Options options;
    CLI::App app{summary, "zintar-dump"};
    describe(app, options);
    try {
        app.parse(argc, argv);
        return dump::dump(options, std::cout, std::cerr);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? dump::sound : dump::failed;
    } catch (const std::bad_alloc&) {
        std::cerr << "zintar-dump: there is not enough memory for what was read\n";
        return dump::failed;
    } catch (const std::exception& error) {
        std::cerr << "zintar-dump: " << error.what() << "\n";
        return dump::failed;
    }
}
