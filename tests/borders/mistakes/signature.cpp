// expect: A signature names the parameters alone
#include <zintar/zintar.h>

const ZTMetaInvokable* find(const ZTMetaClass& type)
{
    return type.invokable<int(int, int)>("sum");
}
