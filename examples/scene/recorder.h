#pragma once

#include "names.h"
#include "scene.h"

#include <zintar/eventlistener.h>

#include <deque>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace scene
{
/// Records events of a scene from its making on.
class Recorder
{
public:
    /// @param events  each PATH.EVENT, where PATH is the name of an object, alone or with those of
    ///                the objects above it: "shop/lathe.stopped". What is not there is a `Mistake`.
    Recorder(const std::vector<std::string>& events, const Scene& scene, const Names& names);

    /// Nothing when there is nothing to record.
    void print(std::ostream& out) const;

private:
    const Names& m_names;
    std::deque<std::pair<std::string, ZTEventListener>> m_recordings; ///< with their titles
};
} // namespace scene
