// The classes by their names.
//
// 1. Declared classes and their names are only ever added, under one lock, and are never destroyed.
//    Whoever looks for one takes no lock.
// 2. A name is one entry, whatever it means: the class that has it as its full name, and the
//    classes of whose names it is the last part.
// 3. Classes made at run time come and go. They stand apart, under a lock of their own, sorted
//    by names that may have been made up to collide as hashes.

#include "classlist.h"

#include "../common/keptname.h"
#include "../common/publishedindex.h"

#include <zintar/classes.h>
#include <zintar/log.h>
#include <zintar/shortname.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <map>
#include <shared_mutex>
#include <string>
#include <utility>

namespace zt::detail
{
struct ClassName {
    explicit ClassName(KeptName kept) : name(std::move(kept)) {}
    [[nodiscard]] std::size_t hash() const { return name.key().shortHash(); }

    /// Another class has the name, in full or as its last part.
    void add(const ZTMetaClass& metaClass, bool isFull) noexcept
    {
        if (isFull) {
            full.store(&metaClass, std::memory_order_release);
        } else if (!isShared.load(std::memory_order_relaxed)) {
            isShared.store(last.load(std::memory_order_relaxed) != nullptr,
                           std::memory_order_release);
            last.store(&metaClass, std::memory_order_release);
        }
    }
    [[nodiscard]] const ZTMetaClass* meaning() const
    {
        if (const ZTMetaClass* one = full.load(std::memory_order_acquire))
            return one;
        const ZTMetaClass* one = last.load(std::memory_order_acquire);
        return isShared.load(std::memory_order_acquire) ? nullptr : one;
    }

    const KeptName name;
    std::atomic<const ZTMetaClass*> full = nullptr; ///< the class with that full name
    std::atomic<const ZTMetaClass*> last = nullptr; ///< one of which it is the last part
    std::atomic<bool> isShared = false;             ///< it is the last part of several
    // While a class is about to be listed.
    bool isFullOfAdded = false;
    std::unique_ptr<ClassName> next;
};

struct ListedClass {
    const ZTMetaClass& metaClass;
    std::atomic<const ListedClass*> next = nullptr;
};

namespace
{
struct DeclaredClasses {
    std::mutex writing;
    PublishedIndex<ClassName> names;
    std::atomic<const ListedClass*> first = nullptr;
    ListedClass* end = nullptr;

    [[nodiscard]] ClassName* find(std::string_view name) const
    {
        const NameKey key(name);
        return names.find(key.shortHash(),
                          [&](const ClassName& candidate) { return candidate.name.key() == key; });
    }
};

struct RuntimeClasses {
    std::shared_mutex changing;
    std::multimap<std::string, const ZTMetaClass*, std::less<>> byName;
    std::vector<const ZTMetaClass*> all;
};

// Never destroyed, since static objects of a host may ask at their end.
DeclaredClasses& declaredClasses()
{
    static DeclaredClasses& classes = *new DeclaredClasses;
    return classes;
}
RuntimeClasses& runtimeClasses()
{
    static RuntimeClasses& classes = *new RuntimeClasses;
    return classes;
}

/// What stands behind the last `::` that is not in brackets.
std::string_view lastPart(std::string_view name)
{
    int depth = 0;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < name.size(); ++i) {
        depth += name[i] == '<' || name[i] == '(';
        depth -= name[i] == '>' || name[i] == ')';
        if (depth == 0 && name.substr(i).starts_with("::"))
            begin = i + 2;
    }
    return name.substr(begin);
}

bool isInAnonymousNamespace(std::string_view typeName)
{
    return typeName.find("(anonymous)") != std::string_view::npos;
}
} // namespace

ClassListing::ClassListing(const ZTMetaClass& metaClass)
    : m_class(metaClass),
      m_spelled(metaClass.typeName()),
      m_lock(declaredClasses().writing),
      m_listed(new ListedClass{metaClass})
{
    const std::string full = ztShortName(m_spelled);
    const bool isAnonymous = isInAnonymousNamespace(m_spelled);
    const std::string_view last = lastPart(full);
    const ClassName* known = declaredClasses().find(full);
    // Of two in anonymous namespaces the registry tells that their pointers have one name.
    m_isSecond = !isAnonymous && known && known->full.load(std::memory_order_relaxed);
    if (const ClassName* same = declaredClasses().find(m_spelled); !same || !same->full)
        addName(m_spelled, true);
    if (!m_isSecond && full != m_spelled)
        addName(full, !isAnonymous);
    if (last != full)
        addName(last, false);
    declaredClasses().names.makeRoom(3);
}

ClassListing::~ClassListing() = default;

void ClassListing::addName(std::string_view text, bool isFull)
{
    // Mostly it is the end of the spelled name, which stays as long as the class.
    const bool isEnd = m_spelled.ends_with(text);
    auto name = std::make_unique<ClassName>(
        isEnd ? KeptName::viewOf(m_spelled.substr(m_spelled.size() - text.size()))
              : KeptName::copyOf(text));
    name->isFullOfAdded = isFull;
    name->next = std::move(m_names);
    m_names = std::move(name);
}

void ClassListing::enter() noexcept
{
    DeclaredClasses& classes = declaredClasses();
    while (m_names) {
        std::unique_ptr<ClassName> name = std::exchange(m_names, std::move(m_names->next));
        ClassName* entry = classes.find(name->name.text());
        const bool isNew = !entry;
        if (isNew)
            entry = name.get();
        entry->add(m_class, name->isFullOfAdded);
        if (isNew)
            classes.names.add(name.release());
    }
    ListedClass* listed = m_listed.release();
    if (classes.end)
        classes.end->next.store(listed, std::memory_order_release);
    else
        classes.first.store(listed, std::memory_order_release);
    classes.end = listed;
}

void ClassListing::tell()
{
    m_lock.unlock();
    if (m_isSecond)
        ztLog("Zintar Warning: A second class is declared with the name \"" + ztShortName(m_class) +
                  "\". By its name the first one is found.",
              ZTLogType::Warning);
}

void listRuntimeClass(const ZTMetaClass& metaClass)
{
    RuntimeClasses& classes = runtimeClasses();
    const std::unique_lock changing(classes.changing);
    const auto named = classes.byName.emplace(metaClass.typeName(), &metaClass);
    try {
        classes.all.push_back(&metaClass);
    } catch (...) {
        classes.byName.erase(named);
        throw;
    }
}

void unlistRuntimeClass(const ZTMetaClass& metaClass) noexcept
{
    RuntimeClasses& classes = runtimeClasses();
    const std::unique_lock changing(classes.changing);
    auto [one, end] = classes.byName.equal_range(metaClass.typeName());
    while (one != end && one->second != &metaClass)
        ++one;
    if (one != end)
        classes.byName.erase(one);
    // Mostly it is one of the last.
    const auto place = std::find(classes.all.rbegin(), classes.all.rend(), &metaClass);
    if (place != classes.all.rend())
        classes.all.erase(std::next(place).base());
}

const ZTMetaClass* declaredClassNamed(std::string_view name)
{
    const ClassName* found = declaredClasses().find(name);
    return found ? found->meaning() : nullptr;
}
} // namespace zt::detail

const ZTMetaClass* ztClass(std::string_view name)
{
    if (const ZTMetaClass* declared = zt::detail::declaredClassNamed(name))
        return declared;
    auto& classes = zt::detail::runtimeClasses();
    const std::shared_lock reading(classes.changing);
    const auto found = classes.byName.lower_bound(name); // of equal ones the first that came
    return found == classes.byName.end() || found->first != name ? nullptr : found->second;
}

std::vector<const ZTMetaClass*> ztClasses()
{
    std::vector<const ZTMetaClass*> all;
    for (const auto* one = zt::detail::declaredClasses().first.load(std::memory_order_acquire); one;
         one = one->next.load(std::memory_order_acquire))
        all.push_back(&one->metaClass);
    auto& classes = zt::detail::runtimeClasses();
    const std::shared_lock reading(classes.changing);
    all.insert(all.end(), classes.all.begin(), classes.all.end());
    return all;
}
