#include <zintar/detail/handlers.h>

namespace zt::detail
{
ZTHandlerBase::~ZTHandlerBase() = default;

void DescribedHandler::end()
{
    if (m_running > 0)
        m_ended = true;
    else
        delete this;
}

std::string_view DescribedHandler::typeName() const { return description->name; }

unsigned int DescribedHandler::parameterCount() const { return description->parameterCount; }

const ZTMetaType& DescribedHandler::parameterMetaType(unsigned int index) const
{
    return description->types[index]();
}

bool ArrayHandler::isMemberFunction() const { return false; }

bool ArrayHandler::isComparable() const { return false; }

bool ArrayHandler::equals(void*) const { return false; }

/// The dispatch hands such a handler the array instead.
void ArrayHandler::invoke(const ZTBase*, void*, void**) {}
} // namespace zt::detail
