// libFuzzer target: any byte string given to the batch-list reader must give
// entries that are non-empty paths in the list's folder (or absolute) without
// control bytes, on increasing lines, or be refused with a UserError that
// names the list and a line.
//   fuzz_batch_list work/ -max_len=1024 -timeout=5
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "core/user_error.hpp"
#include "interactive/batch_list.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        int previous = 0;
        for (const orvane::BatchEntry& entry : orvane::parseBatchList(text, "lists/fuzz.lst")) {
            const std::string path = entry.file.string();
            if (entry.line <= previous || path.empty()) std::abort();
            if (entry.file.is_relative() && path.rfind("lists/", 0) != 0) std::abort();
            for (const char c : path)
                if (static_cast<unsigned char>(c) < 0x20) std::abort();
            previous = entry.line;
        }
    } catch (const orvane::UserError& error) {
        if (!error.where() || error.where()->file != "lists/fuzz.lst" || error.where()->line < 1) std::abort();
    }
    return 0;
}
