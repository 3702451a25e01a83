#include "support/hostclasses.h"

// Objects that get their class at run time.
namespace
{
using namespace host;
using Owned = std::unique_ptr<ZTMetaClass>;

struct Account : Machine {
    double balance = 0;
};

Owned makeAccountClass()
{
    ZTMetaClassBuilder builder;
    builder.setTypeName("Account");
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    auto changed = builder.addInvokable();
    changed.setName("changed");
    changed.setEvent<double>();
    auto deposit = builder.addInvokable();
    deposit.setName("deposit");
    deposit.setFunction([](Account& self, double amount) {
        self.balance += amount;
        self.metaClass()->invokable<void()>("changed")->invoke(&self, self.balance);
        return self.balance;
    });
    auto balance = builder.addProperty();
    balance.setName("balance");
    balance.setGetter([](const Account& self) { return self.balance; });
    balance.setSetter([](Account& self, double value) { self.balance = value; });
    balance.setChangeEvent(changed);
    return Owned(builder.toMetaClass());
}

struct RunTimeClass : testing::Test {
    RunTimeClass() { EXPECT_TRUE(account.initializeMetaClass(type.get())); }
    ZTScopedSubscription hear(ZTBase& sender, const ZTMetaInvokable* event,
                              const std::string& name = {})
    {
        return ZTBase::subscribe(&sender, event, [this, name](double value) {
            diary.add(name + std::to_string(int(value)));
        });
    }

    const Owned type = makeAccountClass();
    const ZTMetaInvokable* const changed = type->property("balance")->changeEvent();
    const ZTMetaInvokable* const deposit = type->invokable<void()>("deposit");
    Diary diary;
    Account account;
};

TEST_F(RunTimeClass, IsWhatTheObjectAnswersBy)
{
    auto heard = hear(account, changed);
    EXPECT_EQ(account.baseMetaClass(), &ZTDynamicBase::typeMetaClass());
    EXPECT_TRUE(account.setProperty("balance", 12.5));
    EXPECT_EQ(account.property<double>("balance"), 12.5);
    EXPECT_EQ(deposit->invoke(&account, 2.5), ZTVariant(15.0));
    account.sendEvent(changed->index(), {ZTVariant(4.0)});
    heard.reset();
    changed->invoke(&account, 9.0);
    EXPECT_EQ(diary.take(), "15 4");
}

TEST_F(RunTimeClass, HandlersAreCheckedAgainstItsEvents)
{
    Account other;
    other.initializeMetaClass(type.get());
    EXPECT_TRUE(ZTBase::subscribe(&account, changed, &other, deposit));
    changed->invoke(&account, 6.0);
    EXPECT_EQ(other.balance, 6.0);
    EXPECT_NE(support::logOf(
                  [&] { EXPECT_FALSE(ZTBase::subscribe(&account, changed, &other, [](int) {})); }),
              "");
    EXPECT_FALSE(ZTBase::subscribe(&account, deposit, &other, [] {}));
}

TEST_F(RunTimeClass, EventIsRaisedByItsOwnDescriptorAlone)
{
    // The same event stands elsewhere, and twice, in another class.
    ZTMetaClassBuilder builder;
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    builder.addInvokable().setName("first");
    builder.addInvokable(changed);
    builder.addInvokable(changed);
    const Owned copies(builder.toMetaClass());
    Account other, plain;
    ZTBase root;
    other.initializeMetaClass(copies.get());
    auto first = hear(other, copies->invokable(6U), "first"),
         second = hear(other, copies->invokable(7U), "second");
    copies->invokable(6U)->invoke(&other, 1.0);
    copies->invokable(7U)->invoke(&other, 2.0);
    EXPECT_LOGS_NOTHING([&] {
        for (ZTBase* object : {static_cast<ZTBase*>(&other), static_cast<ZTBase*>(&plain), &root})
            EXPECT_FALSE(changed->invoke(object, 3.0));
    });
    EXPECT_EQ(diary.take(), "first1 second2");
}

TEST_F(RunTimeClass, OverloadsAreToldApartByTheirTypesAlone)
{
    ZTMetaClassBuilder builder(type.get());
    auto second = builder.addInvokable();
    second.setName("deposit");
    second.setParameterMetaTypes({&ztMetaType<int>()});
    const Owned made(builder.toMetaClass());
    EXPECT_EQ(made->indexOfInvokable<void(int)>("deposit"), 6);
    EXPECT_EQ(made->indexOfInvokable("deposit", false, {&ztMetaType<int>()}), 7);
    EXPECT_EQ(made->indexOfInvokable("deposit", false, {&ztMetaType<float>()}), -1);
}
} // namespace
