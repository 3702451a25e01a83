#pragma once

#include "../reflection/dynamicmetaclass.h"

#include <memory>

class ZTMetaClassBuilder;

struct ZTMetaClassInfoBuilderPrivate {
    std::shared_ptr<ZTDynamicMetaClassInfo> descriptor;
};

struct ZTMetaEnumBuilderPrivate {
    std::shared_ptr<ZTDynamicMetaEnum> descriptor;
};

// `classBuilder` is an identity: it tells whether a property and an invokable belong together.
struct ZTMetaInvokableBuilderPrivate {
    std::shared_ptr<ZTDynamicMetaInvokable> descriptor;
    ZTMetaClassBuilder* classBuilder;
};

struct ZTMetaPropertyBuilderPrivate {
    std::shared_ptr<ZTDynamicMetaProperty> descriptor;
    ZTMetaClassBuilder* classBuilder;
};
