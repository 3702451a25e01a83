#include <zintar/find.h>

#include <zintar/detail/lifewatch.h>
#include <zintar/typedvalue.h>

std::string ztObjectName(const ZTBase* object)
{
    if (!object)
        return {};
    const ZTVariant name = object->property("name");
    const auto* text = ztVariantPointer<std::string>(name);
    return text ? *text : std::string();
}

ZTBase* ztFind(ZTBase* root, std::string_view path)
{
    if (!root || path.empty())
        return root;
    const std::size_t end = path.find('/');
    const std::string_view name = path.substr(0, end);
    const ZTLifeWatch watch(root); // a getter is code of the host
    for (std::size_t i = 0; watch.isStill(root) && i < root->children().size(); ++i) {
        ZTBase* child = root->children()[i];
        const ZTLifeWatch watchedChild(child);
        if (ztObjectName(child) == name && watchedChild.isStill(child))
            return end == std::string_view::npos ? child : ztFind(child, path.substr(end + 1));
    }
    return nullptr;
}
