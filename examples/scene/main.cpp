#include "actions.h"
#include "classes.h"
#include "classlist.h"
#include "commandline.h"
#include "files.h"
#include "members.h"
#include "mistake.h"
#include "print.h"
#include "recorder.h"
#include "savedscene.h"
#include "scenefile.h"

#include <zintar/classstore.h>
#include <zintar/standardconverters.h>

#include <iostream>
#include <string>
#include <vector>

namespace
{
constexpr int mistaken = 2;

void listClasses(const scene::CommandLine& line)
{
    ZTClassStore store;
    if (!line.file.empty())
        (void)scene::readScene(line.file, store);
    if (!line.load.empty())
        (void)scene::loadScene(line.load, store);
    for (const ZTMetaClass* known : scene::sceneClasses()) {
        if (known != scene::sceneClasses().front())
            std::cout << "\n";
        scene::printClass(std::cout, *known);
    }
}

void save(const std::string& file, const ZTClassStore& store, const scene::Scene& scene,
          const scene::Names& names)
{
    scene::SavedScene saved = scene::saveScene(store, scene, names);
    scene::writeFile(file, saved.bytes);
    std::cout << "\nSaved in " << file << "\n  the first " << saved.classesEnd
              << " bytes: " << store.classes().size() << " class records\n  from byte "
              << saved.objectsBegin + 1 << " on: " << saved.objects
              << " objects, as variants in a row\n";
}

void run(const scene::CommandLine& line)
{
    ZTClassStore store;
    const bool loads = !line.load.empty();
    auto plan = loads ? scene::loadScene(line.load, store) : scene::readScene(line.file, store);
    scene::Names names;
    scene::Trace trace(std::cout, names);
    scene::Scene scene(plan, names, trace);
    if (loads && plan.root)
        scene::restoreState(*plan.root, scene);
    scene::Recorder recorder(line.record, scene, names);
    std::cout << (loads ? "Loaded\n" : "Before\n");
    scene::printTree(std::cout, scene.top(), names);
    if (!loads) {
        std::cout
            << "\nActions, each with what it causes: sender.event(arguments) -> receiver.handler\n";
        scene::carryOut(plan.actions, scene, trace);
        std::cout << "\nAfter\n";
        scene::printTree(std::cout, scene.top(), names);
    }
    recorder.print(std::cout);
    if (!line.save.empty())
        save(line.save, store, scene, names);
}

void carryOut(const scene::CommandLine& line)
{
    if (line.help)
        std::cout << scene::usage << scene::help;
    else if (line.classes)
        listClasses(line);
    else
        run(line);
}
} // namespace

int main(int argc, char** argv)
{
    ztRegisterStandardConverters();

    auto line = scene::readCommandLine({argv + 1, argv + argc});
    if (!line) {
        std::cerr << scene::usage;
        return mistaken;
    }
    try {
        carryOut(*line);
        return 0;
    } catch (const scene::Mistake& mistake) {
        std::cout.flush();
        const std::string& file = line->load.empty() ? line->file : line->load;
        // Whatever the file put into it, the message stays on its line.
        std::cerr << scene::onOneLine(file + ": " + mistake.where() + ": " + mistake.what())
                  << "\n";
        return mistaken;
    }
}
