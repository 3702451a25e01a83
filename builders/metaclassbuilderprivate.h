#pragma once

#include "../reflection/dynamicmetaclass.h"

#include <atomic>
#include <cstdint>
#include <memory>

struct ZTMetaClassBuilderPrivate {
    /// The class under construction; in it nothing stores a position.
    std::unique_ptr<ZTDynamicMetaClass> metaClass = std::make_unique<ZTDynamicMetaClass>();
    /// Tells builders apart, also from a dead one at the same address. Never 0.
    std::uint64_t identity = ++lastIdentity;

private:
    inline static std::atomic<std::uint64_t> lastIdentity = 0;
};
