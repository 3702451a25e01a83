#include "support/bytes.h"
#include "support/logs.h"

#include <zintar/zintar.h>

#include <algorithm>
#include <stdexcept>

namespace house
{
class Record : public ZTDynamicBase
{
    ZT_OBJECT(Record, ZTDynamicBase)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Record)
} // namespace house

namespace
{
using house::Record;
using Owned = std::unique_ptr<ZTMetaClass>;

Owned made(std::string_view name, const ZTMetaClass* super = &Record::typeMetaClass())
{
    ZTMetaClassBuilder builder;
    builder.setTypeName(name);
    builder.setSuperClass(super);
    builder.addStoredProperty("of" + std::string(name), 1);
    return Owned(builder.toMetaClass());
}

/// "A B(A) C(B)"
std::string namesIn(const ZTClassStore& store)
{
    std::string names;
    for (const ZTMetaClass* one : store.classes()) {
        names.append(names.empty() ? "" : " ").append(one->typeName());
        if (one->superClass() && one->superClass()->isDynamic())
            names.append("(").append(one->superClass()->typeName()).append(")");
    }
    return names;
}

/// The bytes of a class with that super class, which need not be there.
std::string recordOf(const std::string& name, const std::string& super)
{
    const Owned above = made(super, nullptr);
    return support::streamed(*made(name, above.get()));
}

struct ClassStore : testing::Test {
    bool read(const std::string& bytes)
    {
        ZTDataStream stream(bytes);
        return store.read(stream);
    }
    void refuses(const std::string& bytes, const std::string& reason)
    {
        const std::string before = namesIn(store);
        const std::size_t known = ztClasses().size();
        EXPECT_LOGS(head + "takes no class of the stream" + reason + "\n",
                    [&] { EXPECT_FALSE(read(bytes)); });
        EXPECT_EQ(namesIn(store), before);
        EXPECT_EQ(ztClasses().size(), known);
    }

    const std::string head = "Zintar Warning: ZTClassStore ";
    ZTClassStore store;
};

TEST_F(ClassStore, HoldsClassesThatAreFoundByName)
{
    const ZTMetaClass* account = store.add(made("Account"));
    const ZTMetaClass* savings = store.add(made("Savings", account));
    EXPECT_EQ(store.find("Savings"), savings);
    EXPECT_EQ(ztClass("Savings"), savings);
    EXPECT_EQ(store.find("Record"), nullptr);
    EXPECT_EQ(ztClasses().back(), savings);
    {
        ZTClassStore other;
        const ZTMetaClass* twin = other.add(made("Account"));
        EXPECT_EQ(other.find("Account"), twin);
        EXPECT_EQ(ztClass("Account"), account); // the first one
        (void)store.take("Savings");
        (void)store.take("Account");
        EXPECT_EQ(ztClass("Account"), twin);
    }
    EXPECT_EQ(ztClass("Account"), nullptr);
}

TEST_F(ClassStore, LetsNothingGoThatAnotherClassBuildsOn)
{
    store.add(made("A"));
    store.add(made("B", store.find("A")));
    EXPECT_LOGS(head + "keeps \"A\": \"B\" builds on it.\n",
                [&] { EXPECT_EQ(store.take("A"), nullptr); });
    EXPECT_EQ(store.take("C"), nullptr);
    const Owned b = store.take("B");
    EXPECT_EQ(b->typeName(), "B");
    EXPECT_NE(store.take("A"), nullptr);
    EXPECT_EQ(namesIn(store), "");
}

TEST_F(ClassStore, RefusesWhatItCannotKeepInOrder)
{
    const auto refusal = [&](Owned one) {
        return support::logOf([&] { EXPECT_EQ(store.add(std::move(one)), nullptr); });
    };
    store.add(made("A"));
    const Owned outside = made("Outside");
    EXPECT_EQ(refusal(made("")), head + "does not take \"\": it has no name.\n");
    EXPECT_EQ(refusal(made("A")), head + "does not take \"A\": there is a class of that name.\n");
    for (const char* name : {"Record", "house::Record", "ZTBase"})
        EXPECT_EQ(refusal(made(name)),
                  head + "does not take \"" + name + "\": a declared class has that name.\n");
    EXPECT_EQ(refusal(made("B", outside.get())),
              head + "does not take \"B\": its super class \"Outside\" is not in the store.\n");
    EXPECT_EQ(refusal(nullptr), "");
    EXPECT_EQ(namesIn(store), "A");
}

TEST_F(ClassStore, ReadsRecordsInAnyOrder)
{
    store.add(made("Held"));
    EXPECT_TRUE(read(recordOf("C", "B") + recordOf("D", "Held") + recordOf("B", "A") +
                     support::streamed(*made("A")) + support::streamed(*made("E", nullptr))));
    EXPECT_EQ(namesIn(store), "Held A B(A) C(B) D(Held) E");
    EXPECT_EQ(store.find("A")->superClass(), &Record::typeMetaClass());
    EXPECT_EQ(store.find("C")->property("ofA"), store.find("A")->property("ofA"));
    EXPECT_TRUE(read(""));
    EXPECT_TRUE(read(recordOf("F", "struct house::Record") + recordOf("G", "Record")));
}

TEST_F(ClassStore, KeepsNothingOfABrokenStream)
{
    store.add(made("Held"));
    const std::string good = recordOf("A", "Record");
    refuses(good + recordOf("B", "Nobody"),
            ": \"B\" has the super class \"Nobody\", which nobody knows.");
    refuses(good + recordOf("B", "C") + recordOf("C", "D") + recordOf("D", "B"),
            ": \"B\" builds on itself.");
    refuses(good + recordOf("B", "B"), ": \"B\" builds on itself.");
    refuses(good + recordOf("A", "Held"), ": \"A\" is there twice.");
    refuses(good + recordOf("Held", "A"),
            ", since it does not take \"Held\": there is a class of that name.");
    const std::string whole = good + recordOf("B", "A");
    for (std::size_t size = 1; size < whole.size(); ++size)
        if (size != good.size()) {
            // A type that is cut off is told as well.
            const std::string log =
                support::logOf([&] { EXPECT_FALSE(read(whole.substr(0, size))); });
            EXPECT_TRUE(log.ends_with("the stream: it ends within a class.\n")) << log;
        }
    EXPECT_EQ(namesIn(store), "Held");
}

TEST_F(ClassStore, TakesNoChainThatWouldExhaustTheStack)
{
    std::string bytes = recordOf("1", "Record");
    for (int i = 2; i <= 2000; ++i)
        bytes += recordOf(std::to_string(i), std::to_string(i - 1));
    refuses(bytes, ", since it does not take \"1001\": it builds on too many classes.");
}

TEST_F(ClassStore, GivesBackWhatIsNotOnTheStream)
{
    store.add(made("A"));
    store.add(made("B", store.find("A")));
    ZTDataStream stream;
    store.write(stream);
    stream << 42;

    ZTClassStore second;
    (void)store.take("B");
    (void)store.take("A");
    std::string prepared;
    const auto restore = [&](ZTMetaClassBuilder& builder) {
        prepared += builder.typeName();
        for (unsigned int i = 0; i < unsigned(builder.propertyCount()); ++i)
            builder.property(i).setStored(ZTVariant(builder.property(i).metaType(), nullptr));
    };
    EXPECT_TRUE(second.read(stream, 2, restore));
    int behind = 0;
    stream >> behind;
    EXPECT_EQ(behind, 42);
    EXPECT_EQ(prepared, "AB");

    const std::unique_ptr<ZTBase> object = ztCreate(*second.find("B"));
    int heard = 0;
    ZTBase::subscribe(object.get(), second.find("A")->property("ofA")->changeEvent(), object.get(),
                      [&](int value) { heard = value; });
    EXPECT_EQ(object->property<int>("ofA"), 0);
    object->setProperty("ofA", 5);
    EXPECT_EQ(heard, 5);

    ZTDataStream again(support::streamed(*made("C")));
    const auto fail = [](ZTMetaClassBuilder&) { throw std::runtime_error("no"); };
    EXPECT_THROW(second.read(again, fail), std::runtime_error);
    EXPECT_EQ(namesIn(second), "A B(A)");
}

/// A stream that keeps its bytes elsewhere.
class OtherStream : public ZTDataStream
{
public:
    explicit OtherStream(std::string bytes) : m_bytes(std::move(bytes)) {}
    ZTDataStream& read(char* target, unsigned int count) override
    {
        const std::size_t there = std::min<std::size_t>(count, m_bytes.size());
        std::copy_n(m_bytes.begin(), there, target);
        m_bytes.erase(0, there);
        m_isGood = m_isGood && there == count;
        return *this;
    }
    bool good() const override { return m_isGood; }

private:
    std::string m_bytes;
    bool m_isGood = true;
};

TEST_F(ClassStore, ReadsAMediumOfTheHostToItsEnd)
{
    OtherStream stream(recordOf("B", "A") + recordOf("A", "Record"));
    EXPECT_TRUE(store.read(stream));
    EXPECT_EQ(namesIn(store), "A B(A)");
}

TEST_F(ClassStore, RefusesAMediumWithoutAnEnd)
{
    struct : ZTDataStream {
        ZTDataStream& read(char* target, unsigned int count) override
        {
            std::fill_n(target, count, '\0');
            return *this;
        }
        bool good() const override { return true; }
    } endless;
    ZTLogCapture log;
    EXPECT_FALSE(store.read(endless));
    EXPECT_NE(log.text().find("it does not end within 64 MiB"), std::string::npos) << log.text();
    EXPECT_EQ(namesIn(store), "");
}
} // namespace
