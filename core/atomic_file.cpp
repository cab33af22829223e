#include "core/atomic_file.hpp"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <optional>
#include <sstream>
#include <system_error>
#include <signal.h>
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

// The temporaries alive, for the signal handler: fixed slots of plain
// characters so that the handler touches only async-signal-safe state.
// A temporary beyond the last slot is still removed normally, only not by
// the handler.
struct TemporarySlot {
    std::atomic<bool> claimed{false};
    std::atomic<bool> live{false};
    char path[4096] = {};
};
TemporarySlot gTemporaries[64];

int registerTemporary(const std::filesystem::path& path) {
    const std::string text = path.string();
    if (text.size() >= sizeof(gTemporaries[0].path)) return -1;
    for (int i = 0; i < 64; ++i) {
        bool expected = false;
        if (!gTemporaries[i].claimed.compare_exchange_strong(expected, true)) continue;
        std::memcpy(gTemporaries[i].path, text.c_str(), text.size() + 1);
        gTemporaries[i].live.store(true);
        return i;
    }
    return -1;
}

void unregisterTemporary(const std::filesystem::path& path) {
    const std::string text = path.string();
    for (TemporarySlot& slot : gTemporaries)
        if (slot.live.load() && text == slot.path) {
            slot.live.store(false);
            slot.claimed.store(false);
            return;
        }
}

extern "C" void removeTemporariesAndDie(int signal) {
    for (TemporarySlot& slot : gTemporaries)
        if (slot.live.load()) ::unlink(slot.path);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// The system's reason for a failed write. A stream that failed while it was
// written keeps no errno; a full disk is then recognised by its free space.
std::string reasonOf(int error, const std::filesystem::path& path = {}) {
    if (error != 0) return std::strerror(error);
    std::error_code ignored;
    const auto space = std::filesystem::space(path.parent_path().empty() ? "." : path.parent_path(), ignored);
    return !ignored && space.available == 0 ? std::strerror(ENOSPC) : "write error";
}

// The process id in a temporary's name "<name>.tmp<pid>_<n>", if it is one.
std::optional<long> pidOfTemporary(const std::string& name) {
    const auto at = name.rfind(".tmp");
    if (at == std::string::npos) return std::nullopt;
    const std::string rest = name.substr(at + 4);
    const auto underscore = rest.find('_');
    if (underscore == std::string::npos || underscore == 0 || underscore + 1 == rest.size())
        return std::nullopt;
    const auto digits = [](std::string_view s) {
        return s.find_first_not_of("0123456789") == std::string_view::npos;
    };
    if (!digits(rest.substr(0, underscore)) || !digits(rest.substr(underscore + 1))) return std::nullopt;
    if (underscore > 9) return std::nullopt;
    return std::stol(rest.substr(0, underscore));
}

bool processIsRunning(long pid) { return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM; }

}  // namespace

AtomicFileWriter::AtomicFileWriter(std::filesystem::path path)
    : path_(std::move(path)), temporary_(temporaryNameFor(path_)) {
    registerTemporary(temporary_);
    errno = 0;
    out_.open(temporary_, std::ios::binary | std::ios::trunc);
    if (!out_) {
        const int error = errno;
        unregisterTemporary(temporary_);
        throw UserError("File error", "Cannot write the file " + path_.string() + ": " + reasonOf(error));
    }
}

AtomicFileWriter::~AtomicFileWriter() {
    if (committed_) return;
    out_.close();
    std::error_code ignored;
    std::filesystem::remove(temporary_, ignored);
    unregisterTemporary(temporary_);
}

void AtomicFileWriter::finish() {
    if (!out_.is_open()) return;
    errno = 0;
    out_.flush();
    int error = errno;
    const bool written = static_cast<bool>(out_);
    out_.close();
    if (written && out_.fail()) error = errno;  // the last block failed on close
    if (!written || out_.fail())
        throw UserError("File error", "Cannot write the file " + path_.string() + ": " + reasonOf(error, path_));
}

void AtomicFileWriter::markCommitted() {
    committed_ = true;
    unregisterTemporary(temporary_);
}

void AtomicFileWriter::commit() { commitTogether({this}); }

void commitTogether(const std::vector<AtomicFileWriter*>& writers) {
    for (std::size_t i = 0; i < writers.size(); ++i) {
        try {
            writers[i]->finish();
        } catch (const UserError& error) {
            throw CommitError(i, error.what());
        }
    }
    for (std::size_t i = 0; i < writers.size(); ++i) {
        std::error_code error;
        const auto& path = writers[i]->path();
        if (std::filesystem::is_directory(path, error))
            throw CommitError(i, "Cannot write the file " + path.string() + ": " + std::strerror(EISDIR));
    }
    // A hard link keeps each old file until every new one is in place.
    std::vector<std::filesystem::path> backups(writers.size());
    for (std::size_t i = 0; i < writers.size(); ++i) {
        const auto& path = writers[i]->path();
        std::filesystem::path backup = writers[i]->temporary();
        backup += "old";
        if (::link(path.c_str(), backup.c_str()) == 0) backups[i] = backup;
    }
    std::size_t renamed = 0;
    for (; renamed < writers.size(); ++renamed) {
        const auto* writer = writers[renamed];
        if (::rename(writer->temporary().c_str(), writer->path().c_str()) != 0) break;
    }
    const int renameError = errno;
    for (std::size_t i = 0; i < writers.size(); ++i) {
        std::error_code ignored;
        if (renamed < writers.size() && i < renamed) {
            // Put the old file back (or remove the new one where there was none).
            if (!backups[i].empty())
                std::filesystem::rename(backups[i], writers[i]->path(), ignored);
            else
                std::filesystem::remove(writers[i]->path(), ignored);
        } else if (!backups[i].empty()) {
            std::filesystem::remove(backups[i], ignored);
        }
    }
    if (renamed < writers.size())
        throw CommitError(renamed, "Cannot write the file " + writers[renamed]->path().string() + ": " +
                                       reasonOf(renameError));
    for (AtomicFileWriter* writer : writers) writer->markCommitted();
}

void writeFileAtomically(const std::filesystem::path& path, std::string_view text) {
    AtomicFileWriter writer(path);
    writer.stream() << text;
    writer.commit();
}

std::optional<std::string> textLayoutProblem(std::string_view text) {
    const auto startsWith = [text](std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; };
    if (startsWith("\xEF\xBB\xBF"))
        return std::string("The file starts with a UTF-8 byte-order mark; save it as plain text without one");
    if (startsWith("\xFF\xFE") || startsWith("\xFE\xFF"))
        return std::string("The file is UTF-16 text; save it as plain ASCII or UTF-8 text");
    if (text.find('\r') != std::string_view::npos && text.find('\n') == std::string_view::npos)
        return std::string("The lines of the file end in CR alone; save it with LF or CR LF line ends");
    return std::nullopt;
}

int removeStaleTemporaries(const std::filesystem::path& folder) {
    int removed = 0;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder.empty() ? "." : folder, error)) {
        if (!entry.is_regular_file(error)) continue;
        std::string name = entry.path().filename().string();
        if (name.size() > 3 && name.compare(name.size() - 3, 3, "old") == 0) name.resize(name.size() - 3);
        const auto pid = pidOfTemporary(name);
        if (!pid || *pid == ::getpid() || processIsRunning(*pid)) continue;
        if (std::filesystem::remove(entry.path(), error)) ++removed;
    }
    return removed;
}

void removeOnSignals(const std::filesystem::path& path) { registerTemporary(path); }
void keepOnSignals(const std::filesystem::path& path) { unregisterTemporary(path); }

void removeTemporariesOnSignals() {
    std::signal(SIGINT, removeTemporariesAndDie);
    std::signal(SIGTERM, removeTemporariesAndDie);
}

std::string readTextFile(const std::filesystem::path& path, std::uintmax_t maxBytes) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        throw UserError("File error", path.string() + " is a folder, not a file");
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
    std::string text = content.str();
    if (const auto problem = textLayoutProblem(text))
        throw UserError("File error", *problem, FileLocation{path.string(), 1});
    return text;
}

}  // namespace orvane
