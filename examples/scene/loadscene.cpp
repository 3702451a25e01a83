#include "savedscene.h"

#include "classes.h"
#include "declaredclass.h"
#include "files.h"
#include "fit.h"
#include "hostclasses.h"
#include "members.h"
#include "mistake.h"
#include "population.h"

#include <zintar/checked.h>
#include <zintar/datastream.h>
#include <zintar/enumeration.h>
#include <zintar/loghandler.h>
#include <zintar/typedvalue.h>

#include <map>

namespace scene
{
namespace
{
class SceneLoader
{
public:
    SceneLoader(const std::string& bytes, ZTClassStore& store) : m_store(store)
    {
        m_stream.setData(bytes);
    }

    ScenePlan load()
    {
        while (loadClass())
            continue;
        m_place = "number of objects";
        int count = read<int>();
        for (int i = 0; i < count; ++i)
            loadObject(i);
        refuseMore();
        ScenePlan plan;
        if (!m_objects.empty())
            plan.root = withChildren(m_objects.front());
        return plan;
    }

private:
    /// @return false for the nameless class, which ends the classes
    bool loadClass()
    {
        m_place = "class record " + std::to_string(m_store.classes().size() + 1);
        // The nameless class has no super class.
        std::unordered_map<std::string, const ZTMetaClass*> supers{{"ZTNone", nullptr}};
        for (const ZTMetaClass* known : superClasses())
            supers.emplace(known->typeName(), known);
        ZTMetaClassBuilder builder;
        builder.deserialize(m_stream, supers);
        refuseDamage();
        std::string name(builder.typeName());
        if (name.empty())
            return false;
        m_store.add(finishClass(builder, Node::Place() / "classes" / name));
        return true;
    }

    void loadObject(int index)
    {
        m_place = "object " + std::to_string(index + 1);
        ObjectPlan object;
        object.metaClass = &classNamed(read<std::string>(), m_place);
        object.name = readName();
        auto parent = read<std::string>();
        if (parent.empty() != (index == 0))
            throw Mistake(m_place, "the first object, and no other, is the root");
        if (index > 0)
            m_population.classOf(parent, m_place);
        m_population.add(object.name, *object.metaClass, parent, m_place);
        int count = read<int>();
        for (int i = 0; i < count; ++i)
            loadProperty(object);
        m_childrenOf[parent].push_back(m_objects.size());
        m_objects.push_back(std::move(object));
    }

    void loadProperty(ObjectPlan& object)
    {
        PropertyPlan property;
        property.name = readName();
        property.value = readValue();
        property.dynamic = read<bool>();
        const ZTMetaClass& metaClass = *object.metaClass;
        const ZTMetaProperty* declared = metaClass.property(property.name);
        if (property.dynamic == (declared != nullptr))
            throw Mistake(m_place, property.dynamic
                                       ? nameOf(metaClass) + "." + property.name + " is not dynamic"
                                       : ztTryFindProperty(metaClass, property.name).error());
        if (declared && ztEnumeration(declared->metaType()))
            property.value =
                ztTryConvert(property.value, declared->metaType()).valueOr(property.value);
        const ZTMetaType& type = property.value.type();
        if (declared ? type != declared->metaType()
                     : !isValueType(type) && type != ztMetaType<long long>())
            throw Mistake(m_place, property.name + " cannot have a value of type " + nameOf(type));
        auto& properties = declared && !declared->canSet() ? object.readOnly : object.properties;
        properties.push_back(std::move(property));
    }

    ZTVariant readValue()
    {
        ZTVariant value;
        m_stream >> value;
        refuseDamage();
        return value;
    }

    template <class T>
    T read()
    {
        ZTVariant value = readValue();
        if (const T* typed = ztVariantPointer<T>(value))
            return *typed;
        throw Mistake(m_place, "expected a value of type " + nameOf(ztMetaType<T>()) +
                                   ", found one of type " + nameOf(value.type()));
    }

    std::string readName()
    {
        auto name = read<std::string>();
        if (!isName(name))
            throw Mistake(m_place, "expected a name of printable characters");
        return name;
    }

    void refuseDamage() const
    {
        if (!m_stream.good())
            throw Mistake(m_place, "the file ends here, or is damaged");
        if (!m_said.empty())
            throw Mistake(m_place, m_said.substr(m_said.find(": ") + 2)); // not "Zintar: "
    }

    void refuseMore()
    {
        unsigned char more = 0;
        m_stream >> more;
        if (m_stream.good())
            throw Mistake("end", "the file goes on behind the last object");
    }

    ObjectPlan withChildren(const ObjectPlan& loaded)
    {
        ObjectPlan object = loaded;
        for (std::size_t child : m_childrenOf[object.name])
            object.children.push_back(withChildren(m_objects[child]));
        return object;
    }

    std::string m_said; ///< what the library said first of a damaged file
    ZTScopedLogHandler m_listening =
        ztSetLogHandler([this](const std::string& line, ZTLogType type) {
            if (type != ZTLogType::Info && m_said.empty())
                m_said = line;
        });
    ZTDataStream m_stream;
    ZTClassStore& m_store;
    Population m_population;
    std::vector<ObjectPlan> m_objects; ///< without their children
    std::map<std::string, std::vector<std::size_t>> m_childrenOf;
    std::string m_place;
};

bool isSame(const ZTVariant& a, const ZTVariant& b)
{
    // By their bytes: what is no number equals itself here.
    ZTDataStream bytesOfA;
    ZTDataStream bytesOfB;
    bytesOfA << a;
    bytesOfB << b;
    return bytesOfA.data() == bytesOfB.data();
}
} // namespace

ScenePlan loadScene(const std::string& file, ZTClassStore& store)
{
    return SceneLoader(readFile(file), store).load();
}

void restoreState(const ObjectPlan& plan, const Scene& scene)
{
    ZTBase& object = *scene.find(plan.name);
    for (const PropertyPlan& property : plan.readOnly)
        if (auto* restorable = dynamic_cast<Restorable*>(&object))
            restorable->restore(property.name, property.value);
    for (const PropertyPlan& property : plan.properties)
        if (!isSame(object.property(property.name), property.value))
            object.setProperty(property.name, property.value, property.dynamic);
    for (const auto* properties : {&plan.readOnly, &plan.properties})
        for (const PropertyPlan& property : *properties)
            if (!isSame(object.property(property.name), property.value))
                throw Mistake("object \"" + plan.name + "\"",
                              property.name + " does not take the saved value");
    for (const ObjectPlan& child : plan.children)
        restoreState(child, scene);
}
} // namespace scene
