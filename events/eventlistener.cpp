#include <zintar/eventlistener.h>

#include <zintar/dynamicbase.h>
#include <zintar/metaclassbuilder.h>

#include <algorithm>
#include <memory>
#include <utility>

/// The subscriber of a listener: an object of a class that the library makes with its own
/// builders. Its one method takes no parameters, which is why it fits every event; what it records
/// it reads from the argument array.
struct ZTEventListenerPrivate final : ZTDynamicBase {
    ZTEventListenerPrivate() { initializeMetaClass(handler().listenerClass.get()); }

    struct Handler {
        std::unique_ptr<ZTMetaClass> listenerClass;
        const ZTMetaInvokable* invokable = nullptr;
    };
    /// Made by the first listener; lives until the process ends.
    static const Handler& handler();

    bool valid = false;
    std::vector<std::vector<ZTVariant>> events;

private:
    static ZTVariant record(const ZTVariant& object, const ZTArgumentArray& arguments);
};

const ZTEventListenerPrivate::Handler& ZTEventListenerPrivate::handler()
{
    static const Handler handler = [] {
        ZTMetaClassBuilder builder;
        builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
        builder.setTypeName("ZTEventListenerPrivate");
        auto* function = &ZTEventListenerPrivate::record;
        auto invokable = builder.addInvokable();
        invokable.setName("eventHandler");
        invokable.setFunction(zt::detail::InvokableFunction(function), &function);
        Handler made;
        made.listenerClass.reset(builder.toMetaClass());
        made.invokable = made.listenerClass->invokable<void()>("eventHandler");
        return made;
    }();
    return handler;
}

ZTVariant ZTEventListenerPrivate::record(const ZTVariant& object, const ZTArgumentArray& arguments)
{
    auto* listener = ztVariantValue<ZTEventListenerPrivate*>(object);
    const ZTMetaInvokable* event = listener ? listener->activeEvent() : nullptr;
    if (!event)
        return {};
    unsigned int supplied = std::min(event->parameterCount(), ZTMetaInvokable::MaxParamCount);
    listener->events.emplace_back(arguments.begin(), arguments.begin() + supplied);
    return {};
}

ZTEventListener::ZTEventListener(ZTBase* sender, const ZTMetaInvokable* event)
    : priv(new ZTEventListenerPrivate)
{
    if (sender && event)
        priv->valid = bool(
            ZTBase::subscribe(sender, event, priv, ZTEventListenerPrivate::handler().invokable));
}

ZTEventListener::~ZTEventListener() { delete priv; }

std::vector<ZTVariant> ZTEventListener::at(unsigned int index) const
{
    return index < priv->events.size() ? priv->events[index] : std::vector<ZTVariant>();
}

int ZTEventListener::count() const { return static_cast<int>(priv->events.size()); }

void ZTEventListener::clear() { priv->events.clear(); }

bool ZTEventListener::remove(unsigned int index)
{
    if (index >= priv->events.size())
        return false;
    priv->events.erase(priv->events.begin() + index);
    return true;
}

bool ZTEventListener::valid() const { return priv->valid; }

const std::vector<std::vector<ZTVariant>>& ZTEventListener::records() const { return priv->events; }

std::vector<ZTVariant> ZTEventListener::last() const
{
    return priv->events.empty() ? std::vector<ZTVariant>() : priv->events.back();
}

const ZTVariant& ZTEventListener::argumentAt(unsigned int index, unsigned int position) const
{
    static const ZTVariant none;
    bool there = index < priv->events.size() && position < priv->events[index].size();
    return there ? priv->events[index][position] : none;
}
