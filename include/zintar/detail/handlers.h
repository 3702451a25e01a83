#pragma once

#include <zintar/detail/blocks.h>
#include <zintar/detail/handlerbase.h>
#include <zintar/detail/signature.h>
#include <zintar/detail/words.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

/// @file
/// The handlers that the subscribe templates make: a member function on its receiver, or a
/// callable.
///
/// 1. A handler is a word, and a table that tells what to do with words of its kind. A function,
///    and nearly every member function, is the word itself; whatever else there is to call is kept
///    in a block.
/// 2. A handler ends with its subscription, which the handler itself may bring about while it runs.
/// 3. What it called stays alive until the call returns: the deletion of a kept handler that runs
///    is put off to the end of the outermost call.

namespace zt::detail
{
/// Denotes a handler in an unsubscribe.
struct HandlerKey {
    const std::type_info& type;
    const void* function; ///< one of that type
    std::uintptr_t word;
    bool isWord; ///< the word is all of it
};

/// What all handlers of one kind have in common.
struct HandlerKind {
    std::string_view name; ///< of what they call, for messages
    const TypeGetter* types = nullptr;
    unsigned int parameterCount = 0;
    bool isMemberFunction = false;
    bool takesArray = false; ///< the `ZTArgumentArray` in place of the values
    bool isKept = false;     ///< the word is the address of a `KeptHandler`
    /// @param receiver  null unless there is a subscriber
    /// @param values    the address of an array of addresses, those of the event's values, of which
    ///                  one is null where the sender gave no fitting value; or of the array
    void (*call)(std::uintptr_t word, const ZTBase* receiver, const void* values) = nullptr;
    /// What a handler can be found by; null where it cannot be.
    const std::type_info* type = nullptr;
    /// Whether a kept handler calls this function, which is one of that type.
    bool (*equals)(std::uintptr_t word, const void* function) = nullptr;
};

/// What a subscription calls. A mere value: whoever has it sees to its end.
struct Handler {
    Handler() = default;
    Handler(const HandlerKind& handlers, std::uintptr_t one) noexcept : kind(&handlers), word(one)
    {}
    /// Owns a handler that a host wrote; none for null.
    ZT_EXPORT Handler(ZTHandlerBase* foreign);

    explicit operator bool() const noexcept { return kind != nullptr; }

    const HandlerKind* kind = nullptr;
    std::uintptr_t word = 0;
};

/// A handler in a block of its own, which can be ended while it runs.
struct ZT_EXPORT KeptHandler : InBlocks {
    KeptHandler() = default;
    KeptHandler(const KeptHandler&) = delete;
    KeptHandler& operator=(const KeptHandler&) = delete;
    virtual ~KeptHandler();
    /// Deletes the handler, when it is not running any more.
    void end();

    /// Marks a handler as running.
    class Call
    {
    public:
        explicit Call(KeptHandler& handler) noexcept : m_handler(handler) { ++handler.m_running; }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;
        ~Call()
        {
            if (--m_handler.m_running == 0 && m_handler.m_ended)
                delete &m_handler;
        }

    private:
        KeptHandler& m_handler;
    };

private:
    friend class ::ZTLetGo;

    /// Among the handlers whose subscriptions one operation has ended.
    KeptHandler* m_nextEnded = nullptr;
    unsigned int m_running = 0;
    bool m_ended = false;
};

template <class Function>
struct Kept final : KeptHandler {
    explicit Kept(Function kept) : function(std::move(kept)) {}

    static Kept& at(std::uintptr_t word) { return *pointerIn<Kept>(word); }
    static std::uintptr_t wordOf(Function kept)
    {
        return reinterpret_cast<std::uintptr_t>(
            static_cast<KeptHandler*>(new Kept(std::move(kept))));
    }
    static bool equals(std::uintptr_t word, const void* other)
    {
        return at(word).function == *static_cast<const Function*>(other);
    }

    Function function;
};

/// Tells whether the word is all that there is of a function or member function. Of a member
/// function it is, as long as the function needs no other address than the object's.
template <class Function>
bool isAllInWord(const Function& function, std::uintptr_t& word)
{
    std::uintptr_t words[2] = {0, 0};
    if constexpr (sizeof(Function) <= sizeof(words))
        std::memcpy(words, &function, sizeof(Function));
    word = words[0];
    return sizeof(Function) <= sizeof(words) && words[1] == 0;
}

template <class Function>
Function fromWord(std::uintptr_t word)
{
    const std::uintptr_t words[2] = {word, 0};
    Function function;
    std::memcpy(&function, words, sizeof(Function));
    return function;
}

template <class Function>
HandlerKey keyOf(const Function& function)
{
    std::uintptr_t word = 0;
    const bool isWord = isAllInWord(function, word);
    return {typeid(Function), &function, word, isWord};
}

/// What a handler gets where the sender gave no fitting value. Never destroyed: handlers may run
/// when the process ends.
template <class T>
[[gnu::noinline, gnu::cold]] const T& defaultValue()
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

/// Calls `call` with the arguments at the addresses, all of which there are.
template <class Call, class... P, std::size_t... I>
[[gnu::always_inline]] inline void callWithAll(const Call& call,
                                               [[maybe_unused]] void* const* addresses,
                                               Parameters<P...>, std::index_sequence<I...>)
{
    call(passAs<P>(*static_cast<const Held<P>*>(addresses[I]))...);
}

/// The same where some may be null. Without a value for a parameter that has no default there is
/// no call.
template <class Call, class... P, std::size_t... I>
void callWithSome(const Call& call, [[maybe_unused]] void* const* addresses, Parameters<P...>,
                  std::index_sequence<I...>)
{
    bool complete = ((std::is_default_constructible_v<Held<P>> || addresses[I]) && ...);
    if (complete)
        call(passAs<P>(argumentAt<P>(addresses[I]))...);
}

template <std::size_t... I>
bool areThere([[maybe_unused]] void* const* addresses, std::index_sequence<I...>)
{
    return (addresses[I] && ...);
}

/// The table of virtual functions of the last object that was found to be a `Receiver`.
template <class Receiver>
inline std::atomic<const void*> knownTable = nullptr;

inline const void* tableOf(const void* object)
{
    const void* table;
    std::memcpy(&table, object, sizeof(table));
    return table;
}

/// Whether the object certainly is what the member function needs: its table of virtual functions
/// is that of the last one that was.
template <class Receiver>
bool isKnownReceiver(const void* subscriber)
{
    using Known = std::remove_const_t<Receiver>;
    return std::is_same_v<Known, ZTBase> ||
           tableOf(subscriber) == knownTable<Known>.load(std::memory_order_relaxed);
}

/// Whether it still is: its destruction may have gone further, and a move may leave a part of what
/// it was behind.
template <class Receiver, class Object> // `ZTBase`, which may be incomplete here
bool isReceiver(const Object& subscriber)
{
    using Known = std::remove_const_t<Receiver>;
    if constexpr (!std::is_same_v<Known, ZTBase>) {
        if (!dynamic_cast<const Receiver*>(&subscriber))
            return false;
        knownTable<Known>.store(tableOf(&subscriber), std::memory_order_relaxed);
    }
    return true;
}

/// A member function on its receiver. A copy of it is called, so the handler may go meanwhile.
/// @tparam Params  what the event carries for its parameters
template <class Receiver, class Method, class Params>
struct MemberHandler {
    using Indices = std::make_index_sequence<Params::count>;

    /// What is seldom needed stands apart, so that the common call needs no stack of its own.
    [[gnu::noinline]] static void callOtherwise(Method method, const ZTBase* subscriber,
                                                void* const* addresses)
    {
        if (!isReceiver<Receiver>(*subscriber))
            return;
        auto* receiver = static_cast<Receiver*>(const_cast<ZTBase*>(subscriber));
        callWithSome([&](const auto&... arguments) { (receiver->*method)(arguments...); },
                     addresses, Params{}, Indices());
    }
    [[gnu::always_inline]] static inline void callMethod(Method method, const ZTBase* subscriber,
                                                         const void* values)
    {
        auto* addresses = static_cast<void* const*>(values);
        if (!isKnownReceiver<Receiver>(subscriber) || !areThere(addresses, Indices())) [[unlikely]]
            return callOtherwise(method, subscriber, addresses);
        auto* receiver = static_cast<Receiver*>(const_cast<ZTBase*>(subscriber));
        callWithAll([&](const auto&... arguments) { (receiver->*method)(arguments...); }, addresses,
                    Params{}, Indices());
    }
    static void callWord(std::uintptr_t word, const ZTBase* subscriber, const void* values)
    {
        callMethod(fromWord<Method>(word), subscriber, values);
    }
    static void callKept(std::uintptr_t word, const ZTBase* subscriber, const void* values)
    {
        callMethod(Kept<Method>::at(word).function, subscriber, values);
    }
    static Handler make(Method method)
    {
        std::uintptr_t word = 0;
        return isAllInWord(method, word) ? Handler(inWord, word)
                                         : Handler(kept, Kept<Method>::wordOf(method));
    }

    static constexpr HandlerKind kindOf(bool isKept)
    {
        HandlerKind kind;
        kind.name = ztTypeName<Method>();
        kind.types = Params::types;
        kind.parameterCount = Params::count;
        kind.isMemberFunction = true;
        kind.isKept = isKept;
        kind.call = isKept ? &callKept : &callWord;
        kind.type = &typeid(Method);
        kind.equals = isKept ? &Kept<Method>::equals : nullptr;
        return kind;
    }
    static const HandlerKind inWord;
    static const HandlerKind kept;
};
template <class Receiver, class Method, class Params>
constexpr HandlerKind MemberHandler<Receiver, Method, Params>::inWord = kindOf(false);
template <class Receiver, class Method, class Params>
constexpr HandlerKind MemberHandler<Receiver, Method, Params>::kept = kindOf(true);

template <class Params, class Callable>
void callCallable(Callable& callable, const void* values)
{
    if constexpr (std::is_same_v<Params, ZTArgumentArray>)
        callable(*static_cast<const ZTArgumentArray*>(values));
    else
        callWithSome([&](const auto&... arguments) { callable(arguments...); },
                     static_cast<void* const*>(values), Params{},
                     std::make_index_sequence<Params::count>());
}

/// A callable, on whatever receiver.
/// @tparam Params  what the event carries for its parameters; `ZTArgumentArray` where it takes all
/// that the sender packed, whatever it is
template <class Callable, class Params>
struct CallableHandler {
    static constexpr bool isFunction = std::is_pointer_v<Callable>;
    static constexpr bool takesArray = std::is_same_v<Params, ZTArgumentArray>;

    static void call(std::uintptr_t word, const ZTBase*, const void* values)
    {
        if constexpr (isFunction) {
            callCallable<Params>(*fromWord<Callable>(word), values);
        } else {
            auto& kept = Kept<Callable>::at(word);
            KeptHandler::Call running(kept);
            callCallable<Params>(kept.function, values);
        }
    }
    static Handler make(Callable callable)
    {
        if constexpr (isFunction) {
            std::uintptr_t word = 0;
            (void)isAllInWord(callable, word);
            return Handler(kind, word);
        } else {
            return Handler(kind, Kept<Callable>::wordOf(std::move(callable)));
        }
    }

    static constexpr HandlerKind kindOf()
    {
        HandlerKind made;
        made.name = ztTypeName<Callable>();
        if constexpr (!takesArray) {
            made.types = Params::types;
            made.parameterCount = Params::count;
        }
        made.takesArray = takesArray;
        made.isKept = !isFunction;
        made.call = &call;
        if constexpr (isFunction && !takesArray)
            made.type = &typeid(Callable);
        return made;
    }
    static const HandlerKind kind;
};
template <class Callable, class Params>
constexpr HandlerKind CallableHandler<Callable, Params>::kind = kindOf();
} // namespace zt::detail
