#pragma once

#include <zintar/detail/blocks.h>
#include <zintar/detail/handlerbase.h>
#include <zintar/detail/signature.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <typeinfo>
#include <utility>

/// @file
/// The handlers that the subscribe templates make: a member function on its receiver, or a
/// callable.
///
/// 1. A handler ends with its subscription, which the handler itself may bring about while it runs.
/// 2. What it called stays alive until the call returns: the deletion of a running handler is put
///    off to the end of the outermost call.

namespace zt::detail
{
/// Denotes a handler in an unsubscribe: the type of a function pointer, and one of that type.
struct HandlerKey {
    const std::type_info& type;
    const void* function;
};

/// What all handlers of one kind have in common.
struct HandlerDescription {
    std::string_view name;
    const TypeGetter* types;
    unsigned int parameterCount;
    bool takesArray; ///< it is an `ArrayHandler`
};

/// @tparam Handler   the class of handlers
/// @tparam Callable  what they call, which names them in messages
template <class Handler, class Callable, class Params>
inline constexpr HandlerDescription handlerDescription{ztTypeName<Callable>(), Params::types,
                                                       Params::count, Handler::takesArray};

/// A handler that knows its parameters from a table, and can be deleted while it runs.
struct ZT_EXPORT DescribedHandler : ZTHandlerBase, InBlocks {
    static constexpr bool takesArray = false;

    explicit DescribedHandler(const HandlerDescription& handlers) noexcept
    {
        description = &handlers;
    }
    /// Deletes the handler, when it is not running any more.
    void end();

    [[nodiscard]] std::string_view typeName() const final;
    [[nodiscard]] unsigned int parameterCount() const final;
    [[nodiscard]] const ZTMetaType& parameterMetaType(unsigned int index) const final;

protected:
    /// Marks the handler as running.
    class Call
    {
    public:
        explicit Call(DescribedHandler& handler) noexcept : m_handler(handler)
        {
            ++handler.m_running;
        }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;
        ~Call()
        {
            if (--m_handler.m_running == 0 && m_handler.m_ended)
                delete &m_handler;
        }

    private:
        DescribedHandler& m_handler;
    };

private:
    unsigned int m_running = 0;
    bool m_ended = false;
};

/// What a handler gets where the sender gave no fitting value. Never destroyed: handlers may run
/// when the process ends.
template <class T>
const T& defaultValue()
{
    static const T& value = *::new T{};
    return value;
}

template <class P>
const Held<P>& argumentAt(void* address)
{
    if constexpr (std::is_default_constructible_v<Held<P>>)
        return address ? *static_cast<const Held<P>*>(address) : defaultValue<Held<P>>();
    else
        return *static_cast<const Held<P>*>(address);
}

/// Calls `call` with the arguments at the addresses. Without a value for a parameter that has no
/// default there is no call.
template <class Call, class... P, std::size_t... I>
void callWith(const Call& call, void** arguments, Parameters<P...>, std::index_sequence<I...>)
{
    bool complete = ((std::is_default_constructible_v<Held<P>> || arguments[I]) && ...);
    if (complete)
        call(passAs<P>(argumentAt<P>(arguments[I]))...);
}

template <class Receiver, class Method>
class MemberHandler final : public DescribedHandler
{
    using Params = typename MemberTraits<Method>::Params;

public:
    explicit MemberHandler(Method method) noexcept
        : DescribedHandler(handlerDescription<MemberHandler, Method, Params>), m_method(method)
    {}
    bool isMemberFunction() const override { return true; }
    bool isComparable() const override { return true; }
    bool equals(void* key) const override
    {
        const auto* other = static_cast<const HandlerKey*>(key);
        return other->type == typeid(Method) &&
               *static_cast<const Method*>(other->function) == m_method;
    }
    void invoke(const ZTBase* subscriber, void*, void** arguments) override
    {
        if (!isReceiver(*subscriber)) [[unlikely]]
            return;
        // Nothing of the handler is used behind the call, so it may be deleted meanwhile.
        Method method = m_method;
        auto* receiver = static_cast<Receiver*>(const_cast<ZTBase*>(subscriber));
        callWith([&](const auto&... values) { (receiver->*method)(values...); }, arguments,
                 Params{}, std::make_index_sequence<Params::count>());
    }

private:
    /// Whether the object still is what the member function needs: its destruction may have gone
    /// further, and a move may leave a part of what it was behind. It is asked when its table of
    /// virtual functions is another one than that of the last receiver.
    template <class Object> // `ZTBase`, which may be incomplete here
    bool isReceiver(const Object& subscriber)
    {
        if constexpr (!std::is_same_v<std::remove_const_t<Receiver>, ZTBase>) {
            const void* table;
            std::memcpy(&table, static_cast<const void*>(&subscriber), sizeof(table));
            if (table == knownTable.load(std::memory_order_relaxed)) [[likely]]
                return true;
            if (!dynamic_cast<const Receiver*>(&subscriber))
                return false;
            knownTable.store(table, std::memory_order_relaxed);
        }
        return true;
    }

    /// Of the last receiver that was asked.
    inline static std::atomic<const void*> knownTable = nullptr;

    Method m_method;
};

template <class Callable, class Params>
class CallableHandler final : public DescribedHandler
{
public:
    explicit CallableHandler(Callable callable)
        : DescribedHandler(handlerDescription<CallableHandler, Callable, Params>),
          m_callable(std::move(callable))
    {}
    bool isMemberFunction() const override { return false; }
    bool isComparable() const override { return std::is_pointer_v<Callable>; }
    bool equals(void* key) const override
    {
        if constexpr (std::is_pointer_v<Callable>) {
            const auto* other = static_cast<const HandlerKey*>(key);
            return other->type == typeid(Callable) &&
                   *static_cast<const Callable*>(other->function) == m_callable;
        } else {
            (void)key;
            return false;
        }
    }
    void invoke(const ZTBase*, void*, void** arguments) override
    {
        Call running(*this);
        callWith([&](const auto&... values) { m_callable(values...); }, arguments, Params{},
                 std::make_index_sequence<Params::count>());
    }

private:
    Callable m_callable;
};

/// A handler that takes the arguments as the sender packed them, whatever they are.
struct ZT_EXPORT ArrayHandler : DescribedHandler {
    static constexpr bool takesArray = true;

    using DescribedHandler::DescribedHandler;
    virtual void invokeWith(const ZTArgumentArray& arguments) = 0;

    [[nodiscard]] bool isMemberFunction() const final;
    [[nodiscard]] bool isComparable() const final;
    [[nodiscard]] bool equals(void* key) const final;
    void invoke(const ZTBase* subscriber, void* result, void** arguments) final;
};

template <class Callable>
class ArrayCallableHandler final : public ArrayHandler
{
public:
    explicit ArrayCallableHandler(Callable callable)
        : ArrayHandler(handlerDescription<ArrayCallableHandler, Callable, Parameters<>>),
          m_callable(std::move(callable))
    {}
    void invokeWith(const ZTArgumentArray& arguments) override
    {
        Call running(*this);
        m_callable(arguments);
    }

private:
    Callable m_callable;
};
} // namespace zt::detail
