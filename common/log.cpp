#include <zintar/log.h>

#include <iostream>

void ztLog(const std::string& message, ZTLogType type)
{
    switch (type) {
    case ZTLogType::Info:
        std::cout << message << "\n";
        return;
    case ZTLogType::Warning:
    case ZTLogType::Error:
        std::cerr << message << "\n";
        return;
    }
    std::cerr << "Zintar: Error unsupported log type " << std::to_string(static_cast<int>(type))
              << ".\n";
}
