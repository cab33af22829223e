#include "core/atomic_file.hpp"

#include <atomic>
#include <sstream>
#include <system_error>
#include <unistd.h>

#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {

bool isNullOutputName(std::string_view name) {
    return trim(name).empty() || iequals(trim(name), "nul:");
}

namespace {

std::filesystem::path temporaryNameFor(const std::filesystem::path& path) {
    static std::atomic<unsigned> counter{0};
    std::filesystem::path temporary = path;
    temporary += ".tmp" + std::to_string(::getpid()) + "_" + std::to_string(counter++);
    return temporary;
}

}  // namespace

AtomicFileWriter::AtomicFileWriter(std::filesystem::path path)
    : path_(std::move(path)), temporary_(temporaryNameFor(path_)) {
    out_.open(temporary_, std::ios::binary | std::ios::trunc);
    if (!out_) throw UserError("File error", "Cannot write the file " + path_.string());
}

AtomicFileWriter::~AtomicFileWriter() {
    if (committed_) return;
    out_.close();
    std::error_code ignored;
    std::filesystem::remove(temporary_, ignored);
}

void AtomicFileWriter::commit() {
    out_.flush();
    const bool ok = static_cast<bool>(out_);
    out_.close();
    std::error_code error;
    if (ok) std::filesystem::rename(temporary_, path_, error);
    if (!ok || error) {
        std::filesystem::remove(temporary_, error);
        throw UserError("File error", "Cannot write the file " + path_.string());
    }
    committed_ = true;
}

void writeFileAtomically(const std::filesystem::path& path, std::string_view text) {
    AtomicFileWriter writer(path);
    writer.stream() << text;
    writer.commit();
}

std::string readTextFile(const std::filesystem::path& path, std::uintmax_t maxBytes) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        throw UserError("File error", "Cannot find the file " + path.string());
    const auto size = std::filesystem::file_size(path, error);
    if (error) throw UserError("File error", "Cannot read the file " + path.string());
    if (size > maxBytes)
        throw UserError("File error", "The file " + path.string() + " is too large (" +
                                          std::to_string(size) + " bytes; at most " +
                                          std::to_string(maxBytes) + ")");
    std::ifstream in(path, std::ios::binary);
    if (!in) throw UserError("File error", "Cannot read the file " + path.string());
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

}  // namespace orvane
