#include "samples.h"

#include <fstream>
#include <string>

namespace
{
void write(const std::string& file, const std::string& bytes)
{
    std::ofstream(file, std::ios::binary) << bytes;
}
} // namespace

/// Writes the samples as files into the directory in which it runs.
int main()
{
    write("device.classes", samples::device());
    write("thermostat.classes", samples::thermostat());
    write("strangers.classes", samples::strangers());
    write("namesakes.classes", samples::namesakes());
    write("oddnames.classes", samples::oddNames());
    write("values.variants", samples::values());
    write("oneway.variants", samples::oneWayValues());
    write("host.variants", samples::hostValues());
    write("mixed", samples::strangers() + samples::values());
    std::string end = std::string(8, '\0') + "\6" + std::string(7, '\0') + "ZTNone";
    write("marked", samples::thermostat() + end + std::string(16, '\0') + samples::hostValues());

    std::string thermostat = samples::thermostat();
    write("cut.classes", samples::device() + thermostat.substr(0, thermostat.size() - 30));
    // The highest byte of the length of the name of the super class.
    thermostat[8 + 10 + 7] = '\x7f';
    write("length.classes", thermostat);
}
