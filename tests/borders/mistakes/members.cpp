// Mistakes in the list of a class's members. MEMBERS is the list, BODY what it lists.
#include <zintar/zintar.h>

#include <cstdarg>
#include <memory>

struct Other {
    void blink() {}
    int level = 0;
};
struct Fixed {
    explicit Fixed(int start) : value(start) {}
    int value;
};
class Unknown;

#ifdef LISTED_TWICE // expect: zt::members: a member is listed twice
#    define BODY                                                                                   \
        void blink() {}
#    define MEMBERS zt::method<&Self::blink>(), zt::method<&Self::blink>()
#endif

#ifdef LISTED_AS_EVENT_AND_METHOD // expect: zt::members: a member is listed twice
#    define BODY                                                                                   \
        void switched() { sendEvent<&Self::switched>(); }
#    define MEMBERS zt::event<&Self::switched>(), zt::method<&Self::switched>()
#endif

#ifdef TWO_PROPERTIES_OF_ONE_NAME // expect: two properties or enumerations have one name
#    define BODY                                                                                   \
        int level = 0;                                                                             \
        int power = 0;
#    define MEMBERS zt::property<&Self::level>(), zt::property<&Self::power>().as("level")
#endif

#ifdef INSTANCES_OF_ONE_NAME // expect: Instances of one template need names of their own
#    define BODY                                                                                   \
        template <int Slot>                                                                        \
        int at()                                                                                   \
        {                                                                                          \
            return Slot;                                                                           \
        }
#    define MEMBERS zt::method<&Self::at<3>>(), zt::method<&Self::at<4>>()
#endif

#ifdef NOTIFY_IS_NO_EVENT // expect: notify<...>() names no event of the class or its super classes.
#    define BODY                                                                                   \
        int level = 0;                                                                             \
        void levelChanged(int) {}
#    define MEMBERS                                                                                \
        zt::method<&Self::levelChanged>(),                                                         \
            zt::property<&Self::level>().notify<&Self::levelChanged>()
#endif

#ifdef NOTIFY_IS_NOT_LISTED // expect: notify<...>() names no event of the class or its super
#    define BODY                                                                                   \
        int level = 0;                                                                             \
        void levelChanged(int) {}
#    define MEMBERS zt::property<&Self::level>().notify<&Self::levelChanged>()
#endif

#ifdef NOTIFY_IS_A_FIELD // expect: notify<...>() names no event of the class or its super classes.
#    define BODY                                                                                   \
        int level = 0;                                                                             \
        int changes = 0;
#    define MEMBERS zt::property<&Self::level>().notify<&Self::changes>()
#endif

#ifdef STATIC_METHOD // expect: a static member is none.
#    define BODY                                                                                   \
        static void blink() {}
#    define MEMBERS zt::method<&Self::blink>()
#endif

#ifdef STATIC_EVENT // expect: a static member is none.
#    define BODY                                                                                   \
        static void blink() {}
#    define MEMBERS zt::event<&Self::blink>()
#endif

#ifdef STATIC_FIELD // expect: a static member is none.
#    define BODY static inline int level = 0;
#    define MEMBERS zt::property<&Self::level>()
#endif

#ifdef STATIC_GETTER // expect: a static member is none.
#    define BODY                                                                                   \
        static int level() { return 0; }
#    define MEMBERS zt::property<&Self::level>()
#endif

#ifdef FIELD_AS_METHOD // expect: a data member may be a property.
#    define BODY int level = 0;
#    define MEMBERS zt::method<&Self::level>()
#endif

#ifdef FIELD_AS_EVENT // expect: a data member may be a property.
#    define BODY int level = 0;
#    define MEMBERS zt::event<&Self::level>()
#endif

#ifdef LVALUE_METHOD // expect: is not volatile, variadic or qualified with & or &&.
#    define BODY                                                                                   \
        void blink()& {}
#    define MEMBERS zt::method<&Self::blink>()
#endif

#ifdef RVALUE_METHOD // expect: is not volatile, variadic or qualified with & or &&.
#    define BODY                                                                                   \
        void blink()&& {}
#    define MEMBERS zt::method<&Self::blink>()
#endif

#ifdef VOLATILE_METHOD // expect: is not volatile, variadic or qualified with & or &&.
#    define BODY                                                                                   \
        void blink() volatile {}
#    define MEMBERS zt::method<&Self::blink>()
#endif

#ifdef VARIADIC_METHOD // expect: is not volatile, variadic or qualified with & or &&.
#    define BODY                                                                                   \
        void print(const char*, ...) {}
#    define MEMBERS zt::method<&Self::print>()
#endif

#ifdef LVALUE_GETTER // expect: is not volatile, variadic or qualified with & or &&.
#    define BODY                                                                                   \
        int level() const& { return 0; }
#    define MEMBERS zt::property<&Self::level>()
#endif

#ifdef METHOD_OF_ANOTHER_CLASS // expect: The member belongs to a class that is not an object class.
#    define MEMBERS zt::method<&Other::blink>()
#endif

#ifdef FIELD_OF_ANOTHER_CLASS // expect: The member belongs to a class that is not an object class.
#    define MEMBERS zt::property<&Other::level>()
#endif

#ifdef TOO_MANY_PARAMETERS // expect: A method or an event has at most
                           // ZTMetaInvokable::MaxParamCount
#    define BODY                                                                                   \
        void mix(int, int, int, int, int, int, int, int, int, int, int) {}
#    define MEMBERS zt::method<&Self::mix>()
#endif

#ifdef REFERENCE_PARAMETER // expect: The parameters of a method or an event are values or
                           // references
#    define BODY                                                                                   \
        void read(int&) {}
#    define MEMBERS zt::method<&Self::read>()
#endif

#ifdef RVALUE_PARAMETER // expect: The parameters of a method or an event are values or references
                        // to
#    define BODY                                                                                   \
        void take(std::string&&) {}
#    define MEMBERS zt::method<&Self::take>()
#endif

#ifdef CHARACTER_POINTER_PARAMETER // expect: The parameters of a method or an event are values or
#    define BODY                                                                                   \
        void take(char*) {}
#    define MEMBERS zt::method<&Self::take>()
#endif

#ifdef OBJECT_PARAMETER // expect: An object travels as a pointer.
#    define BODY                                                                                   \
        void join(const ZTBase&) {}
#    define MEMBERS zt::method<&Self::join>()
#endif

#ifdef OBJECT_EVENT_PARAMETER // expect: An object travels as a pointer.
#    define BODY                                                                                   \
        void joined(const Lamp&) {}
#    define MEMBERS zt::event<&Self::joined>()
#endif

#ifdef OBJECT_RESULT // expect: An object travels as a pointer.
#    define BODY                                                                                   \
        const ZTBase& other() const { return *this; }
#    define MEMBERS zt::method<&Self::other>()
#endif

#ifdef MOVE_ONLY_PARAMETER // expect: What a listed member takes and gives is copied
#    define BODY                                                                                   \
        void take(std::unique_ptr<int>) {}
#    define MEMBERS zt::method<&Self::take>()
#endif

#ifdef MOVE_ONLY_RESULT // expect: What a listed member takes and gives is copied
#    define BODY                                                                                   \
        std::unique_ptr<int> give() { return nullptr; }
#    define MEMBERS zt::method<&Self::give>()
#endif

#ifdef VOID_POINTER // expect: What a listed member takes and gives is copied
#    define BODY                                                                                   \
        void take(void*) {}
#    define MEMBERS zt::method<&Self::take>()
#endif

#ifdef INCOMPLETE_PARAMETER // expect: The types of a listed member must be complete
#    define BODY void take(const Unknown&);
#    define MEMBERS zt::method<&Self::take>()
#endif

#ifdef EVENT_WITH_A_RESULT // expect: An event returns nothing.
#    define BODY                                                                                   \
        bool switched() { return true; }
#    define MEMBERS zt::event<&Self::switched>()
#endif

#ifdef GETTER_IS_NOT_CONST // expect: The getter of a property is a const member function without
#    define BODY                                                                                   \
        int level() { return 0; }
#    define MEMBERS zt::property<&Self::level>()
#endif

#ifdef GETTER_TAKES_SOMETHING // expect: The getter of a property is a const member function without
#    define BODY                                                                                   \
        int level(int) const { return 0; }
#    define MEMBERS zt::property<&Self::level>()
#endif

#ifdef GETTER_GIVES_NOTHING // expect: The getter of a property is a const member function without
#    define BODY                                                                                   \
        void level() const {}
#    define MEMBERS zt::property<&Self::level>()
#endif

#ifdef GETTER_GIVES_WHAT_CANNOT_BE_COPIED // expect: What a listed member takes and gives is copied
#    define BODY                                                                                   \
        const std::unique_ptr<int>& level() const { return m_level; }                              \
        std::unique_ptr<int> m_level;
#    define MEMBERS zt::property<&Self::level>()
#endif

#ifdef SETTER_TAKES_ANOTHER_TYPE // expect: The setter of a property takes what the getter gives,
                                 // and
#    define BODY                                                                                   \
        int level() const { return 0; }                                                            \
        void setLevel(double) {}
#    define MEMBERS zt::property<&Self::level, &Self::setLevel>()
#endif

#ifdef SETTER_TAKES_AN_RVALUE // expect: The setter of a property is a member function of one
#    define BODY                                                                                   \
        std::string text() const { return {}; }                                                    \
        void setText(std::string&&) {}
#    define MEMBERS zt::property<&Self::text, &Self::setText>()
#endif

#ifdef SETTER_TAKES_A_REFERENCE // expect: The setter of a property is a member function of one
#    define BODY                                                                                   \
        std::string text() const { return {}; }                                                    \
        void setText(std::string&) {}
#    define MEMBERS zt::property<&Self::text, &Self::setText>()
#endif

#ifdef SETTER_TAKES_TWO // expect: The setter of a property is a member function of one parameter
#    define BODY                                                                                   \
        int level() const { return 0; }                                                            \
        void setLevel(int, int) {}
#    define MEMBERS zt::property<&Self::level, &Self::setLevel>()
#endif

#ifdef SETTER_TAKES_NOTHING // expect: The setter of a property is a member function of one
                            // parameter
#    define BODY                                                                                   \
        int level() const { return 0; }                                                            \
        void reset() {}
#    define MEMBERS zt::property<&Self::level, &Self::reset>()
#endif

#ifdef SETTER_IS_STATIC // expect: The setter of a property is a member function of one parameter
#    define BODY                                                                                   \
        int level() const { return 0; }                                                            \
        static void setLevel(int) {}
#    define MEMBERS zt::property<&Self::level, &Self::setLevel>()
#endif

#ifdef SETTER_IS_A_FIELD // expect: The setter of a property is a member function of one parameter
#    define BODY                                                                                   \
        int level() const { return 0; }                                                            \
        int m_level = 0;
#    define MEMBERS zt::property<&Self::level, &Self::m_level>()
#endif

#ifdef SETTER_IS_QUALIFIED // expect: The setter of a property is a member function of one parameter
#    define BODY                                                                                   \
        int level() const { return 0; }                                                            \
        void setLevel(int)& {}
#    define MEMBERS zt::property<&Self::level, &Self::setLevel>()
#endif

#ifdef SET_WITHOUT_A_DEFAULT // expect: The type of a property that can be set needs a default
                             // value.
#    define BODY                                                                                   \
        Fixed level() const { return Fixed(0); }                                                   \
        void setLevel(Fixed) {}
#    define MEMBERS zt::property<&Self::level, &Self::setLevel>()
#endif

#ifdef FIELD_WITHOUT_A_DEFAULT // expect: The type of a property that can be set needs a default
#    define BODY Fixed level{0};
#    define MEMBERS zt::property<&Self::level>()
#endif

#ifdef ARRAY_FIELD // expect: What a listed member takes and gives is copied
#    define BODY int levels[3] = {};
#    define MEMBERS zt::property<&Self::levels>()
#endif

#ifdef MOVE_ONLY_FIELD // expect: What a listed member takes and gives is copied
#    define BODY std::unique_ptr<int> level;
#    define MEMBERS zt::property<&Self::level>()
#endif

#ifdef TEXT_POINTER_FIELD // expect: A data member that is a property keeps its text: a std::string
#    define BODY const char* label = "";
#    define MEMBERS zt::property<&Self::label>()
#endif

#ifdef TEXT_VIEW_FIELD // expect: A data member that is a property keeps its text: a std::string
#    define BODY std::string_view label;
#    define MEMBERS zt::property<&Self::label>()
#endif

#ifdef OBJECT_FIELD // expect: An object travels as a pointer.
#    define BODY ZTBase part;
#    define MEMBERS zt::property<&Self::part>()
#endif

#ifdef FUNCTION_REFERENCE_PARAMETER // expect: An object travels as a pointer.
#    define BODY                                                                                   \
        void visit(const ZTDataStream&) {}
#    define MEMBERS zt::method<&Self::visit>()
#endif

#ifdef ENUMERATION_OF_A_CLASS // expect: zt::enumeration<E>: E is no enumeration.
#    define MEMBERS zt::enumeration<Other>(zt::enumerators<>)
#endif

#ifdef ENUMERATOR_OF_ANOTHER // expect: an enumerator belongs to another enumeration.
#    define BODY                                                                                   \
        enum class Mode { Off };                                                                   \
        enum class Kind { Small };
#    define MEMBERS zt::enumeration<Mode>(zt::enumerators<Mode::Off, Kind::Small>)
#endif

#ifdef ENUMERATOR_IS_A_NUMBER // expect: an enumerator belongs to another enumeration.
#    define BODY enum class Mode { Off };
#    define MEMBERS zt::enumeration<Mode>(zt::enumerators<0>)
#endif

#ifdef ENUMERATOR_IS_TOO_LARGE // expect: the value of an enumerator does not fit into an int.
#    define BODY enum class Mode : long long { Off = 1LL << 40 };
#    define MEMBERS zt::enumeration<Mode>(zt::enumerators<Mode::Off>)
#endif

#ifdef ENUMERATORS_OF_ONE_VALUE // expect: a value has no name, or two have one name
#    define BODY enum class Mode { Off = 1, Idle = 1 };
#    define MEMBERS zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode::Idle>)
#endif

#ifdef ENUMERATOR_WITHOUT_A_NAME // expect: a value has no name, or two have one name
#    define BODY enum class Mode { Off };
#    define MEMBERS zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode(7)>)
#endif

#ifndef BODY
#    define BODY
#endif
#ifndef MEMBERS
#    define MEMBERS
#endif

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    BODY private : static constexpr auto members() { return zt::members(MEMBERS); }
};
ZT_CLASS(Lamp)
