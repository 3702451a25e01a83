#pragma once

#include <zintar/export.h>

#include <string>

/// What a line is: the default writes each to the stream that belongs to it.
enum class ZTLogType : int {
    Info = 0,    ///< standard output
    Warning = 1, ///< standard error
    Error = 2,   ///< standard error
};

/// Hands `message` to the log handler that was set last (`loghandler.h`); where there is none,
/// writes it and a line end to the stream that `type` selects.
///
/// This is the one channel through which the library speaks to a person. There is no threshold and
/// no filter.
/// @param message  the whole line with its own head ("Zintar: ", ...); nothing is put in front
/// @param type     any other value than the three drops the message and reports the value itself,
///                 as an error
/// Threads: any. Without a handler it takes no lock, and lines from several threads interleave as
/// the streams let them.
ZT_EXPORT void ztLog(const std::string& message, ZTLogType type);
