/* orven.h: the whole exported interface of the disc authoring engine. */
#ifndef ORVEN_ORVEN_H
#define ORVEN_ORVEN_H

#include <orven/aob.h>
#include <orven/authoring.h>
#include <orven/disc.h>
#include <orven/extract.h>
#include <orven/mux.h>
#include <orven/preview.h>
#include <orven/results.h>
#include <orven/scan.h>
#include <orven/types.h>

#endif
