#pragma once

/// @file
/// Names every public type and includes next to nothing: enough for a header that only passes
/// pointers and references on.

enum class ZTLogType : int;
enum class ZTPartialOrdering : signed char;
enum class ZTAccessSpecifier : int;

struct ZTNone;
struct ZTMetaType;
struct ZTVariant;
class ZTDataStream;
struct ZTKind;
class ZTSequenceView;
class ZTAssociationView;
class ZTOptionalView;
class ZTRecordView;

struct ZTMetaClass;
struct ZTMetaClassInfo;
struct ZTMetaEnum;
struct ZTMetaProperty;
struct ZTMetaInvokable;

struct ZTStaticMetaClass;
struct ZTStaticMetaClassInfo;
struct ZTStaticMetaEnum;
struct ZTStaticMetaProperty;
struct ZTStaticMetaInvokable;

struct ZTBase;
struct ZTDynamicBase;
struct ZTDeliveryInfo;
class ZTChangeHold;
class ZTEventBlocker;
class ZTSubscription;
class ZTScopedSubscription;
class ZTEventListener;
class ZTEventMonitor;
class ZTEventQueue;
struct ZTMonitoredDelivery;
template <class T>
class ZTRef;
template <class T>
class ZTStrongRef;

class ZTClassStore;
class ZTMetaClassBuilder;
class ZTMetaClassInfoBuilder;
class ZTMetaEnumBuilder;
class ZTMetaInvokableBuilder;
class ZTMetaPropertyBuilder;

struct ZTBasePrivate;
struct ZTDynamicBasePrivate;
struct ZTSubscriptionPrivate;
struct ZTSpecialSubscription;
struct ZTEventSlot;
struct ZTEventEnds;
class ZTEventBlockers;
struct ZTReferences;
class ZTLetGo;
class ZTLifeWatch;

namespace zt::detail
{
struct ClassGiving;
struct ZTHandlerBase;
struct Handler;
struct HandlerKey;
struct SubscriptionOptions;
struct KeptHandler;
struct ZTRefImpl;
struct ZTStrongRefImpl;

/// The number of arguments that an event or a method can carry;
/// hosts see it as `ZTMetaInvokable::MaxParamCount`.
inline constexpr unsigned int maxParamCount = 10;
} // namespace zt::detail
