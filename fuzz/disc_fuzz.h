// disc_fuzz.h: a title set and a manager for targets that author from bad files.
#pragma once

#include "project/model.h"
#include "tests/support/files.h"

/** A context of one PAL title set with two chapters, its one source at path; released by orvFreeDiscContext. */
DiscContext* makeFuzzContext(const TempDir& dir, const std::u16string& source);
