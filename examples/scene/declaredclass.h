#pragma once

#include "jsonfile.h"

#include <zintar/metaclassbuilder.h>

#include <memory>
#include <string_view>

/// @file
/// A declared class says all of itself in its descriptor, so that the stream form of the class is
/// all that has to be saved of it. What the library has no place for is an annotation: the start
/// value of a property, under "start", and what a method does, under "method NAME", both as the
/// text that a scene file has for them.

namespace scene
{
inline constexpr std::string_view startKey = "start";
inline constexpr std::string_view methodKey = "method ";

/// Checks a class that has no functions yet, whether it comes from a scene file or from a stream,
/// and gives it those that its annotations ask for.
/// @param place  of the class in its file; what is wrong with the class is a `Mistake` there
std::unique_ptr<ZTMetaClass> finishClass(ZTMetaClassBuilder& builder, const Node::Place& place);
} // namespace scene
