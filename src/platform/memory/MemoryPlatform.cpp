#include "platform/memory/ManualClock.h"
#include "platform/memory/TurnQueue.h"
