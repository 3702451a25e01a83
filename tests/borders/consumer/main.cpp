#include <zintar/zintar.h>

#include <iostream>

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    bool isOn() const { return m_on; }
    void setOn(bool on)
    {
        m_on = on;
        switched(on);
    }
    void switched(bool on) { sendEvent<&Self::switched>(on); }

private:
    static constexpr auto members()
    {
        return zt::members(
            zt::event<&Self::switched>(),
            zt::property<&Self::isOn, &Self::setOn>().as("on").notify<&Self::switched>());
    }
    bool m_on = false;
};
ZT_CLASS(Lamp)

int main()
{
    Lamp lamp;
    int heard = 0;
    auto subscription = ZTBase::subscribe(&lamp, &Lamp::switched, [&heard](bool) { ++heard; });
    lamp.setProperty("on", true);
    bool ok = heard == 1 && lamp.property<bool>("on");
    std::cout << lamp.metaClass()->typeName() << (ok ? " is on" : " does not work") << "\n";
    return ok ? 0 : 1;
}
