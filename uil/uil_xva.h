// Remote and local controllers of an XVA array: the driver prefers paths
// through local controllers. The remote ones are kept in the array's
// configuration under "xva_remote" as TPG IDs separated by ",". Nothing
// here prints.
#pragma once

#include <cstddef>
#include <cstdint>

#include "uil/uil_cfg.h"  // UilOperLogPara

inline constexpr const char UIL_ITEM_XVA_REMOTE[] = "xva_remote";

// An XVA array is one whose product ID begins with "XVA".
bool UIL_IsXvaProduct(const char* product);

// The remote TPG IDs of an array, in stored order. An array with no stored
// list has none (1024, *count 0). 1024; the object layer's code when the
// array cannot be read; the store's code; 1030 for a stored list that is
// not IDs 0..15 separated by ",".
uint32_t UIL_GetXvaRemoteByArrayID(uint32_t arrayId, uint32_t* ids, size_t capacity, size_t* count);

// Marks the given TPGs remote (added to the list when not in it yet) or
// local (removed from it), saves the list and tells the driver. `record`
// (optional) gets the array ID and "remote,<ids>" or "local,<ids>" of the
// IDs given. 1024; 1026 for no IDs or an ID above 15; the codes above.
uint32_t INTF_UIL_SetRemoteController(const char* source, uint32_t arrayId, bool remote, size_t count,
                                      const uint32_t* tpgIds, UilOperLogPara* record);
