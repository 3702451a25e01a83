#include "../checked/sentences.h"
#include "bindingend.h"

#include <zintar/bind.h>
#include <zintar/checked.h>
#include <zintar/log.h>
#include <zintar/shortname.h>

#include <memory>
#include <string>

// A binding is owned by the handlers of its subscriptions, so it ends with them. Code of the host
// runs at each read, conversion and set, and may end the binding and both objects: whoever goes on
// behind it asks the ends for their objects again. The record is there to the end of an update,
// since a handler that runs keeps what it captured, and whoever makes the binding keeps it, too.

using zt::detail::BindingFunction;

struct ZTBindingPrivate : std::enable_shared_from_this<ZTBindingPrivate> {
    ZTBindingPrivate(ZTBindingEnd from, ZTBindingEnd to, zt::detail::BindingOptions given)
        : source(std::move(from)), target(std::move(to)), options(std::move(given))
    {}

    [[nodiscard]] bool isBinding() const { return !hasEnded && source.root() && target.root(); }
    [[nodiscard]] std::string refusal() const;
    void watchSource();
    void watchTarget();
    void moveSource();
    void moveTarget();
    void end();
    void update() { transfer(source, target, options.there); }
    void updateBack() { transfer(target, source, options.back); }

    ZTBindingEnd source;
    ZTBindingEnd target;
    const zt::detail::BindingOptions options;
    bool hasEnded = false;

private:
    [[nodiscard]] std::function<void()> reaction(void (ZTBindingPrivate::*member)());
    void transfer(const ZTBindingEnd& from, const ZTBindingEnd& to,
                  const BindingFunction& function);
    void set(const ZTBindingEnd& to, const ZTVariant& value) const;
    [[nodiscard]] std::string text() const;
    void tell(const std::string& why) const;

    /// How many updates set off by this one are under way.
    int m_depth = 0;
};

namespace
{
/// A circle of bindings that has not come to rest by then never will.
constexpr int mostNested = 16;

/// What the function makes of a value.
/// @param why  why there is no value, or gets why the function does not take it
ZTVariant transformed(ZTVariant value, const BindingFunction& function, std::string& why)
{
    if (why.empty() && function.taken != &::ztMetaType<ZTVariant>()) {
        ZTOutcome<ZTVariant> taken = ztTryConvert(value, *function.taken);
        why = taken.error();
        if (taken)
            value = *std::move(taken);
    }
    return why.empty() ? function.function(value) : ZTVariant();
}

/// Whether a value, in the type of the one that is present, is the same.
bool isThere(const ZTVariant& value, const ZTVariant& present)
{
    if (&value.type() == &present.type())
        return value == present;
    const ZTOutcome<ZTVariant> fitting = ztTryConvert(value, present.type());
    return fitting && *fitting == present;
}

/// Whether values of the one type may become values of the other. The invalid type stands for what
/// is not known.
bool areJoined(const ZTMetaType& from, const ZTMetaType& to)
{
    const ZTMetaType& any = ::ztMetaType<ZTVariant>();
    if (!from || !to || &from == &to || &from == &any || &to == &any || from.canConvert(to))
        return true;
    const ZTMetaClass* a = from.metaClass();
    const ZTMetaClass* b = to.metaClass();
    return a && b && (a->isDerivedFrom(b) || b->isDerivedFrom(a));
}

std::string refusalOfTypes(const ZTMetaType& from, const BindingFunction& function,
                           const ZTMetaType& to)
{
    const ZTMetaType& taken = function.function ? *function.taken : to;
    if (!areJoined(from, taken))
        return "no converter makes a " + ztShortName(taken) + " of a " + ztShortName(from);
    if (function.function && !areJoined(*function.given, to))
        return "no converter makes a " + ztShortName(to) + " of a " + ztShortName(*function.given);
    return {};
}
} // namespace

std::string ZTBindingPrivate::refusal() const
{
    const ZTMetaType* from = nullptr;
    const ZTMetaType* to = nullptr;
    std::string why = source.refusal(true, options.isBothWays, from);
    if (why.empty())
        why = target.refusal(options.isBothWays, true, to);
    if (why.empty() && options.isBothWays &&
        bool(options.there.function) != bool(options.back.function))
        why = "a transformation both ways needs one back";
    if (why.empty())
        why = refusalOfTypes(*from, options.there, *to);
    if (why.empty() && options.isBothWays)
        why = refusalOfTypes(*to, options.back, *from);
    return why;
}

std::string ZTBindingPrivate::text() const
{
    const auto name = [](const ZTBindingEnd& end) {
        const ZTBase* holder = end.holder();
        return holder ? zt::detail::memberName(*holder->metaClass(), end.name()) : end.name();
    };
    return "The binding of " + name(target) + " to " + name(source);
}

void ZTBindingPrivate::tell(const std::string& why) const
{
    ztLog("Zintar Warning: " + text() + ": " + why, ZTLogType::Warning);
}

/// What happens then, if the binding is still there.
std::function<void()> ZTBindingPrivate::reaction(void (ZTBindingPrivate::*member)())
{
    return [self = shared_from_this(), member] {
        if (self->isBinding())
            ((*self).*member)();
        else
            self->end();
    };
}

void ZTBindingPrivate::watchSource()
{
    source.watch(target.root(),
                 {reaction(&ZTBindingPrivate::moveSource), reaction(&ZTBindingPrivate::update)});
}

void ZTBindingPrivate::watchTarget()
{
    target.watch(source.root(),
                 {reaction(&ZTBindingPrivate::moveTarget),
                  options.isBothWays ? reaction(&ZTBindingPrivate::updateBack) : nullptr});
}

void ZTBindingPrivate::moveSource()
{
    watchSource();
    update();
}

/// Another object takes the value that there is.
void ZTBindingPrivate::moveTarget()
{
    watchTarget();
    update();
}

void ZTBindingPrivate::end()
{
    const auto kept = shared_from_this();
    hasEnded = true;
    source.unwatch();
    target.unwatch();
}

void ZTBindingPrivate::transfer(const ZTBindingEnd& from, const ZTBindingEnd& to,
                                const BindingFunction& function)
{
    if (!from.holder() || !to.holder())
        return;
    if (m_depth == mostNested) {
        ztLog("Zintar Warning: " + text() + " does not come to rest, and is stopped.",
              ZTLogType::Warning);
        return;
    }
    struct Nested {
        explicit Nested(int& count) : depth(++count) {}
        ~Nested() { --depth; }
        int& depth;
    } nested(m_depth);
    std::string why;
    const ZTVariant value =
        function.function ? transformed(from.value(why), function, why) : from.value(why);
    if (!why.empty())
        tell(why);
    else if (isBinding())
        set(to, value);
}

void ZTBindingPrivate::set(const ZTBindingEnd& to, const ZTVariant& value) const
{
    if (!to.holder())
        return;
    std::string why;
    const ZTVariant present = to.value(why);
    if ((why.empty() && isThere(value, present)) || !isBinding() || !to.holder())
        return;
    why = to.set(value);
    if (!why.empty())
        tell(why);
}

ZTBinding::operator bool() const noexcept
{
    const auto record = m_record.lock();
    return record && record->isBinding();
}

void ZTBinding::end()
{
    if (const auto record = m_record.lock())
        record->end();
}

ZTOutcome<ZTBinding> zt::detail::bind(ZTBase* source, std::string_view sourcePath, ZTBase* target,
                                      std::string_view targetPath, BindingOptions options)
{
    const auto record = std::make_shared<ZTBindingPrivate>(
        ZTBindingEnd(source, sourcePath), ZTBindingEnd(target, targetPath), std::move(options));
    std::string why = record->refusal();
    if (!why.empty())
        return ZTOutcome<ZTBinding>::failure(std::move(why));
    try {
        record->watchSource();
        record->watchTarget();
        record->update();
    } catch (...) {
        record->end();
        throw;
    }
    return ZTBinding(record);
}

std::vector<ZTSubscription> zt::detail::subscribeToChanges(const ZTBase* object,
                                                           const ZTBase* receiver,
                                                           ChangeFunction function)
{
    std::vector<ZTSubscription> made;
    if (!object || !receiver || !function)
        return made;
    const auto shared = std::make_shared<ChangeFunction>(std::move(function));
    const ZTMetaClass& metaClass = *object->metaClass();
    made.reserve(metaClass.propertyCount() + 1);
    try {
        for (unsigned int i = 0; i < metaClass.propertyCount(); ++i) {
            const ZTMetaProperty* property = metaClass.property(i);
            if (const ZTMetaInvokable* event = property->changeEvent())
                made.push_back(ZTBase::subscribe(object, event, receiver, [shared, property] {
                    const ZTBase* sender = ZTBase::delivery().sender;
                    (*shared)(property->name(), property->get(sender));
                }));
        }
        made.push_back(ZTBase::subscribe(
            object, &ZTBase::dynamicPropertyChanged, receiver,
            [shared](const std::string& name, const ZTVariant& value) { (*shared)(name, value); }));
    } catch (...) {
        for (const ZTSubscription& one : made)
            ZTBase::unsubscribe(one);
        throw;
    }
    return made;
}
