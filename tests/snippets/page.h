#pragma once

#include <exception>
#include <initializer_list>
#include <iostream>
#include <sstream>
#include <string>

/// A block of a page that is run, and what the page says that it prints.
struct Block {
    int line;
    void (*run)();
    const char* output;
};

/// What the block prints, on standard output and standard error in the order of writing.
inline std::string outputOf(const Block& block)
{
    std::ostringstream output;
    std::streambuf* const out = std::cout.rdbuf(output.rdbuf());
    std::streambuf* const err = std::cerr.rdbuf(output.rdbuf());
    try {
        block.run();
    } catch (const std::exception& exception) {
        std::cerr << "an exception left the block: " << exception.what() << "\n";
    }
    std::cout.rdbuf(out);
    std::cerr.rdbuf(err);
    return output.str();
}

/// Runs the blocks of a page in their order and tells those that print something else.
inline int runPage(const char* page, std::initializer_list<Block> blocks)
{
    int failures = 0;
    for (const Block& block : blocks) {
        std::string output = outputOf(block);
        if (output == block.output)
            continue;
        ++failures;
        std::cerr << page << ":" << block.line << ": the page says\n"
                  << block.output << "and the block prints\n"
                  << output << "\n";
    }
    std::cout << page << ": " << blocks.size() << " blocks run, " << failures << " failed\n";
    return failures == 0 ? 0 : 1;
}
