// memory.cpp: what the system says of memory that is short.
#include "base/platform.h"

#include <cerrno>

uint64_t osMemoryError()
{
    return ENOMEM;
}
