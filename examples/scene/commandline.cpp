#include "commandline.h"

#include <utility>

namespace scene
{
const std::string_view usage =
    R"(Usage: scene FILE.json [--record PATH.EVENT]... [--save FILE]
       scene --load FILE [--save FILE]
       scene --classes [FILE.json | --load FILE]
       scene --help
)";

const std::string_view help = R"(
Builds a living tree of objects from a file, by reflection alone, carries out the actions in the
file, and tells every event that one object delivers to another meanwhile.

  FILE.json            print the tree, the actions with what they cause, and the tree again
  --record PATH.EVENT  print in the end how often an object sent the event, and with what; PATH is
                       its name, alone or with those above it: shop/lathe.stopped
  --save FILE          save the classes that the file declares and the objects as they are then
  --load FILE          bring a saved scene back, and print its tree
  --classes            list the classes that a scene can use, with all their members; those that
                       a file declares come last
  --help               print this

A mistake in the file is told in one line, "file: place: what", with exit code 2, before any
object is made. The file is an object of four parts; all but the tree may be missing:

  "classes"      a list of classes to make, in any order, each with any of the last three parts:
                 {"name": "Lathe", "super": "ZTDynamicBase",
                  "properties": {"speed": {"type": "double", "start": 0, "event": "turns"}},
                  "events": {"turns": ["double"], "stopped": []},
                  "methods": {"run": {"parameters": {"rpm": "double"}, "do": [
                      {"set": "speed", "value": {"parameter": "rpm"}},
                      {"add": "runs", "value": 1},
                      {"raise": "turns", "arguments": [{"property": "speed"}]}]}}}
                 A super class is another declared class, or one of the host that is or derives
                 from ZTDynamicBase. The event of a property announces its changes. A value in a
                 method is one of its parameters, a property of the object, or plain.
  "tree"         one object: {"class": "Room", "name": "north", "properties": {"area": 20},
                 "dynamic": {"note": "damp"}, "children": [...]}. Names are unique in the whole
                 file. A property that the class does not know belongs in "dynamic".
  "connections"  a list of {"from": "north", "event": "childAdded", "to": "journal",
                 "method": "noteArrival"}. The method's parameters are the event's leading ones.
  "actions"      a list of, in the order in which they happen:
                 {"set": "heater", "property": "level", "value": 2}; a dynamic property also needs
                 "dynamic": true
                 {"call": "climate", "method": "program", "arguments": ["Heat", 21.5]}
                 {"move": "heater", "to": "south"}
                 {"delete": "heater"}

Text and numbers become what a property or a parameter takes, where they fit: "21.5" is 21.5 for a
number, and enumerators are given by name.
)";

namespace
{
bool makesSense(const CommandLine& line)
{
    bool hasScene = !line.file.empty() || !line.load.empty();
    bool hasTwo = !line.file.empty() && !line.load.empty();
    bool keeps = !line.save.empty() || !line.record.empty();
    if (line.help)
        return !line.classes && !hasScene && !keeps;
    if (line.classes)
        return !hasTwo && !keeps;
    return hasScene && !hasTwo && (line.load.empty() || line.record.empty());
}
} // namespace

std::optional<CommandLine> readCommandLine(const std::vector<std::string>& arguments)
{
    CommandLine line;
    std::string* wanted = nullptr; // what the option before needs
    for (const std::string& argument : arguments) {
        if (wanted)
            *std::exchange(wanted, nullptr) = argument;
        else if (argument == "--help")
            line.help = true;
        else if (argument == "--classes")
            line.classes = true;
        else if (argument == "--record")
            wanted = &line.record.emplace_back();
        else if (argument == "--save" && line.save.empty())
            wanted = &line.save;
        else if (argument == "--load" && line.load.empty())
            wanted = &line.load;
        else if (!argument.starts_with("-") && line.file.empty())
            line.file = argument;
        else
            return std::nullopt;
        if (argument.empty())
            return std::nullopt;
    }
    if (wanted)
        return std::nullopt;
    return makesSense(line) ? std::optional(line) : std::nullopt;
}
} // namespace scene
