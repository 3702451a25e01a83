#pragma once

#include <zintar/logcapture.h>

#include <exception>
#include <initializer_list>
#include <iostream>
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
    ZTLogCapture output;
    try {
        block.run();
    } catch (const std::exception& exception) {
        std::cerr << "an exception left the block: " << exception.what() << "\n";
    }
    return output.text();
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
