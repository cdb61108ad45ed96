// memory.cpp: what the system says of memory that is short.
#include "base/platform.h"

#include <windows.h>

uint64_t osMemoryError()
{
    return ERROR_NOT_ENOUGH_MEMORY;
}
