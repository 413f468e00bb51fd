#pragma once
// The two sources of request values: the query string and a JSON body.
#include <httplib.h>

#include <nlohmann/json.hpp>

#include "shell/http_params.h"

namespace nocturnel {

class QueryReader : public ValueReader {
public:
    explicit QueryReader(const httplib::Params& params) : params_(params) {}

protected:
    std::optional<std::string> raw(const char* name, bool&, bool&) const override {
        const auto it = params_.find(name);
        if (it == params_.end()) return std::nullopt;
        return it->second;
    }

private:
    const httplib::Params& params_;
};

class JsonReader : public ValueReader {
public:
    explicit JsonReader(const nlohmann::json& body) : body_(body) {}

protected:
    std::optional<std::string> raw(const char* name, bool& isNumber, bool& isBool) const override {
        if (!body_.is_object()) return std::nullopt;
        const auto it = body_.find(name);
        if (it == body_.end() || it->is_null()) return std::nullopt;
        if (it->is_string()) return it->get<std::string>();
        isNumber = it->is_number();
        isBool = it->is_boolean();
        return it->dump();
    }

private:
    const nlohmann::json& body_;
};

}  // namespace nocturnel
