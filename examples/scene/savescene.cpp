#include "savedscene.h"

#include "fit.h"
#include "members.h"

#include <zintar/datastream.h>
#include <zintar/enumeration.h>
#include <zintar/metaclassbuilder.h>

#include <algorithm>
#include <vector>

namespace scene
{
namespace
{
class SceneWriter
{
public:
    explicit SceneWriter(const Names& names) : m_names(names) {}

    SavedScene write(const ZTClassStore& store, const ZTBase& top)
    {
        store.write(m_stream);
        std::size_t classesEnd = m_stream.data().size();
        std::unique_ptr<ZTMetaClass> nameless(ZTMetaClassBuilder().toMetaClass());
        m_stream << *nameless;
        std::size_t objectsBegin = m_stream.data().size();
        collect(top);
        writeValue(static_cast<int>(m_objects.size()));
        for (const ZTBase* object : m_objects)
            writeObject(*object, object->parent() == &top ? "" : m_names.of(object->parent()));
        return {m_stream.data(), classesEnd, objectsBegin, m_objects.size()};
    }

private:
    void collect(const ZTBase& parent)
    {
        for (const ZTBase* child : parent.children()) {
            m_objects.push_back(child);
            collect(*child);
        }
    }

    template <class T>
    void writeValue(const T& value)
    {
        m_stream << ZTVariant(value);
    }

    void writeObject(const ZTBase& object, const std::string& parent)
    {
        const ZTMetaClass& metaClass = *object.metaClass();
        auto dynamic = object.dynamicProperties();
        std::sort(dynamic.begin(), dynamic.end());
        writeValue(nameOf(metaClass));
        writeValue(m_names.of(&object));
        writeValue(parent);
        writeValue(static_cast<int>(metaClass.propertyCount() + dynamic.size()));
        for (unsigned int i = 0; i < metaClass.propertyCount(); ++i)
            writeProperty(object, metaClass.property(i)->name(), false);
        for (std::string_view name : dynamic)
            writeProperty(object, name, true);
    }

    void writeProperty(const ZTBase& object, std::string_view name, bool isDynamic)
    {
        writeValue(std::string(name));
        ZTVariant value = object.property(name);
        // As text, so that a reader need not know the host's enumerations.
        m_stream << (ztEnumeration(value.type()) ? ZTVariant(textOf(value)) : value);
        writeValue(isDynamic);
    }

    const Names& m_names;
    ZTDataStream m_stream;
    std::vector<const ZTBase*> m_objects;
};
} // namespace

SavedScene saveScene(const ZTClassStore& store, const Scene& scene, const Names& names)
{
    return SceneWriter(names).write(store, scene.top());
}
} // namespace scene
