// Driver access: the device, the request frame and the host guards.
#pragma once

#include <cstdint>
#include <string>

#include "uia/uia_request.h"
#include "uia/uia_wire.h"

inline constexpr const char UIA_DEVICE_PATH[] = "/dev/cvdrv";
inline constexpr const char UIA_UPGRADE_LOCK_PATH[] = "/opt/Corvane/cvadmin.lock";
inline constexpr const char UIA_PACKAGES_INFO_PATH[] = "/etc/Corvane.packages.info";
inline constexpr uint32_t UIA_MAX_INSTANCES = 16;

// The request frame handed to ioctl: result at 0, reserved at 4, payload
// address at 8.
inline constexpr size_t UIA_FRAME_SIZE = 16;
inline constexpr size_t UIA_FRAME_RESULT = 0;
inline constexpr size_t UIA_FRAME_PAYLOAD = 8;
inline constexpr uint32_t UIA_RESULT_UNSET = 0xFFFFFFFF;

extern int32_t g_uiUIAIoctlFd;

uint32_t INTF_UIA_Init();
void INTF_UIA_Fini();
// One request; `size` is accepted for the callers' sake and not used.
uint32_t INTF_UIA_Ioctl(uint32_t request, void* payload, uint32_t size);
// The same, for a payload buffer built with the wire helpers.
uint32_t UIA_Send(const UiaRequest& req, UiaPayload& payload);

uint32_t INTF_UIA_CheckUpgradeThread();
uint32_t INTF_UIA_CliLimitCheck();
void INTF_UIA_CliBegin();
void INTF_UIA_CliEnd();
uint32_t INTF_UIA_CliQVXSanbootCheck();

// Host checks for `check status`. The scripts print their own findings on
// the shared standard output; the texts this layer adds are handed to `emit`
// in order, between the scripts' runs, so the caller prints them in place.
using UiaEmitFn = void (*)(const char* text);
void INTF_UIA_CheckConfig(UiaEmitFn emit);
void INTF_UIA_CheckHBAConfig(UiaEmitFn emit);
