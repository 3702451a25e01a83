#include "house.h"

#include <zintar/zintar.h>

#include <iostream>
#include <iterator>
#include <sstream>

namespace plugins
{
const char* const help = "new CLASS NAME [ARGUMENT]...   makes an object\n"
                         "connect NAME.EVENT NAME.METHOD calls the method when the event is sent\n"
                         "set NAME.PROPERTY VALUE        sets a property\n"
                         "call NAME.METHOD [ARGUMENT]... calls a method\n"
                         "show                           lists the objects and their properties\n"
                         "classes                        lists the classes\n";

namespace
{
std::vector<std::string> wordsOf(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// "lamp.on": an object, and a name of one of its members.
struct Place {
    ZTBase* object;
    std::string member;
};

Place placeOf(ZTBase& root, const std::string& text)
{
    const auto dot = text.rfind('.');
    if (dot == std::string::npos)
        return {ztFind(&root, text), {}};
    return {ztFind(&root, text.substr(0, dot)), text.substr(dot + 1)};
}

/// Texts as they were typed: the library converts them to what is asked for.
std::vector<ZTVariant> valuesOf(const std::vector<std::string>& words, std::size_t first)
{
    std::vector<ZTVariant> values;
    for (std::size_t i = first; i < words.size(); ++i)
        values.emplace_back(words[i]);
    return values;
}

const ZTMetaInvokable* invokableNamed(const Place& place, bool isEvent)
{
    const ZTMetaClass* metaClass = place.object ? place.object->metaClass() : nullptr;
    for (unsigned int i = metaClass ? metaClass->invokableCount() : 0; i-- > 0;) {
        const ZTMetaInvokable* one = metaClass->invokable(i);
        if (one->name() == place.member && one->isEvent() == isEvent)
            return one;
    }
    return nullptr;
}

void listClasses()
{
    for (const ZTMetaClass* one : ztClasses())
        if (one->superClass())
            std::cout << ztShortName(*one) << " : " << ztShortName(*one->superClass()) << "\n";
}
} // namespace

House::House()
{
    ZTBase::subscribe(&m_root, &ZTBase::childAdded, &m_root, [](ZTBase* child) {
        std::cout << "a " << ztShortName(*child->metaClass()) << " joins\n";
    });
}

std::string House::carryOut(const std::string& command)
{
    const Words words = wordsOf(command);
    const std::string verb = words.empty() ? "" : words[0];
    if (verb == "new" && words.size() >= 3)
        return create(words);
    if (verb == "connect" && words.size() == 3)
        return connect(words);
    if (verb == "set" && words.size() == 3)
        return set(words);
    if (verb == "call" && words.size() >= 2)
        return call(words);
    if (command == "show")
        return show();
    if (command == "classes")
        return listClasses(), "";
    return "this is no command: \"" + command + "\"";
}

std::string House::create(const Words& words)
{
    const ZTMetaClass* metaClass = ztClass(words[1]);
    if (!metaClass)
        return "there is no class \"" + words[1] + "\", or several";
    ZTBase* object = ztCreate(*metaClass, &m_root, valuesOf(words, 3));
    if (!object)
        return "no " + words[1] + " was made";
    object->setProperty("name", words[2], true);
    return {};
}

std::string House::connect(const Words& words)
{
    const Place from = placeOf(m_root, words[1]);
    const Place to = placeOf(m_root, words[2]);
    const ZTMetaInvokable* event = invokableNamed(from, true);
    const ZTMetaInvokable* method = invokableNamed(to, false);
    if (!event || !method)
        return (event ? words[2] + " is no method" : words[1] + " is no event");
    const bool isConnected = bool(ZTBase::subscribe(from.object, event, to.object, method));
    return isConnected ? "" : words[1] + " and " + words[2] + " do not fit together";
}

std::string House::set(const Words& words)
{
    const Place place = placeOf(m_root, words[1]);
    return ztTrySet(place.object, place.member, words[2]).error();
}

std::string House::call(const Words& words)
{
    const Place place = placeOf(m_root, words[1]);
    const auto result = ztTryInvoke(place.object, place.member, valuesOf(words, 2));
    if (result && result->isValid()) {
        const auto text = ztTryConvert(*result, ztMetaType<std::string>());
        std::cout << words[1] << " gives "
                  << (text ? ztVariantValue<std::string>(*text) : "no text") << "\n";
    }
    return result.error();
}

std::string House::show() const
{
    for (const ZTBase* object : m_root.children()) {
        const ZTMetaClass& metaClass = *object->metaClass();
        std::cout << ztObjectName(object) << ", a " << ztShortName(metaClass) << "\n";
        for (unsigned int i = 0; i < metaClass.propertyCount(); ++i) {
            const std::string name(metaClass.property(i)->name());
            std::cout << "  " << name << " "
                      << ztTryGet<std::string>(object, name).valueOr("(no text)") << "\n";
        }
    }
    return {};
}
} // namespace plugins
