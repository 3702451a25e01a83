#include <zintar/eventlistener.h>

#include <zintar/detail/lifewatch.h>
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

    using Record = std::vector<ZTVariant>;

    bool valid = false;
    std::vector<Record> events;
    /// Of which event each record is.
    std::vector<const ZTMetaInvokable*> kinds;

private:
    static ZTVariant record(const ZTVariant& object, const ZTArgumentArray& arguments);
};

const ZTEventListenerPrivate::Handler& ZTEventListenerPrivate::handler()
{
    static const auto& handler = *[] {
        ZTMetaClassBuilder builder;
        builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
        builder.setTypeName("ZTEventListenerPrivate");
        auto* function = &ZTEventListenerPrivate::record;
        auto invokable = builder.addInvokable();
        invokable.setName("eventHandler");
        invokable.setFunction(zt::detail::InvokableFunction(function), &function);
        auto made = std::make_unique<Handler>();
        made->listenerClass.reset(builder.toMetaClass());
        made->invokable = made->listenerClass->invokable<void()>("eventHandler");
        return made.release(); // a listener may die at exit
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
    const ZTLifeWatch watch(listener);
    Record copies(arguments.begin(), arguments.begin() + supplied);
    if (!watch)
        return {};
    // One more than there are records is left behind when memory ends between the two.
    listener->kinds.resize(listener->events.size());
    listener->kinds.push_back(event);
    listener->events.push_back(std::move(copies));
    return {};
}

ZTEventListener::ZTEventListener(ZTBase* sender, const ZTMetaInvokable* event) : priv(nullptr)
{
    auto made = std::make_unique<ZTEventListenerPrivate>();
    if (sender && event)
        made->valid = bool(ZTBase::subscribe(sender, event, made.get(),
                                             ZTEventListenerPrivate::handler().invokable));
    priv = made.release();
}

ZTEventListener::ZTEventListener(ZTBase* sender) : priv(nullptr)
{
    auto made = std::make_unique<ZTEventListenerPrivate>();
    const ZTMetaClass* senderClass = sender ? sender->metaClass() : nullptr;
    const unsigned int count = senderClass ? senderClass->invokableCount() : 0;
    for (unsigned int i = 0; i < count; ++i)
        if (const ZTMetaInvokable* event = senderClass->invokable(i); event && event->isEvent())
            made->valid |= bool(ZTBase::subscribe(sender, event, made.get(),
                                                  ZTEventListenerPrivate::handler().invokable));
    priv = made.release();
}

ZTEventListener::~ZTEventListener()
{
    const auto records = std::move(priv->events); // the last to go
    delete priv;
}

std::vector<ZTVariant> ZTEventListener::at(unsigned int index) const
{
    return index < priv->events.size() ? priv->events[index] : std::vector<ZTVariant>();
}

const ZTMetaInvokable* ZTEventListener::eventAt(unsigned int index) const
{
    return index < priv->events.size() ? priv->kinds[index] : nullptr;
}

int ZTEventListener::count() const { return static_cast<int>(priv->events.size()); }

void ZTEventListener::clear()
{
    priv->kinds.clear();
    std::vector<std::vector<ZTVariant>>().swap(priv->events);
}

bool ZTEventListener::remove(unsigned int index)
{
    if (index >= priv->events.size())
        return false;
    const std::vector<ZTVariant> removed = std::move(priv->events[index]); // the last to go
    priv->events.erase(priv->events.begin() + index);
    priv->kinds.erase(priv->kinds.begin() + index);
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
    static const auto& none = *new ZTVariant();
    bool there = index < priv->events.size() && position < priv->events[index].size();
    return there ? priv->events[index][position] : none;
}
