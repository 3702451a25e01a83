#pragma once

#include "names.h"
#include "plan.h"
#include "trace.h"

#include <zintar/base.h>
#include <zintar/subscription.h>

#include <functional>
#include <string>
#include <vector>

namespace scene
{
/// The first object below `top` that is meant, else null.
ZTBase* findBelow(const ZTBase& top, const std::function<bool(const ZTBase*)>& isMeant);

/// The living objects of a plan, and the connections between them.
class Scene
{
public:
    /// Makes the objects, sets their properties, and connects them last: making the tree is told
    /// by nobody. The plan must outlive the scene.
    Scene(const ScenePlan& plan, Names& names, Trace& trace);

    /// Has no name and no class of its own; the root of the file's tree is below it.
    const ZTBase& top() const { return m_top; }
    /// Null when no such object is in the tree any more.
    ZTBase* find(const std::string& name) const;

private:
    void build(const ObjectPlan& plan, ZTBase* parent);
    void connect(const ConnectionPlan& plan, Trace& trace);

    Names& m_names;
    ZTBase m_top;
    // Behind the objects, so that the connections end before the tree is taken down.
    std::vector<ZTScopedSubscription> m_subscriptions;
};
} // namespace scene
