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

/// All bytes of the file; nothing, with the reason, when it cannot be read or is too long. One that
/// never ends is too long as well.
std::optional<std::string> readFile(const std::string& name, std::size_t limit, std::string& reason)
{
    std::unique_ptr<std::FILE, CloseFile> file(
        name == standardInput ? stdin : std::fopen(name.c_str(), "rb"));
    if (!file) {
        reason = std::strerror(errno);
        return std::nullopt;
    }
    std::string bytes;
    char piece[1 << 16];
    while (std::size_t count = std::fread(piece, 1, sizeof piece, file.get())) {
        if (count > limit - bytes.size()) {
            reason = "more than " + std::to_string(limit) + " bytes; --limit allows for more";
            return std::nullopt;
        }
        bytes.append(piece, count);
    }
    if (std::ferror(file.get())) {
        reason = std::strerror(errno);
        return std::nullopt;
    }
    return bytes;
}

/// What a file is called in all that is printed.
std::string titleOf(const std::string& name)
{
    return name == standardInput ? "standard input" : name;
}

Contents contentsOf(const std::string& name, std::string bytes, const Options& options)
{
    Contents contents =
        readContents(titleOf(name), std::move(bytes), options.classCount, options.from);
    contents.skip = options.skip;
    contents.count = options.count;
    return contents;
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
            errors << "zintar-dump: " << shownName(contents.file) << ": byte " << damage.offset
                   << ": " << damage.what << "\n";
            any = true;
        }
    return any;
}
} // namespace

int show(const std::vector<Contents>& files, Form form, std::ostream& out, std::ostream& errors)
{
    print(form, out, files);
    bool isWritten = static_cast<bool>(out.flush());
    if (!isWritten)
        errors << "zintar-dump: the output could not be written\n";
    bool anyDamage = tellDamages(errors, files);
    return !isWritten ? failed : anyDamage ? damaged : sound;
}

int dump(const Options& options, std::ostream& out, std::ostream& errors)
{
    std::vector<std::string> names = options.files;
    if (names.empty())
        names.emplace_back(standardInput);

    std::vector<Contents> files;
    bool allRead = true;
    for (const std::string& name : names) {
        std::string reason;
        std::optional<std::string> bytes = readFile(name, options.limit, reason);
        if (bytes) {
            files.push_back(contentsOf(name, std::move(*bytes), options));
            continue;
        }
        errors << "zintar-dump: " << shownName(titleOf(name)) << ": " << reason << "\n";
        allRead = false;
    }
    int code = files.empty() ? sound : show(files, options.form, out, errors);
    return allRead ? code : failed;
}
} // namespace dump
