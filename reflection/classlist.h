#pragma once

#include <zintar/metaclass.h>

#include <memory>
#include <mutex>
#include <string_view>

/// @file
/// How classes get into the list that `ztClass` looks into.

namespace zt::detail
{
struct ListedClass;
struct ClassName;

/// A declared class on its way into the list. It takes the memory, so that `enter` cannot fail, and
/// keeps other declared classes out meanwhile.
class ClassListing
{
public:
    explicit ClassListing(const ZTMetaClass& metaClass);
    ClassListing(const ClassListing&) = delete;
    ClassListing& operator=(const ClassListing&) = delete;
    ~ClassListing();

    void enter() noexcept;
    /// Tells in the log what there is to tell, which may run code of the host. Ends the listing.
    void tell();

private:
    void addName(std::string_view text, bool isFull);

    const ZTMetaClass& m_class;
    std::string_view m_spelled;
    std::unique_lock<std::mutex> m_lock;
    std::unique_ptr<ListedClass> m_listed;
    /// The names to be entered, a list by `next`.
    std::unique_ptr<ClassName> m_names;
    bool m_isSecond = false; ///< another class has the full name already
};

/// A class made at run time enters the list; may throw, and changes nothing then.
void listRuntimeClass(const ZTMetaClass& metaClass);
void unlistRuntimeClass(const ZTMetaClass& metaClass) noexcept;

/// The declared class of that name, or null, as `ztClass` finds it.
[[nodiscard]] const ZTMetaClass* declaredClassNamed(std::string_view name);
} // namespace zt::detail
