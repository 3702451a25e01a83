#include "members.h"

#include "print.h"

#include <zintar/metatypeof.h>
#include <zintar/shortname.h>

#include <algorithm>
#include <set>

namespace scene
{
std::string nameOf(const ZTMetaClass& metaClass) { return ztShortName(metaClass); }

std::string nameOf(const ZTMetaType& type)
{
    std::string name = type == ztMetaType<std::string>() ? "string" : ztShortName(type);
    return name.substr(name.starts_with("const ") ? 6 : 0); // a file has no use for it
}

std::string parametersOf(const ZTMetaInvokable& invokable)
{
    std::vector<std::string> texts;
    for (unsigned int i = 0; i < invokable.parameterCount(); ++i) {
        std::string& text = texts.emplace_back(nameOf(invokable.parameterMetaType(i)));
        if (auto name = invokable.parameterName(i); !name.empty())
            text.append(" ").append(name);
        if (const ZTVariant* otherwise = invokable.defaultArgument(i))
            text.append(" = ").append(shown(*otherwise, Names()));
    }
    return "(" + listed(texts) + ")";
}

std::string nameOf(const ZTMetaInvokable& invokable, unsigned int parameter)
{
    const std::string_view name = invokable.parameterName(parameter);
    return "parameter " +
           (name.empty() ? std::to_string(parameter + 1) : "\"" + std::string(name) + "\"") +
           " of " + std::string(invokable.name());
}

std::vector<const ZTMetaInvokable*> invokablesNamed(const ZTMetaClass& metaClass, Kind kind,
                                                    std::string_view name)
{
    std::vector<const ZTMetaInvokable*> found;
    for (unsigned int i = metaClass.invokableCount(); i-- > 0;) {
        const ZTMetaInvokable* invokable = metaClass.invokable(i);
        if (invokable->isEvent() == (kind == Kind::Event) && invokable->name() == name)
            found.push_back(invokable);
    }
    return found;
}

std::string unknownInvokable(const ZTMetaClass& metaClass, Kind kind, std::string_view name)
{
    std::string_view wanted = kind == Kind::Event ? "event" : "method";
    std::string_view other = kind == Kind::Event ? "method" : "event";
    std::set<std::string> known;
    for (unsigned int i = 0; i < metaClass.invokableCount(); ++i) {
        const ZTMetaInvokable* invokable = metaClass.invokable(i);
        if (invokable->isEvent() == (kind == Kind::Event))
            known.emplace(invokable->name());
        else if (invokable->name() == name)
            return nameOf(metaClass).append(".").append(name).append(" is no ").append(wanted) +
                   " but a" + (other == "event" ? "n " : " ") + std::string(other);
    }
    std::string text = nameOf(metaClass) + " has no ";
    text.append(wanted).append(" \"").append(name).append("\"; it has ");
    return text + (known.empty() ? "none" : listed({known.begin(), known.end()}));
}

bool takes(const ZTMetaInvokable& handler, const ZTMetaInvokable& event)
{
    if (handler.parameterCount() > event.parameterCount())
        return false;
    for (unsigned int i = 0; i < handler.parameterCount(); ++i)
        if (!(handler.parameterMetaType(i) == event.parameterMetaType(i)))
            return false;
    return true;
}

std::string onOneLine(std::string text)
{
    std::replace_if(
        text.begin(), text.end(),
        [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 127; }, '?');
    return text;
}

std::string listed(const std::vector<std::string>& names, std::string_view between)
{
    std::string text;
    for (const std::string& name : names)
        text.append(text.empty() ? "" : between).append(name);
    return text;
}
} // namespace scene
