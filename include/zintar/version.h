#pragma once

/// @file
/// The version of the library; the build reads it from here.

#define ZT_VERSION_MAJOR 0
#define ZT_VERSION_MINOR 1
#define ZT_VERSION_PATCH 0
