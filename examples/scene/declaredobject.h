#pragma once

#include <zintar/dynamicbase.h>
#include <zintar/variant.h>

#include <map>
#include <string>

namespace scene
{
/// What an object of a declared class keeps beside what its host class keeps: the values of the
/// declared properties that were ever set.
class DeclaredValues
{
public:
    virtual ~DeclaredValues() = default;

    std::map<std::string, ZTVariant, std::less<>> values;
};

/// An object of a host class that answers by a class from the file.
template <class HostClass>
class DeclaredObject : public HostClass, public DeclaredValues
{
public:
    /// @param declared  must outlive the object
    explicit DeclaredObject(const ZTMetaClass& declared)
    {
        HostClass::initializeMetaClass(&declared);
    }
};
} // namespace scene
