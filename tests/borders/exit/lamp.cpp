#include "lamp.h"

// Its class is declared below, in this very file.
static Lamp inFront(1);

ZT_CLASS(Lamp)
