// 1. `classes` has each class behind its super class; `held` knows the same classes.
// 2. What is in `classes` is listed for `ztClass`.
// 3. A class goes only when no other one of the store builds on it, so `classes` is taken apart
// from
//    its end.

#include <zintar/classstore.h>

#include "../reflection/classlist.h"
#include "../stream/datastreamprivate.h"
#include "classreading.h"

#include <zintar/log.h>
#include <zintar/metaclass.h>
#include <zintar/metaclassbuilder.h>

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

struct ZTClassStorePrivate {
    struct Held {
        unsigned int depth; ///< how many classes of the store it builds on
        unsigned int users; ///< how many build on it directly
    };

    [[nodiscard]] const ZTMetaClass* find(std::string_view name) const;
    /// What speaks against taking the class; empty when nothing does.
    [[nodiscard]] std::string objection(const ZTMetaClass& metaClass) const;
    /// There is none. May throw, and changes nothing then.
    const ZTMetaClass* add(std::unique_ptr<ZTMetaClass> metaClass);
    std::unique_ptr<ZTMetaClass> take(const ZTMetaClass& metaClass) noexcept;
    /// Lets those go that have been added since there were so many.
    void cutTo(std::size_t count) noexcept;
    bool addAll(std::vector<std::unique_ptr<ZTMetaClass>> read);

    std::vector<std::unique_ptr<ZTMetaClass>> classes;
    std::map<std::string, const ZTMetaClass*, std::less<>> byName;
    std::unordered_map<const ZTMetaClass*, Held> held;
};

namespace
{
/// Nobody writes classes that deep; what asks all super classes needs stack for each.
constexpr unsigned int maxDepth = 1000;

std::string quoted(std::string_view name) { return "\"" + std::string(name) + "\""; }

void warn(const std::string& what)
{
    ztLog("Zintar Warning: ZTClassStore " + what, ZTLogType::Warning);
}
} // namespace

const ZTMetaClass* ZTClassStorePrivate::find(std::string_view name) const
{
    const auto found = byName.find(name);
    return found == byName.end() ? nullptr : found->second;
}

std::string ZTClassStorePrivate::objection(const ZTMetaClass& metaClass) const
{
    const std::string_view name = metaClass.typeName();
    const ZTMetaClass* super = metaClass.superClass();
    if (name.empty())
        return "it has no name.";
    if (find(name))
        return "there is a class of that name.";
    if (zt::detail::declaredClassNamed(name))
        return "a declared class has that name.";
    if (!super || !super->isDynamic())
        return {};
    const auto known = held.find(super);
    if (known == held.end())
        return "its super class " + quoted(super->typeName()) + " is not in the store.";
    if (known->second.depth + 1 >= maxDepth)
        return "it builds on too many classes.";
    return {};
}

const ZTMetaClass* ZTClassStorePrivate::add(std::unique_ptr<ZTMetaClass> metaClass)
{
    const ZTMetaClass* added = metaClass.get();
    const auto super = held.find(added->superClass());
    const unsigned int depth = super == held.end() ? 0 : super->second.depth + 1;
    if (classes.size() == classes.capacity())
        classes.reserve(std::max<std::size_t>(8, 2 * classes.size()));
    const auto named = byName.emplace(added->typeName(), added).first;
    try {
        held.emplace(added, Held{depth, 0});
        zt::detail::listRuntimeClass(*added);
    } catch (...) {
        held.erase(added);
        byName.erase(named);
        throw;
    }
    classes.push_back(std::move(metaClass));
    if (depth > 0)
        ++held.find(added->superClass())->second.users;
    return added;
}

std::unique_ptr<ZTMetaClass> ZTClassStorePrivate::take(const ZTMetaClass& metaClass) noexcept
{
    zt::detail::unlistRuntimeClass(metaClass);
    byName.erase(byName.find(metaClass.typeName()));
    held.erase(&metaClass);
    if (const auto super = held.find(metaClass.superClass()); super != held.end())
        --super->second.users;
    // Mostly it is one of the last.
    const auto place = std::find_if(classes.rbegin(), classes.rend(),
                                    [&](const auto& one) { return one.get() == &metaClass; });
    std::unique_ptr<ZTMetaClass> taken = std::move(*place);
    classes.erase(std::next(place).base());
    return taken;
}

void ZTClassStorePrivate::cutTo(std::size_t count) noexcept
{
    while (classes.size() > count)
        take(*classes.back());
}

bool ZTClassStorePrivate::addAll(std::vector<std::unique_ptr<ZTMetaClass>> read)
{
    const std::size_t before = classes.size();
    try {
        for (auto& one : read) {
            if (const std::string fault = objection(*one); !fault.empty()) {
                cutTo(before);
                warn("takes no class of the stream, since it does not take " +
                     quoted(one->typeName()) + ": " + fault);
                return false;
            }
            add(std::move(one));
        }
    } catch (...) { // of memory
        cutTo(before);
        throw;
    }
    return true;
}

ZTClassStore::ZTClassStore() : priv(std::make_unique<ZTClassStorePrivate>()) {}

ZTClassStore::~ZTClassStore() { priv->cutTo(0); }

const ZTMetaClass* ZTClassStore::add(std::unique_ptr<ZTMetaClass> metaClass)
{
    if (!metaClass)
        return nullptr;
    if (const std::string fault = priv->objection(*metaClass); !fault.empty()) {
        warn("does not take " + quoted(metaClass->typeName()) + ": " + fault);
        return nullptr;
    }
    return priv->add(std::move(metaClass));
}

const ZTMetaClass* ZTClassStore::add(ZTMetaClassBuilder& builder)
{
    return add(std::unique_ptr<ZTMetaClass>(builder.toMetaClass()));
}

const ZTMetaClass* ZTClassStore::find(std::string_view name) const { return priv->find(name); }

std::vector<const ZTMetaClass*> ZTClassStore::classes() const
{
    std::vector<const ZTMetaClass*> all;
    for (const auto& one : priv->classes)
        all.push_back(one.get());
    return all;
}

std::unique_ptr<ZTMetaClass> ZTClassStore::take(std::string_view name)
{
    const ZTMetaClass* found = priv->find(name);
    if (!found)
        return nullptr;
    if (priv->held.find(found)->second.users == 0)
        return priv->take(*found);
    const auto user = std::find_if(priv->classes.begin(), priv->classes.end(),
                                   [&](const auto& one) { return one->superClass() == found; });
    warn("keeps " + quoted(name) + ": " + quoted((*user)->typeName()) + " builds on it.");
    return nullptr;
}

namespace
{
bool readInto(ZTClassStorePrivate& store, ZTDataStream& stream, std::optional<std::size_t> count,
              const ZTClassStore::Prepare& prepare)
{
    const ZTKnownClasses known = [&](std::string_view name) {
        const ZTMetaClass* found = store.find(name);
        return found ? found : zt::detail::declaredClassNamed(name);
    };
    bool isTaken = false;
    zt::detail::readWhole(stream, [&] {
        ZTClassReading reading;
        reading.read(stream, count);
        if (reading.isGood())
            reading.order(known);
        if (reading.isGood())
            isTaken = store.addAll(reading.finish(known, prepare));
        else
            warn("takes no class of the stream: " + reading.fault);
    });
    return isTaken;
}
} // namespace

bool ZTClassStore::read(ZTDataStream& stream, const Prepare& prepare)
{
    return readInto(*priv, stream, std::nullopt, prepare);
}

bool ZTClassStore::read(ZTDataStream& stream, std::size_t count, const Prepare& prepare)
{
    return readInto(*priv, stream, count, prepare);
}

void ZTClassStore::write(ZTDataStream& stream) const
{
    zt::detail::writeWhole(stream, [&](ZTDataStream& target) {
        for (const auto& one : priv->classes)
            target << *one;
    });
}
