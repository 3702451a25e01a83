#include "streams/work.h"

#include <zintar/zintar.h>

#include <memory>

namespace
{
void streamRecords(benchmark::State& state)
{
    measure(state, [] {
        ZTDataStream out;
        for (const Record& record : records())
            out << record.number << record.weight << record.name;
        ZTDataStream in(out.data());
        Record record;
        for (std::size_t i = 0; i < records().size(); ++i) {
            in >> record.number >> record.weight >> record.name;
            benchmark::DoNotOptimize(record);
        }
    });
}
BENCHMARK(streamRecords)->Name("stream_records/zintar");

void streamVariants(benchmark::State& state)
{
    measure(state, [] {
        ZTDataStream stream;
        ZTVariant value(42);
        for (int i = 0; i < variantCount; ++i)
            stream << value;
        ZTVariant read;
        for (int i = 0; i < variantCount; ++i) {
            stream >> read;
            benchmark::DoNotOptimize(read);
        }
    });
}
BENCHMARK(streamVariants)->Name("stream_variants/zintar");

std::unique_ptr<ZTMetaClass> classOfFiftyMembers()
{
    ZTMetaClassBuilder builder;
    builder.setTypeName("Account");
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    for (int i = 0; i < 10; ++i) {
        std::string number = std::to_string(i);
        auto info = builder.addClassInfo();
        info.setKey("key" + number);
        info.setValue("value" + number);
        auto enumeration = builder.addEnum();
        enumeration.setName("Enum" + number);
        for (int value = 0; value < 5; ++value)
            enumeration.add("enumerator" + std::to_string(value), value);
        auto event = builder.addInvokable();
        event.setName("property" + number + "Changed");
        event.setEvent<double>();
        auto method = builder.addInvokable();
        method.setName("method" + number);
        method.setFunction([](ZTDynamicBase&, int a, const std::string&) { return a; });
        auto property = builder.addProperty();
        property.setName("property" + number);
        property.setGetter([](const ZTDynamicBase&) { return 0.5; });
        property.setSetter([](ZTDynamicBase&, double) {});
        property.setChangeEvent(event);
        property.addPropInfo("unit", "celsius");
    }
    return std::unique_ptr<ZTMetaClass>(builder.toMetaClass());
}

void streamClass(benchmark::State& state)
{
    auto account = classOfFiftyMembers();
    const std::string super(account->superClass()->typeName());
    measure(state, [&] {
        ZTDataStream stream;
        stream << *account;
        ZTMetaClassBuilder read;
        read.deserialize(stream, {{super, &ZTDynamicBase::typeMetaClass()}});
        benchmark::DoNotOptimize(read);
        if (!stream || read.propertyCount() != 10)
            state.SkipWithError("The class did not come back.");
    });
}
BENCHMARK(streamClass)->Name("stream_class/zintar");
} // namespace
