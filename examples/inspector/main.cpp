#include "house.h"
#include "text.h"

#include <iostream>
#include <sstream>
#include <string>
#include <vector>

// Looks at a tree of objects and changes it, line by line. It knows no class of what it looks at.

namespace
{
constexpr const char* help =
    "show [PATH]              the objects from there on, with their properties\n"
    "set PATH PROPERTY VALUE  a number, a text, the name of an enumerator, the path of an object\n"
    "call PATH METHOD [ARGUMENT]...\n"
    "watch [PATH]             tell each change from now on\n"
    "delete PATH\n"
    "quit\n"
    "A path begins below the root: kitchen/lamp. The root is \".\".\n";

std::string propertiesOf(const ZTBase& object)
{
    std::string text;
    const ZTMetaClass& metaClass = *object.metaClass();
    for (unsigned int i = 0; i < metaClass.propertyCount(); ++i) {
        const ZTMetaProperty& property = *metaClass.property(i);
        if (property.name() == "name")
            continue;
        text += "  " + std::string(property.name()) + "=" + textOf(property.get(&object));
        for (unsigned int info = 0; info < property.propInfoCount(); ++info)
            if (property.propInfoKey(info) == "unit")
                text += " " + std::string(property.propInfoValue(info));
        if (!property.canSet())
            text += " (read only)";
    }
    for (std::string_view name : object.dynamicProperties())
        text += "  " + std::string(name) + "=" + textOf(object.property(name));
    return text;
}

void show(const ZTBase& object, int depth)
{
    const std::string name = ztObjectName(&object);
    std::cout << std::string(static_cast<std::size_t>(2 * depth), ' ')
              << (name.empty() ? "?" : name) << ": " << ztShortName(*object.metaClass())
              << propertiesOf(object) << "\n";
    for (const ZTBase* child : object.children())
        show(*child, depth + 1);
}

/// Follows the changes of an object and of all below it.
class Watcher : public ZTBase
{
    ZT_OBJECT(Watcher, ZTBase)
public:
    void watch(ZTBase* object)
    {
        const ZTMetaClass& metaClass = *object->metaClass();
        for (unsigned int i = 0; i < metaClass.propertyCount(); ++i)
            follow(object, *metaClass.property(i));
        subscribe(object, &ZTBase::dynamicPropertyChanged, this,
                  [object](const std::string& name, const ZTVariant& value) {
                      tell(pathOf(object) + "." + name, value);
                  });
        subscribe(object, &ZTBase::childRemoved, this, [object](ZTBase*) {
            std::cout << "  * " << pathOf(object) << " has lost a child\n";
        });
        for (ZTBase* child : object->children())
            watch(child);
    }

private:
    static constexpr auto members() { return zt::members(); }

    static void tell(const std::string& what, const ZTVariant& value)
    {
        std::cout << "  * " << what << " is now " << textOf(value) << "\n";
    }
    /// A handler of the argument array fits every event.
    void follow(ZTBase* object, const ZTMetaProperty& property)
    {
        if (property.changeEvent())
            subscribe(
                object, property.changeEvent(), this, [object, &property](const ZTArgumentArray&) {
                    tell(pathOf(object) + "." + std::string(property.name()), property.get(object));
                });
    }
};

class Inspector
{
public:
    explicit Inspector(ZTBase& root) : m_root(root) {}

    /// @return false at the end
    bool carryOut(const std::string& line)
    {
        std::istringstream words(line);
        std::string command, path;
        words >> command >> path;
        if (command == "quit")
            return false;
        ZTBase* object = path.empty() || path == "." ? &m_root : ztFind(&m_root, path);
        if (!object)
            std::cout << "there is no object \"" << path << "\"\n";
        else if (command == "show")
            show(*object, 0);
        else if (command == "set")
            set(*object, words);
        else if (command == "call")
            call(*object, words);
        else if (command == "watch")
            m_watcher.watch(object);
        else if (command == "delete" && object != &m_root)
            delete object;
        else if (!command.empty())
            std::cout << help;
        return true;
    }

private:
    void set(ZTBase& object, std::istringstream& words)
    {
        std::string name, text;
        words >> name >> std::ws;
        std::getline(words, text);
        const ZTMetaProperty* property = object.metaClass()->property(name);
        const ZTVariant value =
            property ? valueOf(text, property->metaType(), m_root) : ZTVariant(text);
        if (auto outcome = ztTrySet(&object, name, value); !outcome)
            std::cout << outcome.error() << "\n";
    }

    static void call(ZTBase& object, std::istringstream& words)
    {
        std::string name;
        words >> name;
        std::vector<ZTVariant> arguments;
        for (std::string word; words >> word;)
            arguments.emplace_back(word);
        auto outcome = ztTryInvoke(&object, name, arguments);
        if (!outcome)
            std::cout << outcome.error() << "\n";
        else if (outcome->isValid())
            std::cout << textOf(*outcome) << "\n";
    }

    ZTBase& m_root;
    Watcher m_watcher;
};
} // namespace

ZT_CLASS(Watcher)

int main()
{
    ztRegisterStandardConverters();
    const std::unique_ptr<ZTBase> house = makeHouse();
    Inspector inspector(*house);
    std::string line;
    while (std::getline(std::cin, line) && inspector.carryOut(line)) {
    }
    return 0;
}
