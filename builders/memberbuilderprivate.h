#pragma once

#include "../reflection/dynamicmetaclass.h"

#include <cstdint>
#include <memory>

struct ZTMetaClassInfoBuilderPrivate {
    std::shared_ptr<ZTDynamicMetaClassInfo> descriptor;
};

struct ZTMetaEnumBuilderPrivate {
    std::shared_ptr<ZTDynamicMetaEnum> descriptor;
};

// `builderIdentity` tells whether a property and an invokable belong to one class builder; it is 0
// in a detached handle.
struct ZTMetaInvokableBuilderPrivate {
    std::shared_ptr<ZTDynamicMetaInvokable> descriptor;
    std::uint64_t builderIdentity;
};

struct ZTMetaPropertyBuilderPrivate {
    std::shared_ptr<ZTDynamicMetaProperty> descriptor;
    std::uint64_t builderIdentity;
};
