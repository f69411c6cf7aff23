// Wire layouts of the configuration store's driver requests (little-endian;
// every byte not listed is zero). Only the store's own units include this:
// the shell sees records, never offsets.
#pragma once

#include <cstddef>

#include "uia/uia_request.h"
#include "uil/uil_cfg.h"

namespace uil_cfg_wire {
// User configuration notify: 44 + 96 x N bytes.
inline constexpr size_t kNotifyType = 0;
inline constexpr size_t kNotifyInstance = 4;
inline constexpr size_t kInstanceLen = 33;  // 32 characters + NUL
inline constexpr size_t kNotifyCount = 40;
inline constexpr size_t kNotifyItems = 44;
inline constexpr size_t kItemSize = 96;
inline constexpr size_t kItemName = 0;  // within one item
inline constexpr size_t kItemValue = 32;
inline constexpr size_t NotifySize(size_t count) { return kNotifyItems + kItemSize * count; }
// User configuration delete: 72 bytes.
inline constexpr size_t kDelType = 0;
inline constexpr size_t kDelInstance = 4;
inline constexpr size_t kDelItem = 37;
inline constexpr size_t kDelSize = 72;
// Default dual-site information: 28 bytes.
inline constexpr size_t kDsInfoSize = 28;
inline constexpr size_t kDsPrimarySn = 5;
inline constexpr size_t kDsDefaultFlag = 26;
}  // namespace uil_cfg_wire

// Each field lies inside its request, and each request is the size the
// request table gives it.
static_assert(uil_cfg_wire::kNotifyInstance + uil_cfg_wire::kInstanceLen <= uil_cfg_wire::kNotifyCount);
static_assert(uil_cfg_wire::kItemValue + UIL_CFG_ITEM_VALUE_LEN == uil_cfg_wire::kItemSize);
static_assert(uil_cfg_wire::kItemName + UIL_CFG_ITEM_NAME_LEN <= uil_cfg_wire::kItemValue);
static_assert(uil_cfg_wire::NotifySize(1) == uia_req::CfgNotify.size);
static_assert(uil_cfg_wire::kDelInstance + uil_cfg_wire::kInstanceLen == uil_cfg_wire::kDelItem);
static_assert(uil_cfg_wire::kDelItem + UIL_CFG_ITEM_NAME_LEN <= uil_cfg_wire::kDelSize);
static_assert(uil_cfg_wire::kDelSize == uia_req::CfgDelete.size);
static_assert(uil_cfg_wire::kDsPrimarySn + UIL_CFG_DS_SN_LEN <= uil_cfg_wire::kDsDefaultFlag);
static_assert(uil_cfg_wire::kDsInfoSize == uia_req::GetDsInfo.size);
