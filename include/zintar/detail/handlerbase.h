#pragma once

#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/metatype.h>

#include <string_view>

namespace zt::detail
{
/// What a subscription calls, when it is not an invokable of a class. The library owns a handler
/// from the moment it is given one, checks its parameters against the event once, and calls it.
struct ZT_EXPORT ZTHandlerBase {
    virtual ~ZTHandlerBase();
    /// Names the handler in messages.
    [[nodiscard]] virtual std::string_view typeName() const = 0;
    [[nodiscard]] virtual unsigned int parameterCount() const = 0;
    [[nodiscard]] virtual const ZTMetaType& parameterMetaType(unsigned int index) const = 0;
    /// True when it can only be called on a subscriber.
    [[nodiscard]] virtual bool isMemberFunction() const = 0;
    /// @param subscriber  null unless `isMemberFunction()` is true
    /// @param result      null in every call of the library
    /// @param arguments   ten addresses, of which the first `parameterCount()` are those of the
    ///                    event's values; one is null where the sender gave no fitting value. A
    ///                    parameter of type `ZTVariant` gets the address of the variant itself.
    /// The handler is deleted when its subscription ends, also while this runs.
    virtual void invoke(const ZTBase* subscriber, void* result, void** arguments) = 0;
    [[nodiscard]] virtual bool isComparable() const = 0;
    /// Whether the handler wraps what `key` denotes; asked only when it is comparable.
    [[nodiscard]] virtual bool equals(void* key) const = 0;
};
} // namespace zt::detail
