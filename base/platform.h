// platform.h: what the portable half of base/ asks of posix/ and win32/, beyond files.h and profile.h. Not for others.
#pragma once

#include <cstdint>

/** The platform's own error number for a failed allocation. */
[[nodiscard]] uint64_t osMemoryError();
