#pragma once
// The object information card as JSON, shared by `nocturnel info --json` and the web API:
// {"name","names":[...],"type","constellation","mag","sizeArcmin","surfaceBrightness","raJ2000",
//  "decJ2000","ra","dec","alt","az","transit","visibility":{"ratio","word","bestMagnification",
//  "eyepiece"}}, plus "description" when the object has one. Unknown values are null.
#include <nlohmann/json.hpp>

#include "chart/object_info.h"

namespace nocturnel {

nlohmann::json objectInfoJson(const ObjectInfo& info);

}  // namespace nocturnel
