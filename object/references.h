#pragma once

#include <zintar/fwd.h>

/// The control blocks of the references to an object; null while there are none. They are not
/// owned: a block lives for its references.
struct ZTReferences {
    [[nodiscard]] bool areNone() const { return !refImpl && !strongRefImpl; }
    /// From here on weak references read null.
    void clearWeak();
    /// Whether there are any, which is then to be told.
    bool clearStrong();
    static void warnOfHeldObject();
    void pointTo(ZTBase* newObject);

    zt::detail::ZTRefImpl* refImpl = nullptr;
    zt::detail::ZTStrongRefImpl* strongRefImpl = nullptr;
};
