#include <zintar/dynamicbase.h>

// Each emitter is the public member that bears the name of the event.

void ZTBase::destroyed(ZTBase* object) { sendEvent<&ZTBase::destroyed>(object); }

void ZTBase::dynamicPropertyChanged(const std::string& name, const ZTVariant& value)
{
    sendEvent<&ZTBase::dynamicPropertyChanged>(name, value);
}

void ZTBase::childAdded(ZTBase* child) { sendEvent<&ZTBase::childAdded>(child); }

void ZTBase::childRemoved(ZTBase* child) { sendEvent<&ZTBase::childRemoved>(child); }

void ZTDynamicBase::metaClassInitialized(const ZTMetaClass* metaClass)
{
    sendEvent<&ZTDynamicBase::metaClassInitialized>(metaClass);
}
