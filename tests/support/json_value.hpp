#pragma once
// A minimal JSON reader for the reference tables the tests compare with
// (an escape keeps the escaped character; \uXXXX is not decoded).
#include <cctype>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvane::test {

struct JsonValue {
    bool null = false, boolean = false;
    double number = 0.0;
    std::string text;
    std::vector<JsonValue> items;
    std::map<std::string, JsonValue> fields;
    const JsonValue& operator[](const std::string& key) const { return fields.at(key); }
    const JsonValue& operator[](std::size_t i) const { return items.at(i); }
};

inline JsonValue parseJson(const std::string& s, std::size_t& at) {
    auto take = [&](char c) {
        while (at < s.size() && std::isspace(static_cast<unsigned char>(s[at]))) ++at;
        return at < s.size() && s[at] == c ? (++at, true) : false;
    };
    auto string = [&] {
        std::string out;
        while (at < s.size() && s[at] != '"') out += s[at] == '\\' ? s[++at] : s[at], ++at;
        return ++at, out;
    };
    JsonValue v;
    if (take('{')) {
        if (!take('}')) {
            do {
                const std::string key = (take('"'), string());
                v.fields[key] = (take(':'), parseJson(s, at));
            } while (take(','));
            take('}');
        }
    } else if (take('[')) {
        if (!take(']')) {
            do v.items.push_back(parseJson(s, at));
            while (take(','));
            take(']');
        }
    } else if (take('"')) {
        v.text = string();
    } else if (s.compare(at, 4, "null") == 0 || s.compare(at, 4, "true") == 0 || s.compare(at, 5, "false") == 0) {
        v.null = s[at] == 'n', v.boolean = s[at] == 't', at += s[at] == 'f' ? 5 : 4;
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
