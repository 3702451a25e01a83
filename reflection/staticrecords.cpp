#include <zintar/detail/staticrecords.h>

// The records are exported down to their constructors and assignments: they are the border between
// the library and the code that lays out tables. Assignments copy field by field; a move leaves
// its source as it is, which the views and pointers of a record do anyway.

namespace zt::detail
{
// clang-format off
ZTPropertyInfo::ZTPropertyInfo() noexcept = default;
ZTPropertyInfo& ZTPropertyInfo::operator=(const ZTPropertyInfo&) noexcept = default;
ZTPropertyInfo& ZTPropertyInfo::operator=(ZTPropertyInfo&&) noexcept = default;

ZTStaticMetaClassInfoData::ZTStaticMetaClassInfoData() noexcept = default;
ZTStaticMetaClassInfoData& ZTStaticMetaClassInfoData::operator=(const ZTStaticMetaClassInfoData&) noexcept = default;
ZTStaticMetaClassInfoData& ZTStaticMetaClassInfoData::operator=(ZTStaticMetaClassInfoData&&) noexcept = default;

ZTStaticMetaEnumData::ZTStaticMetaEnumData() noexcept = default;
ZTStaticMetaEnumData& ZTStaticMetaEnumData::operator=(const ZTStaticMetaEnumData&) noexcept = default;
ZTStaticMetaEnumData& ZTStaticMetaEnumData::operator=(ZTStaticMetaEnumData&&) noexcept = default;

ZTStaticMetaPropertyData::ZTStaticMetaPropertyData() noexcept = default;
ZTStaticMetaPropertyData& ZTStaticMetaPropertyData::operator=(const ZTStaticMetaPropertyData&) noexcept = default;
ZTStaticMetaPropertyData& ZTStaticMetaPropertyData::operator=(ZTStaticMetaPropertyData&&) noexcept = default;

ZTStaticMetaInvokableData::ZTStaticMetaInvokableData() noexcept = default;
ZTStaticMetaInvokableData& ZTStaticMetaInvokableData::operator=(const ZTStaticMetaInvokableData&) noexcept = default;
ZTStaticMetaInvokableData& ZTStaticMetaInvokableData::operator=(ZTStaticMetaInvokableData&&) noexcept = default;

ZTStaticMetaClassData::ZTStaticMetaClassData() noexcept = default;
ZTStaticMetaClassData& ZTStaticMetaClassData::operator=(const ZTStaticMetaClassData&) noexcept = default;
ZTStaticMetaClassData& ZTStaticMetaClassData::operator=(ZTStaticMetaClassData&&) noexcept = default;
// clang-format on

ZTStaticMetaClassInfoData::ZTStaticMetaClassInfoData(std::string_view infoKey,
                                                     std::string_view infoValue) noexcept
    : key(infoKey), value(infoValue)
{}

ZTStaticMetaEnumData::ZTStaticMetaEnumData(std::string_view enumName, unsigned int enumeratorCount,
                                           const std::string_view* enumeratorNames,
                                           const int* enumeratorValues) noexcept
    : name(enumName), count(enumeratorCount), enumerators(enumeratorNames), values(enumeratorValues)
{}

ZTStaticMetaPropertyData::ZTStaticMetaPropertyData(std::string_view propertyName, Getter get,
                                                   Setter set, unsigned int infoCount,
                                                   const ZTPropertyInfo* infos) noexcept
    : name(propertyName), getter(get), setter(set), propInfoCount(infoCount), propInfos(infos)
{}

ZTStaticMetaInvokableData::ZTStaticMetaInvokableData(std::string_view invokableName, bool constness,
                                                     unsigned int parameters, Function body,
                                                     ZTAccessSpecifier access) noexcept
    : name(invokableName),
      isConst(constness),
      parameterCount(parameters),
      function(body),
      accessSpecifier(access)
{}

ZTStaticMetaClassData::ZTStaticMetaClassData(
    unsigned int infoCount, const ZTStaticMetaClassInfoData* const* infoList,
    unsigned int enumerationCount, const ZTStaticMetaEnumData* const* enumList,
    unsigned int ownPropertyCount, const ZTStaticMetaPropertyData* const* propertyList,
    unsigned int ownInvokableCount, const ZTStaticMetaInvokableData* const* invokableList,
    IndexByFunction byFunction, IndexBySignature bySignature) noexcept
    : classInfoCount(infoCount),
      classInfos(infoCount ? infoList : nullptr),
      enumCount(enumerationCount),
      enums(enumerationCount ? enumList : nullptr),
      propertyCount(ownPropertyCount),
      properties(ownPropertyCount ? propertyList : nullptr),
      invokableCount(ownInvokableCount),
      invokables(ownInvokableCount ? invokableList : nullptr),
      indexOfInvokableByFunction(byFunction),
      indexOfInvokableBySignature(bySignature)
{}
} // namespace zt::detail
