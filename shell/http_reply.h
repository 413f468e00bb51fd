#pragma once
// Writing the answers of the web API: JSON with the messages of the engine, and JSON errors
// {"error":{"caption":"Information","title","detail"}} for refused requests.
#include <httplib.h>

#include <nlohmann/json.hpp>
#include <functional>
#include <optional>
#include <vector>

#include "settings/message.h"

namespace nocturnel {

class Engine;

void replyJson(httplib::Response& res, const nlohmann::json& body, int status = 200);
void replyError(httplib::Response& res, int status, const Message& message);
// The answer of an engine job: on success the result with "messages" added when any were shown;
// on failure 422 with the first message as the error (or a generic one) and all of them.
void replyFromJob(httplib::Response& res, bool ok, nlohmann::json result, const std::vector<Message>& messages);

// A JSON object body (an empty body reads as {}); nothing, with the 400 answer written, when
// the body is not a JSON object.
std::optional<nlohmann::json> readJsonBody(const httplib::Request& req, httplib::Response& res);

// Runs a job on the engine that fills its result and returns success, then answers with it
// and the messages it showed.
void answerJob(Engine& engine, httplib::Response& res, const std::function<bool(nlohmann::json&)>& job);

}  // namespace nocturnel
