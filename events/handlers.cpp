#include "handlers.h"

#include <memory>

namespace zt::detail
{
namespace
{
constexpr HandlerKind kindOf(bool isKept)
{
    HandlerKind kind;
    kind.isKept = isKept;
    return kind;
}
} // namespace

constinit const HandlerKind invokableHandlers = kindOf(false);
constinit const HandlerKind foreignHandlers = kindOf(true);

ZTHandlerBase::~ZTHandlerBase() = default;

KeptHandler::~KeptHandler() = default;

void KeptHandler::end()
{
    if (m_running > 0)
        m_ended = true;
    else
        delete this;
}

Handler::Handler(ZTHandlerBase* foreign)
{
    std::unique_ptr<ZTHandlerBase> owned(foreign);
    if (!owned)
        return;
    word = reinterpret_cast<std::uintptr_t>(
        static_cast<KeptHandler*>(new ForeignHandler(std::move(owned))));
    kind = &foreignHandlers;
}

unsigned int HandlerView::parameterCount() const
{
    if (isInvokable(handler))
        return invokableOf(handler).parameterCount();
    return isForeign(handler) ? foreignOf(handler).parameterCount() : handler.kind->parameterCount;
}

const ZTMetaType& HandlerView::parameterMetaType(unsigned int index) const
{
    if (isInvokable(handler))
        return invokableOf(handler).parameterMetaType(index);
    return isForeign(handler) ? foreignOf(handler).parameterMetaType(index)
                              : handler.kind->types[index]();
}

bool HandlerView::isMemberFunction() const
{
    return isForeign(handler) ? foreignOf(handler).isMemberFunction()
                              : handler.kind->isMemberFunction;
}

std::string HandlerView::title() const
{
    if (isInvokable(handler))
        return "handler " + std::string(invokableOf(handler).name());
    return "handler type " +
           std::string(isForeign(handler) ? foreignOf(handler).typeName() : handler.kind->name);
}

bool HandlerView::equals(const HandlerKey& key) const
{
    if (isForeign(handler))
        return foreignOf(handler).isComparable() &&
               foreignOf(handler).equals(const_cast<HandlerKey*>(&key));
    const HandlerKind& kind = *handler.kind;
    if (!kind.type || *kind.type != key.type)
        return false;
    return kind.equals ? kind.equals(handler.word, key.function)
                       : key.isWord && key.word == handler.word;
}
} // namespace zt::detail
