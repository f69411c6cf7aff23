// Problems found on the arrays, paths and disks, for `check status`.
#pragma once

#include <cstdint>

#include "mpi/mpi_usr.h"

enum : uint32_t {
    UIL_SEVERITY_CRITICAL = 23,
    UIL_SEVERITY_MAJOR = 24,
    UIL_SEVERITY_WARNING = 25,
};

enum UilStatusType : uint32_t {
    UIL_STATUS_PATH_DOWN = 1,
    UIL_STATUS_PATH_UNSTABLE = 2,
    UIL_STATUS_ALL_PATH_DOWN = 3,
    UIL_STATUS_LUN_ABNORMAL = 4,
    UIL_STATUS_PATH_DISABLED = 5,
    UIL_STATUS_NO_REDUNDANT_CTRL = 6,  // for the host (no LUN WWN) or for one LUN
    UIL_STATUS_LUN_PATH_UNSTABLE = 7,
};

struct UilStatusRecord {
    MPI_ListNode links;
    uint32_t severity;
    uint32_t type;
    char arrayName[81];
    char initiatorWwn[282];  // printable initiator port of the path
    char controller[17];
    char targetWwn[282];     // printable target port of the path
    char lunWwn[33];  // empty: the record is about the host, not one LUN
    uint32_t pathId;
    uint32_t arrayId;
};

// Fills `head` with one record per problem: 1024 (the list may be empty),
// 2 when the driver lists no array, another code on failure.
uint32_t INTF_UIL_CheckArrayPathDiskStatus(MPI_ListNode* head);
void INTF_UIL_CheckStatusEnd(MPI_ListNode* head);
