// Setting handlers: the entry points through which the shell changes a
// driver setting. Each names one item of the user configuration, takes the
// value as typed and an object selector (the whole host, one array or one
// VLUN), routes the change to that level of the store (which checks the
// value, tells the driver and saves the file), and fills the operation-log
// record the shell passes on to the operation log.
//
// The object selector is a key ("" for the whole host, "array_id",
// "vlun_id") and the object's ID as decimal text ("" for the host).
// The `source` argument ("CLI") is carried for the log and not interpreted.
// Nothing here prints.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "uil/uil_cfg.h"

// Return code for a VLUN that is not a dual-site VLUN.
inline constexpr uint32_t UIL_RET_NOT_DUALSITE = 1063;

inline constexpr const char UIL_KEY_COMMON[] = "";
inline constexpr const char UIL_KEY_ARRAY[] = "array_id";
inline constexpr const char UIL_KEY_VLUN[] = "vlun_id";

// ---------------------------------------------------------------------------
// Object handler table: key -> level handler (item, value, object ID).
using UilSetHandler = uint32_t (*)(const char* item, const char* value, const char* id);

struct UilObjectHandler {
    const char* key;
    UilSetHandler pfSetHandler;
};
extern const std::array<UilObjectHandler, 3> g_astUILObjectHandler;

// The row whose key equals `key` exactly (so "array_idx" has none), or null.
const UilObjectHandler* UIL_GetObjectHandler(const char* key);

// Level handlers. 1030 for an ID that is not a non-negative number; the
// store's, the object layer's and the driver's codes pass through.
uint32_t INTF_UIL_SetCommonHandler(const char* item, const char* value, const char* id);
// The array's own value governs all its VLUNs: the item is first removed
// from the LUN level of every VLUN of the array (each a write of its own),
// then written at the array level. A failure on the way keeps the
// deletions already made.
uint32_t INTF_UIL_SetArrayHandler(const char* item, const char* value, const char* id);
uint32_t INTF_UIL_SetLunHandler(const char* item, const char* value, const char* id);

// Fills the log record: type 101 when the key begins with "array_id", 102
// with "vlun_id", else 100; the ID converted (atoi); the value cut to 63
// characters. An ID that converts to a negative number leaves the record
// as it was.
void UIL_TransOperLogPara(const char* key, const char* id, const char* value, UilOperLogPara* record);
// Fills only the value (type and ID zero): for the host-only settings.
void UIL_TransOperLogValue(const char* value, UilOperLogPara* record);

// ---------------------------------------------------------------------------
// Keyed setters: (source, key, ID, value, record). 1026 when the key, ID,
// value or record is missing (the record is then untouched); 1030 for an
// unknown key. Otherwise the record is filled from key, ID and value
// whatever the outcome.
uint32_t INTF_UIL_SetLbPolicy(const char* source, const char* key, const char* id, const char* value,
                              UilOperLogPara* record);                    // loadbalancemode
uint32_t INTF_UIL_SetLbController(const char* source, const char* key, const char* id, const char* value,
                                  UilOperLogPara* record);                // workingmode
uint32_t INTF_UIL_SetLUNTrespass(const char* source, const char* key, const char* id, const char* value,
                                 UilOperLogPara* record);                 // luntrespass
uint32_t INTF_UIL_SetLbIOThreshold(const char* source, const char* key, const char* id, const char* value,
                                   UilOperLogPara* record);               // lb_io_threshold
uint32_t INTF_UIL_SetIoHoldonTime(const char* source, const char* key, const char* id, const char* value,
                                  UilOperLogPara* record);                // iosuspensiontime
uint32_t INTF_UIL_SetIoRetryTimeOut(const char* source, const char* key, const char* id, const char* value,
                                    UilOperLogPara* record);              // io_timeout
// ds_split_size; for a VLUN the VLUN must exist (its code) and be a
// dual-site VLUN (1063).
uint32_t INTF_UIL_SetDsSpliteSize(const char* source, const char* key, const char* id, const char* value,
                                  UilOperLogPara* record);

// Dual-site working mode and primary array (ds_mode, ds_primary): the
// caller fills its own log record.
uint32_t INTF_UIL_SetDsMode(const char* source, const char* key, const char* id, const char* value);
uint32_t INTF_UIL_SetDsMaster(const char* source, const char* key, const char* id, const char* value);

// ---------------------------------------------------------------------------
// Host-wide settings.

// APD-to-PDL: the timeout (optional: null or "") is set first and a failure
// ends there; then the mode. The record carries the mode, or the timeout
// when one was given; it is filled on failure too. 1026 without a mode.
uint32_t INTF_UIL_SetLUNAPDToPDL(const char* source, const char* mode, const char* timeout, UilOperLogPara* record);

// Alarm push and path reliability switches ("1"/"0"); no log record.
uint32_t INTF_UIL_SetAlarmEnable(const char* source, const char* value);
uint32_t INTF_UIL_SetReliabilityEnable(const char* source, const char* value);

// Host-only items whose log record carries the value alone: 1026 for a
// missing value or record; the store's code otherwise.
uint32_t INTF_UIL_SetFaultPathCheckInterval(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetIdlePathCheckInterval(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetFailbackTime(const char* source, const char* value, UilOperLogPara* record);
// Stores "ioretry", then "ioretrydelay" (a failure ends there); the record
// carries "<retries>,<delay>" whatever the outcome.
uint32_t INTF_UIL_SetIoRetryConf(const char* source, const char* retries, const char* delay,
                                 UilOperLogPara* record);

// The path degradation settings.
uint32_t INTF_UIL_SetTimeOutDegradedTime(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetTimeOutDegradedThreshold(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetTimeOutDegradedRecoverTime(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetInterErrorDegradedTime(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetInterErrorDegradedMinIo(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetInterErrorDegradedThreshold(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetInterErrorDegradedRecoverTime(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetInterFaultDegradedTime(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetInterFaultDegradedThreshold(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetInterFaultDegradedRecoverTime(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetHighLatencyDegradedTime(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetHighLatencyDegradedThreshold(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetHighLatencyDegradedRecoverTime(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetSensitiveDelayedThreshold(const char* source, const char* value, UilOperLogPara* record);
uint32_t INTF_UIL_SetSensitiveDelayedRecoverTime(const char* source, const char* value, UilOperLogPara* record);

// I/O latency event threshold (milliseconds; 0: no latency event).
inline constexpr const char UIL_ITEM_IO_LATENCY_THRESHOLD[] = "io_latency_threshold";
uint32_t INTF_UIL_SetIOLatencyThreshold(const char* value);
// The stored threshold as text (into `buffer`) and as a number; an item
// the file does not hold reads as the item's default (what the driver
// runs with). The store's code on failure.
uint32_t INTF_UIL_GetIoLatencyThreshold(char* buffer, uint32_t size, int32_t* value);
