#pragma once

// The two C entry points of the automation library. The client finds them by name in the
// loaded library and never links it.

#include "GUID.h"
#include "IUnknown.h"
#include "OrbelTypes.h"
#include "SOrbelInfo.h"

extern "C" {

/// Creates the automation object of class clsid (CLSID_ORBEL) with one reference in *object.
[[gnu::visibility("default")]] HRESULT orbel_CreateObject(const kestrix::GUID* clsid,
                                                          kestrix::IUnknown** object);
/// Fills the version of the library; optional for a library.
[[gnu::visibility("default")]] HRESULT orbel_GetInfo(kestrix::SOrbelInfo* info);
}

namespace kestrix {

typedef decltype(&orbel_CreateObject) PFN_ORBEL_CREATE_OBJECT;
typedef decltype(&orbel_GetInfo) PFN_ORBEL_GET_INFO;

inline constexpr const char* ORBEL_CREATE_OBJECT_NAME = "orbel_CreateObject";
inline constexpr const char* ORBEL_GET_INFO_NAME = "orbel_GetInfo";

} // namespace kestrix
