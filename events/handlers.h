#pragma once

#include <zintar/detail/handlers.h>
#include <zintar/metaclass.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

/// @file
/// What the library knows of any handler: its parameters, and how it can be found by its value.

namespace zt::detail
{
/// Invokables of a class, which are not owned.
extern const HandlerKind invokableHandlers;
/// What hosts wrote themselves, in a `ForeignHandler`.
extern const HandlerKind foreignHandlers;

struct ForeignHandler final : KeptHandler {
    explicit ForeignHandler(std::unique_ptr<ZTHandlerBase> owned) : handler(std::move(owned)) {}

    const std::unique_ptr<ZTHandlerBase> handler;
};

inline bool isInvokable(const Handler& handler) { return handler.kind == &invokableHandlers; }
inline bool isForeign(const Handler& handler) { return handler.kind == &foreignHandlers; }
inline Handler handlerOf(const ZTMetaInvokable* invokable)
{
    return invokable ? Handler(invokableHandlers, reinterpret_cast<std::uintptr_t>(invokable))
                     : Handler();
}
inline const ZTMetaInvokable& invokableOf(const Handler& handler)
{
    return *reinterpret_cast<const ZTMetaInvokable*>(handler.word);
}
inline ZTHandlerBase& foreignOf(const Handler& handler)
{
    return *reinterpret_cast<ForeignHandler*>(handler.word)->handler;
}
/// Null where there is nothing to let go of.
inline KeptHandler* keptOf(const Handler& handler)
{
    return handler.kind && handler.kind->isKept ? reinterpret_cast<KeptHandler*>(handler.word)
                                                : nullptr;
}

/// A handler as the checks see it.
struct HandlerView {
    [[nodiscard]] unsigned int parameterCount() const;
    [[nodiscard]] const ZTMetaType& parameterMetaType(unsigned int index) const;
    [[nodiscard]] bool isMemberFunction() const;
    /// Names it in messages.
    [[nodiscard]] std::string title() const;
    /// Whether it can be found by its value.
    [[nodiscard]] bool isComparable() const;
    /// Whether it is what the key denotes.
    [[nodiscard]] bool equals(const HandlerKey& key) const;

    Handler handler;
};
} // namespace zt::detail
