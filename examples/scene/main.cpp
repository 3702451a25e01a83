#include "actions.h"
#include "classlist.h"
#include "converters.h"
#include "mistake.h"
#include "print.h"
#include "scenefile.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <string_view>

namespace
{
constexpr int mistaken = 2;

constexpr std::string_view usage = "Usage: scene FILE.json | scene --classes | scene --help";

constexpr std::string_view help = R"(
Builds a living tree of objects from a file, by reflection alone, carries out the actions in the
file, and tells every event that one object delivers to another meanwhile.

  scene FILE.json   print the tree, the actions with what they cause, and the tree again
  scene --classes   list the classes that a file can use, with all their members
  scene --help      print this

A mistake in the file is told in one line, "file: place: what", with exit code 2, before any
object is made. The file is an object of three parts; the last two may be missing:

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

int listClasses()
{
    for (const scene::Factory& factory : scene::factories()) {
        if (&factory != &scene::factories().front())
            std::cout << "\n";
        scene::printClass(std::cout, factory.metaClass());
    }
    return 0;
}

void run(const std::string& file)
{
    scene::ScenePlan plan = scene::readScene(file);
    scene::Names names;
    scene::Trace trace(std::cout, names);
    scene::Scene scene(plan, names, trace);
    std::cout << "Before\n";
    scene::printTree(std::cout, scene.top(), names);
    std::cout
        << "\nActions, each with what it causes: sender.event(arguments) -> receiver.handler\n";
    scene::carryOut(plan.actions, scene, trace);
    std::cout << "\nAfter\n";
    scene::printTree(std::cout, scene.top(), names);
}

/// Keeps a message on its line, whatever the file put into it.
std::string onOneLine(std::string text)
{
    std::replace_if(
        text.begin(), text.end(),
        [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 127; }, '?');
    return text;
}

int runFile(const std::string& file)
{
    try {
        run(file);
        return 0;
    } catch (const scene::Mistake& mistake) {
        std::cout.flush();
        std::cerr << onOneLine(file + ": " + mistake.where() + ": " + mistake.what()) << "\n";
        return mistaken;
    }
}
} // namespace

int main(int argc, char** argv)
{
    scene::registerConverters();
    scene::registerHostEnumerations();

    std::string_view argument = argc == 2 ? argv[1] : "";
    if (argument == "--help") {
        std::cout << usage << "\n" << help;
        return 0;
    }
    if (argument == "--classes")
        return listClasses();
    if (argument.empty() || argument.starts_with("-")) {
        std::cerr << usage << "\n";
        return mistaken;
    }
    return runFile(std::string(argument));
}
