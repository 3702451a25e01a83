#pragma once

#include <zintar/fwd.h>
#include <zintar/metaclass.h>

#include <vector>

struct ZTEventValues;
class ZTExtras;

/// The change events of one object that are held back. They are there as long as a hold is.
class ZTHeldChanges
{
public:
    struct Change {
        int index;      ///< of the event, class-wide
        bool bringsOld; ///< whether the second value is the one before the change
        bool isDynamic; ///< whether the first value is the name of the property
        ZTArgumentArray values;
    };

    /// A hold begins. May throw, and changes nothing then.
    static void enter(ZTExtras& extras);
    /// A hold ends.
    /// @return what is to be sent; nothing while another one lasts
    [[nodiscard]] static std::vector<Change> leave(ZTExtras& extras);

    /// Keeps an event for later, if it is one that is held back. Runs code of the host, which may
    /// end the sender.
    /// @return whether nothing is left to be done
    static bool keep(ZTBasePrivate& sender, int index, ZTEventValues&& values);

private:
    void add(Change& change);

    int m_holds = 1;
    std::vector<Change> m_changes;
};
