#include "world.h"

#include <algorithm>

// A listener says nothing when it records. So a handler stands in front of it that hears the same:
// no code of the host runs between the two.

namespace stress
{
void World::record(const Operands& o)
{
    Body* sender = bodyIn(o[1]);
    Event event = eventIn(o[1], o[2]);
    if (m_isClosing || soulIn(o[1]) == none || (event < Event::Destroyed && !wholeBodyIn(o[1])))
        return;
    Recorder made;
    made.twin = m_model.subscribe({sender->soul, none, event, Kind::Twin, 0});
    ZTSubscription handle;
    Outcome outcome = library([&] {
        handle = subscribe(made.twin, o[1], nobody, Cargo());
        made.listener = std::make_unique<ZTEventListener>(objectIn(o[1]), eventOf(o[1], event));
    });
    m_handles[made.twin] = handle;
    if (outcome != Outcome::Done)
        return endRecorder(made);
    if (made.listener->valid() != bool(handle))
        mismatch("a listener tells wrongly whether it hears");
    m_model.subscriptions.at(made.twin).isAlive = bool(handle);
    std::swap(made, m_recorders[std::size_t(o[0])]);
    endRecorder(made);
}

void World::stopRecording(const Operands& o)
{
    Recorder ended = std::exchange(m_recorders[std::size_t(o[0])], {});
    endRecorder(ended);
}

void World::endRecorder(Recorder& recorder)
{
    if (recorder.twin == none)
        return;
    endInModel(recorder.twin);
    ZTBase::unsubscribe(m_handles[recorder.twin]);
    library([&] { recorder.listener.reset(); });
}

std::vector<int> World::recordedBy(const Recorder& recorder) const
{
    std::vector<int> numbers;
    if (recorder.listener)
        for (const auto& arguments : *recorder.listener)
            numbers.push_back(numberIn(arguments.at(0)));
    return numbers;
}

/// All records, or one of them.
void World::forget(const Operands& o)
{
    Recorder& recorder = m_recorders[std::size_t(o[0])];
    if (!recorder.listener)
        return;
    std::vector<int> recorded = recordedBy(recorder);
    auto index = unsigned(o[1] - 1) / 2; // early ones more often
    bool isThere = index < recorded.size();
    if (o[1] > 0)
        recorded = isThere ? std::vector{recorded[index]} : std::vector<int>();
    for (int number : recorded) // others may be on their way
        recorder.heard.erase(std::find(recorder.heard.begin(), recorder.heard.end(), number));
    bool isRemoved = isThere;
    Outcome outcome = library([&] {
        if (o[1] > 0)
            isRemoved = recorder.listener->remove(index);
        else
            recorder.listener->clear();
    });
    if (outcome == Outcome::Done && isRemoved != isThere)
        mismatch("a listener answers wrongly whether it has removed a record");
}

std::string World::differencesOfRecorders()
{
    for (const Recorder& recorder : m_recorders) {
        if (!recorder.listener)
            continue;
        const Subscription& twin = m_model.subscriptions.at(recorder.twin);
        bool isBusy =
            std::any_of(m_model.frames.begin(), m_model.frames.end(), [&](const Frame& frame) {
                return frame.sender == twin.sender && frame.event == twin.event;
            });
        std::vector<int> heard = recorder.heard, recorded = recordedBy(recorder);
        std::sort(heard.begin(), heard.end()); // a delivery within another one ends first
        std::sort(recorded.begin(), recorded.end());
        if (!isBusy && heard != recorded)
            return "a listener has recorded something else than was raised";
    }
    return "";
}

void World::monitor(const Operands& o)
{
    m_monitor.reset();
    if (o[0] % 2 == 1)
        library([&] { m_monitor.emplace([](const ZTMonitoredDelivery&) {}); });
}
} // namespace stress
