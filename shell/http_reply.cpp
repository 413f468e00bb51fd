#include "shell/http_reply.h"

#include "shell/api_json.h"
#include "shell/engine.h"

namespace nocturnel {

void replyJson(httplib::Response& res, const nlohmann::json& body, int status) {
    res.status = status;
    res.set_header("Cache-Control", "no-store");
    res.set_content(body.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace), "application/json");
}

void replyError(httplib::Response& res, int status, const Message& message) {
    replyJson(res, {{"error", messageJson(message)}}, status);
}

void replyFromJob(httplib::Response& res, bool ok, nlohmann::json result, const std::vector<Message>& messages) {
    if (ok) {
        if (!result.is_object()) result = {{"result", result}};
        if (!messages.empty()) result["messages"] = messagesJson(messages);
        replyJson(res, result);
        return;
    }
    const Message first = messages.empty() ? Message{"The operation failed", ""} : messages.front();
    // The result goes along: a form that refused a value still shows its fields.
    nlohmann::json body = result.is_object() ? std::move(result) : nlohmann::json::object();
    body["error"] = messageJson(first);
    body["messages"] = messagesJson(messages);
    replyJson(res, body, 422);
}

std::optional<nlohmann::json> readJsonBody(const httplib::Request& req, httplib::Response& res) {
    if (req.body.empty()) return nlohmann::json::object();
    nlohmann::json body = nlohmann::json::parse(req.body, nullptr, false);
    if (body.is_discarded() || !body.is_object()) {
        replyError(res, 400, Message{"Invalid request", "The body must be a JSON object."});
        return std::nullopt;
    }
    return body;
}

void answerJob(Engine& engine, httplib::Response& res, const std::function<bool(nlohmann::json&)>& job) {
    bool ok = false;
    nlohmann::json result = nlohmann::json::object();
    const std::vector<Message> messages = engine.run([&] { ok = job(result); });
    replyFromJob(res, ok, std::move(result), messages);
}

}  // namespace nocturnel
