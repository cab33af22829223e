#pragma once
// A minimal JSON reader for the reference tables the tests compare with
// (escapes are kept as the escaped character; \uXXXX is not decoded).
#include <cctype>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvane::test {

struct JsonValue {
    bool null = true, boolean = false;
    double number = 0.0;
    std::string text;
    std::vector<JsonValue> items;
    std::map<std::string, JsonValue> fields;
    const JsonValue& operator[](const std::string& key) const { return fields.at(key); }
    const JsonValue& operator[](std::size_t i) const { return items.at(i); }
};

inline JsonValue parseJson(const std::string& s, std::size_t& at) {
    auto skip = [&] { while (at < s.size() && std::isspace(static_cast<unsigned char>(s[at]))) ++at; };
    auto take = [&](char c) { return skip(), at < s.size() && s[at] == c ? (++at, true) : false; };
    auto string = [&] {
        std::string out;
        for (++at; at < s.size() && s[at] != '"'; ++at) out += s[at] == '\\' ? s[++at] : s[at];
        ++at;
        return out;
    };
    JsonValue v;
    skip();
    if (at >= s.size()) throw std::runtime_error("JSON: value expected");
    v.null = false;
    if (take('{')) {
        if (take('}')) return v;
        do {
            skip();
            const std::string key = string();
            if (!take(':')) throw std::runtime_error("JSON: ':' expected");
            v.fields[key] = parseJson(s, at);
        } while (take(','));
        if (!take('}')) throw std::runtime_error("JSON: '}' expected");
    } else if (take('[')) {
        if (take(']')) return v;
        do v.items.push_back(parseJson(s, at));
        while (take(','));
        if (!take(']')) throw std::runtime_error("JSON: ']' expected");
    } else if (s[at] == '"') {
        v.text = string();
    } else if (s.compare(at, 4, "null") == 0) {
        v.null = true, at += 4;
    } else if (s.compare(at, 4, "true") == 0 || s.compare(at, 5, "false") == 0) {
        v.boolean = s[at] == 't', at += v.boolean ? 4 : 5;
    } else {
        std::size_t used = 0;
        v.number = std::stod(s.substr(at, 40), &used), at += used;
    }
    return v;
}

inline JsonValue readJsonFile(const std::string& path) {
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot read " + path);
    std::stringstream buffer;
    buffer << in.rdbuf();
    std::size_t at = 0;
    return parseJson(buffer.str(), at);
}

}  // namespace orvane::test
