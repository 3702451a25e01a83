// A plugin that cannot be loaded: what it calls is nowhere.

extern "C" int lostOnTheWay();

extern "C" [[gnu::visibility("default")]] int needsIt() { return lostOnTheWay(); }
