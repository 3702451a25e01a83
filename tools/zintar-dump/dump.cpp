#include "dump.h"

#include "contents.h"
#include "text.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <ostream>
#include <utility>

namespace dump
{
namespace
{
constexpr const char* standardInput = "-";

struct CloseFile {
    void operator()(std::FILE* file) const
    {
        if (file != stdin)
            std::fclose(file);
    }
};

/// All bytes of the file; nothing, with the reason in `errno`, when it cannot be read.
std::optional<std::string> readFile(const std::string& name)
{
    std::unique_ptr<std::FILE, CloseFile> file(
        name == standardInput ? stdin : std::fopen(name.c_str(), "rb"));
    if (!file)
        return std::nullopt;
    std::string bytes;
    char piece[1 << 16];
    while (std::size_t count = std::fread(piece, 1, sizeof piece, file.get()))
        bytes.append(piece, count);
    if (std::ferror(file.get()))
        return std::nullopt;
    return bytes;
}

std::string shownFile(const std::string& name)
{
    return name == standardInput ? "standard input" : escaped(name);
}

std::vector<const ClassRecord*> classesOf(const std::vector<Contents>& files)
{
    std::vector<const ClassRecord*> classes;
    for (const Contents& contents : files)
        for (const ClassRecord& record : contents.classes)
            classes.push_back(&record);
    return classes;
}

void print(Form form, std::ostream& out, const std::vector<Contents>& files)
{
    Hierarchy hierarchy(classesOf(files));
    switch (form) {
    case Form::Listing:
        return printListing(out, files, hierarchy);
    case Form::Json:
        return printJson(out, files, hierarchy);
    case Form::Dot:
        return printDot(out, files, hierarchy);
    }
}

/// @return whether there was any
bool tellDamages(std::ostream& errors, const std::vector<Contents>& files)
{
    bool any = false;
    for (const Contents& contents : files)
        for (const Damage& damage : contents.damages) {
            errors << "zintar-dump: " << shownFile(contents.file) << ": byte " << damage.offset
                   << ": " << damage.what << "\n";
            any = true;
        }
    return any;
}
} // namespace

int dump(const Options& options, std::ostream& out, std::ostream& errors)
{
    std::vector<std::string> names = options.files;
    if (names.empty())
        names.emplace_back(standardInput);

    std::vector<Contents> files;
    int code = sound;
    for (const std::string& name : names) {
        std::optional<std::string> bytes = readFile(name);
        if (!bytes) {
            errors << "zintar-dump: " << shownFile(name) << ": " << std::strerror(errno) << "\n";
            code = failed;
            continue;
        }
        files.push_back(
            readContents(shownFile(name), std::move(*bytes), options.classCount, options.from));
    }
    if (files.empty())
        return code;

    print(options.form, out, files);
    if (!out.flush()) {
        errors << "zintar-dump: the output could not be written\n";
        code = failed;
    }
    bool anyDamage = tellDamages(errors, files);
    return code == sound && anyDamage ? damaged : code;
}
} // namespace dump
