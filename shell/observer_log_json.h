#pragma once
// The JSON of observer logs, shared by `nocturnel log --json` and the web interface.
#include <nlohmann/json.hpp>

#include "plans/observer_log_record.h"

namespace nocturnel {

nlohmann::json observerLogJson(const ObserverLog& log, int listingIndex);
// Every log of userlogs/: {"logs":[...]} with damaged files listed as {"index","file","damaged":true}.
nlohmann::json observerLogListJson();

}  // namespace nocturnel
