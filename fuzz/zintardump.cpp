#include "contents.h"
#include "dump.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Shows whatever bytes with all that zintar-dump has: as classes, as variants, as both, and as two
// files, in each form. What is printed can be read by its readers, and is not much longer than
// what was given.

namespace
{
using Files = std::vector<dump::Contents>;

constexpr std::size_t classesFirst = std::numeric_limits<std::size_t>::max();
constexpr std::size_t variantsOnly = 0;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// Records lie one behind the other, from the first byte to the last or to the damage.
void checkRecords(const dump::Contents& contents)
{
    std::size_t end = 0;
    auto follows = [&end](const auto& record) {
        require(record.offset >= end && record.end > record.offset);
        end = record.end;
    };
    std::for_each(contents.classes.begin(), contents.classes.end(), follows);
    std::for_each(contents.variants.begin(), contents.variants.end(), follows);
    require(end <= contents.size);
    for (const dump::Damage& damage : contents.damages)
        require(damage.offset <= contents.size && !damage.what.empty());
}

/// Line by line, and nothing in it that a terminal would act on.
void checkLines(std::string_view text)
{
    require(text.empty() || text.back() == '\n');
    require(std::none_of(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) < ' ' && c != '\n') || c == '\x7f';
    }));
    require(text.find("\u202e") == std::string_view::npos); // turns the line round
}

void checkForm(const Files& files, dump::Form form, std::string_view text)
{
    checkLines(text);
    if (form == dump::Form::Json)
        require(nlohmann::json::accept(text));
    if (form == dump::Form::Dot)
        require(text.starts_with("digraph classes {\n") && text.ends_with("\n}\n"));

    std::size_t size = 0;
    for (const dump::Contents& contents : files)
        size += contents.size;
    require(text.size() <= 64 * size + 1024);
}

void show(const Files& files)
{
    std::size_t damages = 0;
    for (const dump::Contents& contents : files) {
        checkRecords(contents);
        damages += contents.damages.size();
    }
    for (dump::Form form : {dump::Form::Listing, dump::Form::Json, dump::Form::Dot}) {
        std::ostringstream out;
        std::ostringstream errors;
        int code = dump::show(files, form, out, errors);
        require(code == (damages > 0 ? dump::damaged : dump::sound));
        checkForm(files, form, out.view());
        checkLines(errors.view());
        auto lines = std::count(errors.view().begin(), errors.view().end(), '\n');
        require(static_cast<std::size_t>(lines) == damages);
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(data, data + size);
    for (std::size_t classCount : {classesFirst, variantsOnly, std::size_t{1}})
        show({dump::readContents("all", bytes, classCount, 0)});
    show({dump::readContents("half", bytes.substr(0, size / 2), classesFirst, 0),
          dump::readContents("rest", bytes, classesFirst, size / 2)});
    return 0;
}
