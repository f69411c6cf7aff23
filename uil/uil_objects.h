// The storage-object model of the interface layer: arrays, controllers,
// disks, VLUNs, paths and HBAs as read from the driver.
//
// Enumeration contract: a ...Start function fills records (or an ID list)
// that the caller owns until it calls the matching ...End; a Start that
// fails leaves nothing allocated behind, and End may be called after any
// Start result. Records are zero-filled and chained through their first
// member `links`; End unlinks each record and frees nested lists first.
// Nothing here prints to the console.
#pragma once

#include <cstddef>

#include "uil/uil_array.h"
#include "uil/uil_convert.h"
#include "uil/uil_ids.h"
#include "uil/uil_path.h"
#include "uil/uil_tpg.h"
#include "uil/uil_vlun.h"

