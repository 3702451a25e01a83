#pragma once

#include "../common/keptblocks.h"
#include "../common/keptname.h"
#include "../common/publishedindex.h"

#include <zintar/detail/values/objectreferences.h>
#include <zintar/metatype.h>
#include <zintar/variant.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <typeindex>

/// A name or an alias under which a type can be found.
struct ZTMetaTypeName {
    ZTMetaTypeName(zt::detail::KeptName kept, const ZTMetaType& named)
        : name(std::move(kept)), type(named)
    {}
    [[nodiscard]] std::size_t hash() const { return name.key().shortHash(); }

    const zt::detail::KeptName name;
    const ZTMetaType& type;
    const ZTMetaTypeName* next = nullptr; ///< among the aliases of the type
};

/// The conversion to one other type.
struct ZTConverter {
    ZTConverter(const ZTMetaType& to, zt::detail::ConverterFunction converter)
        : target(to), function(converter)
    {}
    [[nodiscard]] std::size_t hash() const { return hashOf(&target); }
    static std::size_t hashOf(const ZTMetaType* type)
    {
        // Handles are blocks of memory: the lowest bits of their addresses tell nothing.
        auto address = reinterpret_cast<std::size_t>(type);
        return address >> 4 ^ address >> 12;
    }

    const ZTMetaType& target;
    std::atomic<zt::detail::ConverterFunction> function;
};

/// The record behind a `ZTMetaType`. What is not atomic is set before others can find the type.
struct ZTMetaTypePrivate {
    ZTMetaTypePrivate(std::string_view typeName, const std::type_info& type,
                      zt::detail::CreateFunction createFunction,
                      zt::detail::DestroyFunction destroyFunction,
                      zt::detail::CreateDefaultFunction createDefaultFunction,
                      zt::detail::CompareFunction compareFunction,
                      zt::detail::SerializeFunction serializeFunction,
                      zt::detail::DeserializeFunction deserializeFunction,
                      zt::detail::PrintFunction printFunction, const ZTMetaClass* classOfType);

    /// The record of a handle; for the sources of the library.
    static ZTMetaTypePrivate& of(const ZTMetaType& type) { return *type.priv; }

    /// The converter that is registered for exactly this pair, or null.
    [[nodiscard]] ZTConverter* converterTo(const ZTMetaType& type) const
    {
        return convertersTo.find(ZTConverter::hashOf(&type), [&](const ZTConverter& candidate) {
            return &candidate.target == &type;
        });
    }

    /// Whether values are pointers or references to objects.
    [[nodiscard]] bool pointsToObject() const
    {
        return findClass || metaClass.load(std::memory_order_relaxed);
    }

    /// Whether values are at most 8 bytes, and no more than these: so the library may copy them and
    /// end them without asking the type. Known when the record is complete.
    [[nodiscard]] bool isPlain() const { return plainSize != 0; }
    [[nodiscard]] void* copyPlain(const void* source) const
    {
        void* copy = zt::detail::takeBlockOf<plainBlock>();
        switch (plainSize) {
        case 1:
            return std::memcpy(copy, source, 1);
        case 4:
            return std::memcpy(copy, source, 4);
        default:
            return std::memcpy(copy, source, 8);
        }
    }
    static void destroyPlain(void* block) { zt::detail::giveBlockOfBack<plainBlock>(block); }
    /// Tells how values are stored; to be called before others can find the type.
    void setStorage(unsigned int sizeOfBlock, zt::detail::AssignFunction assignFunction)
    {
        blockSize = sizeOfBlock;
        assign = assignFunction;
        const bool isShort = blockSize == 1 || blockSize == 4 || blockSize == 8;
        plainSize = assign && isShort ? static_cast<unsigned char>(blockSize) : 0;
    }

    std::string name;
    std::type_index typeIndex;
    /// Null until somebody asks, where `findClass` is set.
    std::atomic<const ZTMetaClass*> metaClass;
    zt::detail::ClassFunction findClass = nullptr;
    zt::detail::CreateFunction create;
    zt::detail::DestroyFunction destroy;
    zt::detail::CreateDefaultFunction createDefault;
    zt::detail::CompareFunction compare;
    zt::detail::SerializeFunction serialize;
    zt::detail::DeserializeFunction deserialize;
    zt::detail::PrintFunction print;
    /// Of the blocks of `TypeFunctions`; 0 where the host has functions of its own.
    unsigned int blockSize = 0;
    bool isBuiltIn = false; ///< of the types that are always there
    /// Null unless a value is no more than its bytes.
    zt::detail::AssignFunction assign = nullptr;
    unsigned char plainSize = 0; ///< 0, 1, 4 or 8
    /// What the values are called, once a class declares it.
    std::atomic<const ZTMetaEnum*> enumeration = nullptr;
    static constexpr std::size_t plainBlock = 8;
    std::atomic<const ZTMetaTypeName*> aliases = nullptr;
    zt::detail::PublishedIndex<ZTConverter> convertersTo;
    /// What values consist of; null for a type that keeps it to itself.
    const zt::detail::Shape* shape = nullptr;
    /// Set in the types of references to objects, and in no other.
    zt::detail::ReferredFunction referred = nullptr;
    zt::detail::ReferFunction refer = nullptr;
};

/// The process-wide tables.
///
/// 1. Each type in `m_types` has its name in `m_names`, unless another type held that name first.
/// 2. Nothing leaves and nothing moves: a handle or a name that was found once is good for ever.
/// 3. Readers take no lock. Writers hold `m_writing`, within which no code of a host runs, and
///    nothing waits for another lock.
/// 4. A registration whose memory fails has not happened.
struct ZTMetaTypeRegistry {
    /// The type with that name or alias, or null.
    [[nodiscard]] const ZTMetaType* find(std::string_view name) const;
    [[nodiscard]] const ZTMetaType* find(const std::type_index& type) const;

    /// Adds the type, or the alias alone if the type is there already.
    const ZTMetaType& add(std::unique_ptr<ZTMetaTypePrivate> record, const std::string& alias);
    void addAlias(const ZTMetaType& type, const std::string& alias);
    void setConverter(const ZTMetaType& from, const ZTMetaType& to,
                      zt::detail::ConverterFunction converter);
    /// The same for a pair that has no converter yet.
    void addConverter(const ZTMetaType& from, const ZTMetaType& to,
                      zt::detail::ConverterFunction converter);

    /// Whether a null pointer converts to any pointer or reference to an object.
    std::atomic<bool> nullIsAnyObject = false;

private:
    struct RegisteredType {
        explicit RegisteredType(std::unique_ptr<ZTMetaTypePrivate> record) noexcept
            : handle(record.release())
        {}
        [[nodiscard]] std::size_t hash() const
        {
            return ZTMetaTypePrivate::of(handle).typeIndex.hash_code();
        }

        const ZTMetaType handle;
    };

    static void appendConverter(ZTMetaTypePrivate& source, const ZTMetaType& to,
                                zt::detail::ConverterFunction converter);
    void publishAlias(std::unique_ptr<ZTMetaTypeName> alias) noexcept;

    std::mutex m_writing;
    zt::detail::PublishedIndex<RegisteredType> m_types;
    zt::detail::PublishedIndex<ZTMetaTypeName> m_names;
};

/// The registry, made with the built-in types at the first call.
ZTMetaTypeRegistry& ztMetaTypeRegistry();

namespace zt::detail
{
/// Copies a value over one of the same type without a new block and without any code of the host,
/// where the type allows it; otherwise nothing happens, and the result is false.
inline bool assignInPlace(ZTVariant& target, const ZTVariant& source)
{
    const AssignFunction assign = ZTMetaTypePrivate::of(target.type()).assign;
    if (!assign || &target.type() != &source.type() || !target.data() || !source.data())
        return false;
    assign(target.data(), source.data());
    return true;
}

/// Tells in the log that there are two types of that name.
void warnOfNamesake(const std::string& name);

/// Registers the types that are always there, in their fixed order.
void registerBuiltInTypes(ZTMetaTypeRegistry& registry);
} // namespace zt::detail
