#pragma once

#include <zintar/export.h>
#include <zintar/fwd.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

struct ZTClassStorePrivate;

/// The owner of classes made at run time: those of a document, of a project, of a script.
///
/// It keeps them in the order in which they build on each other, finds them by name, and reads and
/// writes all of them at once. What it holds is found by `ztClass` as well.
///
///     ZTClassStore store;
///     const ZTMetaClass* account = store.add(builder);
///     ZTBase* savings = ztCreate(*account, &bank);
///
/// The classes go with the store, so it must outlive their objects, subscriptions to their events,
/// and classes elsewhere that build on them. A class that a store does not take is destroyed, and a
/// line in the log tells why; so it is with a name that is empty, that the store has already or
/// that means a declared class, and with a super class made at run time that is not in the store.
///
/// Threads: a store belongs to one thread at a time.
class ZT_EXPORT ZTClassStore
{
public:
    ZTClassStore();
    ZTClassStore(const ZTClassStore&) = delete;
    ZTClassStore& operator=(const ZTClassStore&) = delete;
    ~ZTClassStore();

    /// Takes the class over.
    /// @param metaClass  null is not taken, without a line
    /// @return the class, which is good as long as the store holds it; null when it is not taken
    const ZTMetaClass* add(std::unique_ptr<ZTMetaClass> metaClass);
    /// Finishes the class that the builder holds, and takes it.
    const ZTMetaClass* add(ZTMetaClassBuilder& builder);

    /// The class of this store with that `typeName()`, or null.
    [[nodiscard]] const ZTMetaClass* find(std::string_view name) const;
    /// All classes of this store, each behind its super class.
    [[nodiscard]] std::vector<const ZTMetaClass*> classes() const;

    /// Hands the class of that name out to the caller, who sees to it that it lives as long as its
    /// objects; dropping the result ends it.
    /// @return null when there is no such class, or when another one of the store builds on it,
    ///         which is told in the log
    std::unique_ptr<ZTMetaClass> take(std::string_view name);

    /// Gives a class that was read what is not on the stream: functions, starts of stored
    /// properties. Its super class is finished by then. It leaves the store alone.
    using Prepare = std::function<void(ZTMetaClassBuilder& builder)>;

    /// Reads class records up to the end of the stream. Each may have another one of them as its
    /// super class, whatever their order, or one that the store holds, or a declared class.
    ///
    /// Either all of them are taken or none: a record that is cut off, a name that is there twice,
    /// a super class that nobody knows, classes that build on each other in a circle or a
    /// thousand deep are told in the log, and the store is as it was. A type that is not registered
    /// is told, too, and stands as the invalid type in its class.
    /// @param stream  fails when a record is cut off; one with a medium of its own also at its end,
    ///                which has to come within 64 MiB
    /// @param prepare  called for each class, super classes first
    /// Cost: n log n for n classes.
    bool read(ZTDataStream& stream, const Prepare& prepare = {});
    /// The same for the next `count` records: for a stream on which other things follow.
    bool read(ZTDataStream& stream, std::size_t count, const Prepare& prepare = {});
    /// Writes the records of all classes, one behind the other, as `stream << metaClass` does.
    void write(ZTDataStream& stream) const;

private:
    std::unique_ptr<ZTClassStorePrivate> priv;
};
