#pragma once

#include <zintar/detail/handlers.h>
#include <zintar/metaclass.h>

#include <cstdint>
#include <memory>
#include <optional>
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
    return *pointerIn<const ZTMetaInvokable>(handler.word);
}
inline ZTHandlerBase& foreignOf(const Handler& handler)
{
    return *pointerIn<ForeignHandler>(handler.word)->handler;
}
/// Null where there is nothing to let go of.
inline KeptHandler* keptOf(const Handler& handler)
{
    return handler.kind && handler.kind->isKept ? pointerIn<KeptHandler>(handler.word) : nullptr;
}

/// Sees to the end of a handler that does not get into a subscription.
class OwnedHandler
{
public:
    explicit OwnedHandler(const Handler& handler) : m_handler(handler) {}
    OwnedHandler(const OwnedHandler&) = delete;
    OwnedHandler& operator=(const OwnedHandler&) = delete;
    ~OwnedHandler()
    {
        if (KeptHandler* kept = keptOf(m_handler))
            kept->end();
    }
    [[nodiscard]] const Handler& get() const { return m_handler; }
    Handler release() { return std::exchange(m_handler, {}); }

private:
    Handler m_handler;
};

/// Keeps what a handler calls alive, as one that runs.
class KeptCall
{
public:
    explicit KeptCall(const Handler& handler)
    {
        if (KeptHandler* kept = keptOf(handler))
            m_call.emplace(*kept);
    }

private:
    std::optional<KeptHandler::Call> m_call;
};

/// As what handlers can be found: two of the same identity may be the same handler.
struct HandlerIdentity {
    enum Found : unsigned char { ByWord, ByAsking, Never };

    bool operator==(const HandlerIdentity&) const = default;

    Found found = Never;
    std::uintptr_t word = 0;
};

inline HandlerIdentity identityOf(const Handler& handler)
{
    if (isForeign(handler) || handler.kind->equals)
        return {HandlerIdentity::ByAsking};
    if (isInvokable(handler) || handler.kind->type)
        return {HandlerIdentity::ByWord, handler.word};
    return {};
}

/// A handler as the checks see it.
struct HandlerView {
    [[nodiscard]] unsigned int parameterCount() const;
    [[nodiscard]] const ZTMetaType& parameterMetaType(unsigned int index) const;
    [[nodiscard]] bool isMemberFunction() const;
    /// Names it in messages.
    [[nodiscard]] std::string title() const;
    /// Whether it is what the key denotes.
    [[nodiscard]] bool equals(const HandlerKey& key) const;

    Handler handler;
};
} // namespace zt::detail
