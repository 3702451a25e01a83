#include "lamp.h"

ZT_CLASS(Lamp)
