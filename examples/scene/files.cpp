#include "files.h"

#include "mistake.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace scene
{
std::string readFile(const std::string& file)
{
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    std::string contents;
    char block[4096];
    while (stream.read(block, sizeof block) || stream.gcount() > 0)
        contents.append(block, static_cast<std::size_t>(stream.gcount()));
    // A folder can be opened, but not read.
    if (!stream.is_open() || stream.bad())
        throw Mistake("file", "cannot be read: " + std::generic_category().message(errno));
    return contents;
}

void writeFile(const std::string& file, const std::string& contents)
{
    errno = 0;
    std::ofstream stream(file, std::ios::binary);
    stream.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    stream.close();
    if (!stream)
        throw Mistake("--save " + file,
                      "cannot be written: " + std::generic_category().message(errno));
}
} // namespace scene
