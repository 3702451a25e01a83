#pragma once

#include "membersbyname.h"
#include "partinfos.h"
#include "storedproperty.h"

#include <zintar/metaclass.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

/// @file
/// The descriptors of a class made at run time. They own their data; the builders, their only
/// clients, fill it in directly. Members are shared between the class and the builder handles that
/// edit them, so a member may outlive its class.

struct ZTDynamicMetaClass;

struct ZTDynamicMetaClassInfo final : ZTMetaClassInfo {
    ZTDynamicMetaClassInfo() = default;
    [[nodiscard]] std::string_view key() const override { return m_key; }
    [[nodiscard]] std::string_view value() const override { return m_value; }

    std::string m_key;
    std::string m_value;
};

struct ZTDynamicMetaEnum final : ZTMetaEnum {
    ZTDynamicMetaEnum() = default;
    [[nodiscard]] std::string_view name() const override { return m_name; }
    [[nodiscard]] unsigned int count() const override;
    [[nodiscard]] std::string_view enumerator(unsigned int index) const override;
    [[nodiscard]] int value(unsigned int index) const override;

    /// Refuses a name or a value that is there already.
    bool add(std::string name, int value);
    void remove(unsigned int index);

    std::string m_name;
    std::vector<std::string> m_enumerators;
    std::vector<int> m_values;
    const ZTMetaType* m_metaType = nullptr;
    bool m_isFlags = false;
    std::vector<zt::detail::OwnPartInfo> m_infos;
};

struct ZTDynamicMetaInvokable final : ZTMetaInvokable {
    using Function = std::function<ZTVariant(const ZTVariant&, const ZTArgumentArray&)>;

    /// What few invokables have. Names are as many as were given; the default arguments are those
    /// of the last parameters.
    struct Details {
        std::vector<std::string> parameterNames;
        std::vector<ZTVariant> defaultArguments;
        std::vector<zt::detail::OwnPartInfo> infos;
    };

    explicit ZTDynamicMetaInvokable(const ZTDynamicMetaClass* owner, std::size_t position = 0)
        : m_index(owner), m_lastPosition(position)
    {}
    [[nodiscard]] std::string_view name() const override { return m_name; }
    [[nodiscard]] bool isConst() const override { return m_isConst; }
    [[nodiscard]] bool isEvent() const override { return m_isEvent; }
    [[nodiscard]] const ZTMetaType& returnMetaType() const override;
    [[nodiscard]] unsigned int parameterCount() const override;
    [[nodiscard]] ZTAccessSpecifier accessSpecifier() const override { return m_access; }
    [[nodiscard]] const ZTMetaType& parameterMetaType(unsigned int index) const override;
    [[nodiscard]] int index() const override;
    using ZTMetaInvokable::invoke;
    ZTVariant invoke(const ZTVariant& object, const ZTArgumentArray& arguments) const override;
    [[nodiscard]] bool isDynamic() const override { return true; }

    /// Made when it is asked for.
    Details& details();

    void freezeIndex(int index) { m_index = index; }
    /// The invokable has left its class, or the class is gone.
    void forgetOwner() { m_index = nullptr; }

    std::string m_name;
    bool m_isConst = false;
    bool m_isEvent = false;
    /// The index in a finished class; until then the class to be searched, or null.
    std::variant<int, const ZTDynamicMetaClass*> m_index;
    /// Where in the class's list it stood last: the first place to look.
    mutable std::size_t m_lastPosition;
    const ZTMetaType* m_returnMetaType = nullptr;
    std::vector<const ZTMetaType*> m_parameterMetaTypes;
    Function m_function;
    void* m_functionKey = nullptr;
    /// In place of a function: a call raises the event on the object.
    bool m_raisesItself = false;
    ZTAccessSpecifier m_access = ZTAccessSpecifier::Private;
    std::unique_ptr<Details> m_details;
};

struct ZTDynamicMetaProperty final : ZTMetaProperty {
    using Getter = std::function<ZTVariant(const ZTVariant&)>;
    using Setter = std::function<ZTVariant(const ZTVariant&, const ZTVariant&)>;

    ZTDynamicMetaProperty() = default;
    [[nodiscard]] std::string_view name() const override { return m_name; }
    [[nodiscard]] const ZTMetaType& metaType() const override;
    [[nodiscard]] int changeEventIndex() const override;
    [[nodiscard]] const ZTMetaInvokable* changeEvent() const override;
    [[nodiscard]] bool canGet() const override { return m_getter || m_read; }
    [[nodiscard]] bool canSet() const override { return m_setter || m_written; }
    [[nodiscard]] unsigned int propInfoCount() const override;
    [[nodiscard]] std::string_view propInfoKey(unsigned int index) const override;
    [[nodiscard]] std::string_view propInfoValue(unsigned int index) const override;
    [[nodiscard]] ZTVariant get(const ZTVariant& object) const override;
    ZTVariant set(const ZTVariant& object, const ZTVariant& value) const override;
    [[nodiscard]] bool isDynamic() const override { return true; }

    std::string m_name;
    std::weak_ptr<ZTDynamicMetaInvokable> m_changeEvent;
    std::vector<std::pair<std::string, std::string>> m_propInfos;
    const ZTMetaType* m_metaType = nullptr;
    /// The accessors that a stored class had and that are not given back yet.
    unsigned char m_accessFlags = 0;
    Getter m_getter;
    Setter m_setter;
    // In place of a getter and a setter: what is read and written is a value in the object.
    std::shared_ptr<const zt::detail::StoredProperty> m_read;
    std::shared_ptr<const zt::detail::StoredProperty> m_written;
};

struct ZTDynamicMetaClass final : ZTMetaClass {
    ZTDynamicMetaClass() = default;
    ~ZTDynamicMetaClass() override;

    [[nodiscard]] const ZTMetaClass* superClass() const override { return m_superClass; }
    [[nodiscard]] std::string_view typeName() const override { return m_typeName; }
    [[nodiscard]] bool isDynamic() const override { return true; }
    [[nodiscard]] unsigned int classInfoOffset() const override { return m_classInfoOffset; }
    [[nodiscard]] unsigned int classInfoCount() const override;
    [[nodiscard]] unsigned int enumOffset() const override { return m_enumOffset; }
    [[nodiscard]] unsigned int enumCount() const override;
    [[nodiscard]] unsigned int propertyOffset() const override { return m_propertyOffset; }
    [[nodiscard]] unsigned int propertyCount() const override;
    [[nodiscard]] unsigned int invokableOffset() const override { return m_invokableOffset; }
    [[nodiscard]] unsigned int invokableCount() const override;
    [[nodiscard]] const ZTMetaClassInfo* classInfo(std::string_view key) const override;
    [[nodiscard]] const ZTMetaClassInfo* classInfo(unsigned int index) const override;
    [[nodiscard]] const ZTMetaEnum* metaEnum(unsigned int index) const override;
    [[nodiscard]] const ZTMetaProperty* property(unsigned int index) const override;
    [[nodiscard]] const ZTMetaProperty* property(std::string_view name) const override;
    [[nodiscard]] const ZTMetaInvokable* invokable(unsigned int index) const override;
    using ZTMetaClass::indexOfInvokable;
    using ZTMetaClass::invokable;
    [[nodiscard]] int indexOfInvokable(void* function) const override;
    [[nodiscard]] void* userData() const override { return m_userData; }
    void setUserData(void* word) override { m_userData = word; }
    using ZTMetaClass::setUserData;

    /// Stores the super class and takes its counts as the offsets; null for none.
    void setSuperClass(const ZTMetaClass* super);
    // Each appends an empty member. An invokable knows this class as its owner.
    ZTDynamicMetaClassInfo& addClassInfo();
    ZTDynamicMetaEnum& addEnum();
    ZTDynamicMetaInvokable& addInvokable();
    ZTDynamicMetaProperty& addProperty();
    /// Nothing changes any more.
    void finish();

protected:
    [[nodiscard]] int indexOfInvokable(std::string_view name, bool isConst,
                                       const std::type_index& signature) const override;

public:
    const ZTMetaClass* m_superClass = nullptr;
    std::string m_typeName;
    unsigned int m_classInfoOffset = 0;
    std::vector<std::shared_ptr<ZTDynamicMetaClassInfo>> m_classInfos;
    unsigned int m_enumOffset = 0;
    std::vector<std::shared_ptr<ZTDynamicMetaEnum>> m_enums;
    unsigned int m_propertyOffset = 0;
    std::vector<std::shared_ptr<ZTDynamicMetaProperty>> m_properties;
    unsigned int m_invokableOffset = 0;
    std::vector<std::shared_ptr<ZTDynamicMetaInvokable>> m_invokables;
    void* m_userData = nullptr;
    /// Of a finished class; otherwise null.
    std::unique_ptr<zt::detail::PropertyIndex> m_propertyIndex;
};
