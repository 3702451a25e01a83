#include "recorder.h"

#include "members.h"
#include "mistake.h"
#include "print.h"

#include <algorithm>
#include <ostream>
#include <tuple>

namespace scene
{
namespace
{
/// The names of the object and of all above it but the nameless top.
std::string pathOf(const ZTBase& object, const Names& names)
{
    const ZTBase* parent = object.parent();
    return (parent->parent() ? pathOf(*parent, names) + "/" : "") + names.of(&object);
}
} // namespace

Recorder::Recorder(const std::vector<std::string>& events, const Scene& scene, const Names& names)
    : m_names(names)
{
    for (const std::string& event : events) {
        std::string place = "--record " + event;
        auto dot = event.rfind('.');
        if (dot == std::string::npos)
            throw Mistake(place, "expected an object and its event, as in \"lathe.stopped\"");
        std::string path = event.substr(0, dot);
        ZTBase* sender = findBelow(scene.top(), [&](const ZTBase* object) {
            return names.of(object) == path || pathOf(*object, names) == path;
        });
        if (!sender)
            throw Mistake(place, "there is no object \"" + path + "\"");
        const ZTMetaClass& metaClass = *sender->metaClass();
        std::string name = event.substr(dot + 1);
        auto found = invokablesNamed(metaClass, Kind::Event, name);
        if (found.empty())
            throw Mistake(place, unknownInvokable(metaClass, Kind::Event, name));
        m_recordings.emplace_back(std::piecewise_construct, std::tuple(event),
                                  std::tuple(sender, found[0]));
    }
}

void Recorder::print(std::ostream& out) const
{
    if (!m_recordings.empty())
        out << "\nRecorded\n";
    for (const auto& [title, listener] : m_recordings) {
        out << "  " << title << ": " << listener.count() << "\n";
        for (const std::vector<ZTVariant>& record : listener) {
            std::vector<std::string> texts;
            texts.reserve(record.size());
            for (const ZTVariant& value : record)
                texts.push_back(shown(value, m_names));
            out << "    (" << listed(texts) << ")\n";
        }
    }
}
} // namespace scene
