#pragma once

namespace zt::detail
{
/// How deep values are nested in the one that is being read: variants in variants, and records in
/// containers of their own kind. A damaged stream can nest them as often as it has bytes for, which
/// the call stack must not have to bear.
class NestingDepth
{
public:
    NestingDepth() { ++depth; }
    NestingDepth(const NestingDepth&) = delete;
    NestingDepth& operator=(const NestingDepth&) = delete;
    ~NestingDepth() { --depth; }
    [[nodiscard]] static bool isTooDeep() { return depth > limit; }

private:
    static constexpr int limit = 500;
    [[gnu::tls_model("initial-exec")]] inline static thread_local int depth = 0;
};
} // namespace zt::detail
