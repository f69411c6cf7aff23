// Controllers (target port groups) of an array: the controller record, the
// TPG requests, and controller naming.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "mpi/mpi_usr.h"
#include "uil/uil_ids.h"
#include "uil/uil_path.h"

struct ArrayInfo;

inline constexpr size_t UIL_TPG_NAME_LEN = 16;
inline constexpr size_t UIL_CONTROLLER_NAME_SIZE = 17;  // controller name buffer
inline constexpr uint32_t UIL_TPG_ENABLED = 1;
inline constexpr uint8_t UIL_TPG_REMOTE = 1;

// Controller record: one per TPG in an array's (or a detailed disk's)
// controller list. Allocated zero-filled; `paths` holds UilPathInfo records.
struct UilController {
    MPI_ListNode links;
    MPI_ListNode paths;
    uint32_t state;     // 1 = enabled, anything else = disabled
    uint32_t lunCount;  // see UIL_ControllerLunCount
    uint32_t tpgId;
    uint8_t remote;     // 1 = belongs to the remote array of a dual-site pair
};

// Releases every controller of a list with its paths (the head is left empty).
void UIL_ControllerListFree(MPI_ListNode* head);

// One TPG as the driver reports it (request 0x3d).
struct UilTpgInfo {
    uint32_t arrayId;
    uint32_t tpgId;
    uint32_t state;
    uint8_t remote;
    UilIdList* paths;  // physical path IDs, sorted ascending (at most 8)
};

// TPG IDs of an array (request 0x3c, capacity 16), sorted ascending.
uint32_t UIL_EnumerateTpgIdsStart(uint32_t arrayId, UilIdList** out);
void UIL_EnumerateTpgIdsEnd(UilIdList* list);
// One TPG: 1024; 1037 "Allocate memory for ioctl tpg info fail"; the
// request's code "Query tpg info by ioctl fail".
uint32_t UIL_EnumerateTpgStart(uint32_t arrayId, uint32_t tpgId, UilTpgInfo** out);
void UIL_EnumerateTpgEnd(UilTpgInfo* tpg);

// Builds array->controllers: every TPG with its physical paths and LUN
// counts. 1024; 2 "Get no tpg info" when no controller could be read; 1037;
// the TPG-ID request's code when it fails.
uint32_t INTF_UIL_GetPhyTpgInfoStart(ArrayInfo* array);
void INTF_UIL_GetPhyTpgInfoEnd(ArrayInfo* array);
// Attaches the TPG's physical paths to `controller` (LUN count of each path
// from request 0x16) and sets the controller's LUN count.
uint32_t UIL_EnumeratePhyPathForTpg(const UilTpgInfo* tpg, UilController* controller);

// A controller's LUN count from its paths: the largest count among paths
// that are not "Fault"; a single path counts whatever its state; when every
// path is "Fault", the last path's count.
uint32_t UIL_ControllerLunCount(const MPI_ListNode* paths);

// The TPG's state word only.
uint32_t INTF_UIL_GetTpgInfo(uint32_t arrayId, uint32_t tpgId, uint32_t* state);
// The TPG's own name into `out` (at least 17 bytes; empty when it has none).
// 1024, or 1 when the request fails.
uint32_t INTF_UIL_GetTpgName(uint32_t arrayId, uint32_t tpgId, char* out, size_t size);
// Looks `name` up among the array's TPG names: *found = 1 and *tpgId set
// when one matches. 1024, or the code of a request that failed.
uint32_t INTF_UIL_CheckTpgNameIfExist(uint32_t arrayId, const char* name, uint8_t* found, uint32_t* tpgId);

// ---------------------------------------------------------------------------
// Controller naming.

// The naming rule without the driver: `tpgName` is the TPG's own name
// ("" when it has none). IDs of 16 and more print "-"; a name prints as is
// (at most 16 characters); else bit 24 of `capability` gives "%d%c" of ID/2
// and 'A' + (ID & 1), otherwise "%u".
void UIL_FormatControllerName(uint32_t controllerId, const char* tpgName, uint32_t capability, char* out,
                              size_t size);
// The controller name shown for a path, a VLUN or an array: asks the driver
// for the TPG name; "-" when the ID is 16 or more or the name request fails
// (result 1 then, 1024 otherwise). Prints nothing.
uint32_t UIL_strFormatControllerId(uint32_t arrayId, uint32_t controllerId, uint32_t capability, char* out,
                                   size_t size);
// The print name without asking the driver (width of the path table's
// controller column): the conversion tables, "-" from 16 on.
void UIL_ConvertControllerIdToPrintName(uint32_t controllerId, uint32_t capability, char* out, size_t size);

// Controller naming for one display of many rows: each (array, controller)
// pair's name is asked of the driver once, whatever the number of rows.
// Same output and rules as UIL_strFormatControllerId.
class UilControllerNamer {
public:
    uint32_t format(uint32_t arrayId, uint32_t controllerId, uint32_t capability, char* out, size_t size);

private:
    struct Entry {
        uint32_t ret;
        char name[UIL_CONTROLLER_NAME_SIZE];
    };
    std::unordered_map<uint64_t, Entry> m_names;
};
