#pragma once

#include "measure.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

/// The order in which receivers die: that of their subscribing, or a random one that is the same
/// in each run and for each library.
inline std::vector<std::size_t> orderOfDeath(std::size_t count, bool random)
{
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    if (random)
        std::shuffle(order.begin(), order.end(), std::mt19937(20));
    return order;
}

/// Measures subscribing `count` receivers to one sender and destroying them one by one. Making them
/// is not measured.
template <class Receiver, class Subscribe>
void liveAndDie(benchmark::State& state, std::size_t count, bool random, Subscribe subscribe)
{
    using Receivers = std::vector<std::unique_ptr<Receiver>>;
    const auto order = orderOfDeath(count, random);
    measure(
        state,
        [&] {
            Receivers receivers;
            receivers.reserve(count);
            for (std::size_t i = 0; i < count; ++i)
                receivers.push_back(std::make_unique<Receiver>());
            return receivers;
        },
        [&](Receivers& receivers) {
            for (auto& receiver : receivers)
                subscribe(*receiver);
            for (std::size_t i : order)
                receivers[i].reset();
        });
}
