#include "support/logs.h"

#include <zintar/dynamicbase.h>
#include <zintar/metaclassbuilder.h>

#include <memory>
#include <vector>

// Objects that get their class at run time.
namespace
{
using Owned = std::unique_ptr<ZTMetaClass>;

struct Account : ZTDynamicBase {
    using ZTDynamicBase::initializeMetaClass;
    using ZTDynamicBase::sendEvent;
    double balance = 0;
};

void raise(ZTDynamicBase& sender, const char* event, const ZTVariant& value)
{
    sender.metaClass()->invokable<void()>(event)->invoke(&sender, value);
}

Owned makeAccountClass()
{
    ZTMetaClassBuilder builder;
    builder.setTypeName("Account");
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    auto changed = builder.addInvokable();
    changed.setName("balanceChanged");
    changed.setEvent<double>();
    auto deposit = builder.addInvokable();
    deposit.setName("deposit");
    deposit.setFunction([](Account& self, double amount) {
        raise(self, "balanceChanged", ZTVariant(self.balance += amount));
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
    RunTimeClass() { EXPECT_TRUE(account.initializeMetaClass(accountClass.get())); }
    const ZTMetaInvokable* invokable(const char* name) const
    {
        return accountClass->invokable<void()>(name);
    }

    const Owned accountClass = makeAccountClass();
    Account account;
};

TEST_F(RunTimeClass, IsWhatTheObjectAnswersBy)
{
    EXPECT_EQ(account.metaClass(), accountClass.get());
    EXPECT_EQ(account.baseMetaClass(), &ZTDynamicBase::typeMetaClass());
    EXPECT_TRUE(account.setProperty("balance", 12.5));
    EXPECT_EQ(account.property<double>("balance"), 12.5);
    EXPECT_EQ(invokable("deposit")->invoke(&account, 2.5), ZTVariant(15.0));
    EXPECT_TRUE(account.setProperty("note", "mine", true));
    EXPECT_EQ(account.property<std::string>("note"), "mine");
    EXPECT_TRUE(account.dynamicProperties() == std::vector<std::string_view>{"note"});
}

TEST_F(RunTimeClass, RaisesEventsThatExistOnlyThere)
{
    double heard = 0;
    int calls = 0;
    ZTBase receiver;
    const ZTMetaInvokable* changed = accountClass->property("balance")->changeEvent();
    ASSERT_EQ(changed, accountClass->invokable(5U));
    auto scoped = ZTBase::subscribe(&account, changed, [&heard](double value) { heard = value; });
    ZTBase::subscribe(&account, changed, &receiver, [&calls] { ++calls; });
    invokable("deposit")->invoke(&account, 3.0);
    EXPECT_EQ(heard, 3.0);
    account.sendEvent(changed->index(), {ZTVariant(4.0)});
    EXPECT_EQ(heard, 4.0);
    EXPECT_EQ(calls, 2);
    scoped.reset();
    EXPECT_TRUE(account.unsubscribe(&receiver));
    changed->invoke(&account, 9.0);
    EXPECT_TRUE(heard == 4.0 && calls == 2);
}

TEST_F(RunTimeClass, HandlersAreCheckedAgainstItsEvents)
{
    const ZTMetaInvokable* changed = invokable("balanceChanged");
    Account other;
    other.initializeMetaClass(accountClass.get());
    EXPECT_TRUE(ZTBase::subscribe(&account, changed, &other, invokable("deposit")));
    changed->invoke(&account, 6.0);
    EXPECT_EQ(other.balance, 6.0);
    support::CapturedLog log;
    EXPECT_FALSE(ZTBase::subscribe(&account, changed, &other, [](int) {}));
    EXPECT_NE(log.all(), "");
    EXPECT_FALSE(ZTBase::subscribe(&account, invokable("deposit"), &other, [] {}));
}

TEST_F(RunTimeClass, EventIsRaisedByItsOwnDescriptorAlone)
{
    // The same event stands elsewhere in another class.
    ZTMetaClassBuilder builder;
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    builder.addInvokable().setName("first");
    builder.addInvokable(invokable("balanceChanged"));
    const Owned copy(builder.toMetaClass());
    Account moved;
    moved.initializeMetaClass(copy.get());
    std::vector<double> heard;
    auto scoped = ZTBase::subscribe(&moved, copy->invokable<void()>("balanceChanged"),
                                    [&](double value) { heard.push_back(value); });
    copy->invokable<void()>("balanceChanged")->invoke(&moved, 1.0);
    invokable("balanceChanged")->invoke(&moved, 2.0);
    EXPECT_EQ(heard, (std::vector<double>{1.0}));
}

TEST_F(RunTimeClass, OverloadsAreToldApartByTheirTypesAlone)
{
    ZTMetaClassBuilder builder(accountClass.get());
    auto second = builder.addInvokable();
    second.setName("deposit");
    second.setParameterMetaTypes({&ztMetaType<int>()});
    const Owned made(builder.toMetaClass());
    EXPECT_EQ(made->indexOfInvokable<void(int)>("deposit"), 6);
    EXPECT_EQ(made->indexOfInvokable<void(double)>("deposit"), 6);
    EXPECT_EQ(made->indexOfInvokable("deposit", false, {&ztMetaType<int>()}), 7);
    EXPECT_EQ(made->indexOfInvokable("deposit", false, {&ztMetaType<float>()}), -1);
}

TEST_F(RunTimeClass, EventOfAnotherClassIsNotRaised)
{
    Account plain;
    ZTBase root;
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_FALSE(invokable("balanceChanged")->invoke(&plain, 1.0));
        EXPECT_FALSE(invokable("balanceChanged")->invoke(&root, 1.0));
    });
}

TEST_F(RunTimeClass, TwoCopiesOfAnEventAreTwoEvents)
{
    ZTMetaClassBuilder builder;
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    builder.addInvokable(invokable("balanceChanged"));
    builder.addInvokable(invokable("balanceChanged")).setName("limitChanged");
    const Owned copies(builder.toMetaClass());
    Account object;
    object.initializeMetaClass(copies.get());
    std::string heard;
    auto first =
        ZTBase::subscribe(&object, copies->invokable(5U), [&](double) { heard += "balance "; });
    auto second =
        ZTBase::subscribe(&object, copies->invokable(6U), [&](double) { heard += "limit "; });
    copies->invokable<void()>("limitChanged")->invoke(&object, 1.0);
    EXPECT_EQ(heard, "limit ");
}
} // namespace
