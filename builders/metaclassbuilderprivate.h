#pragma once

#include "../reflection/dynamicmetaclass.h"

#include <memory>

struct ZTMetaClassBuilderPrivate {
    /// The class under construction; in it nothing stores a position.
    std::unique_ptr<ZTDynamicMetaClass> metaClass;
};
