#pragma once
// A minimal JSON reader for the reference tables the tests compare with
// (objects, arrays, strings without escapes beyond \" \\ \/ and \uXXXX kept
// as text, numbers, true, false, null). Throws std::runtime_error on bad input.
#include <cctype>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvane::test {

struct JsonValue {
    enum class Kind { Null, Bool, Number, String, Array, Object } kind = Kind::Null;
    bool boolean = false;
    double number = 0.0;
    std::string text;
    std::vector<JsonValue> items;
    std::map<std::string, JsonValue> fields;
    const JsonValue& operator[](const std::string& key) const { return fields.at(key); }
    const JsonValue& operator[](std::size_t i) const { return items.at(i); }
    bool isNull() const { return kind == Kind::Null; }
};

class JsonReader {
public:
    explicit JsonReader(std::string text) : text_(std::move(text)) {}
    JsonValue read() {
        JsonValue value = parse();
        skip();
        if (at_ != text_.size()) fail("text after the value");
        return value;
    }

private:
    std::string text_;
    std::size_t at_ = 0;
    [[noreturn]] void fail(const std::string& what) const {
        throw std::runtime_error("JSON: " + what + " at offset " + std::to_string(at_));
    }
    void skip() {
        while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_]))) ++at_;
    }
    bool take(char c) {
        skip();
        if (at_ < text_.size() && text_[at_] == c) return ++at_, true;
        return false;
    }
    std::string string() {
        if (!take('"')) fail("string expected");
        std::string out;
        while (at_ < text_.size() && text_[at_] != '"') {
            if (text_[at_] == '\\') ++at_;
            out += text_[at_++];
        }
        ++at_;
        return out;
    }
    JsonValue parse() {
        JsonValue v;
        skip();
        if (at_ >= text_.size()) fail("value expected");
        const char c = text_[at_];
        if (c == '{') {
            ++at_;
            v.kind = JsonValue::Kind::Object;
            if (take('}')) return v;
            do {
                std::string key = string();
                if (!take(':')) fail("':' expected");
                v.fields[key] = parse();
            } while (take(','));
            if (!take('}')) fail("'}' expected");
        } else if (c == '[') {
            ++at_;
            v.kind = JsonValue::Kind::Array;
            if (take(']')) return v;
            do v.items.push_back(parse());
            while (take(','));
            if (!take(']')) fail("']' expected");
        } else if (c == '"') {
            v.kind = JsonValue::Kind::String;
            v.text = string();
        } else if (text_.compare(at_, 4, "null") == 0) {
            at_ += 4;
        } else if (text_.compare(at_, 4, "true") == 0 || text_.compare(at_, 5, "false") == 0) {
            v.kind = JsonValue::Kind::Bool;
            v.boolean = c == 't';
            at_ += v.boolean ? 4 : 5;
        } else {
            v.kind = JsonValue::Kind::Number;
            std::size_t used = 0;
            v.number = std::stod(text_.substr(at_, 40), &used);
            at_ += used;
        }
        return v;
    }
};

inline JsonValue readJsonFile(const std::string& path) {
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot read " + path);
    std::stringstream buffer;
    buffer << in.rdbuf();
    return JsonReader(buffer.str()).read();
}

}  // namespace orvane::test
