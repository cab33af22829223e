#pragma once
// Result files are never half-written: the text goes to a temporary file in
// the destination's folder ("<name>.tmp<pid>_<n>"), which is renamed over the
// destination only when everything was written. A set of files is replaced
// all together or not at all (commitTogether). A failure, SIGINT or SIGTERM
// removes the temporaries and leaves the destinations as they were
// (docs/result-files.md).
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/user_error.hpp"

namespace orvane {

// True for the null device names that mean "do not write this output":
// "nul:" in any case (and the empty name).
bool isNullOutputName(std::string_view name);

// Writes the whole text atomically. Throws UserError naming the file on failure.
void writeFileAtomically(const std::filesystem::path& path, std::string_view text);

// A stream whose content replaces `path` on commit(); destroyed without
// commit(), it removes its temporary file and leaves `path` untouched.
class AtomicFileWriter {
public:
    explicit AtomicFileWriter(std::filesystem::path path);  // throws UserError if unopenable
    ~AtomicFileWriter();
    AtomicFileWriter(const AtomicFileWriter&) = delete;
    AtomicFileWriter& operator=(const AtomicFileWriter&) = delete;

    std::ostream& stream() { return out_; }
    void commit();  // finish() and rename; throws UserError on failure

    // Flushes and closes the temporary; throws UserError naming the file and
    // the system's reason ("No space left on device") when it is incomplete.
    void finish();
    const std::filesystem::path& path() const { return path_; }
    const std::filesystem::path& temporary() const { return temporary_; }
    void markCommitted();

private:
    std::filesystem::path path_;
    std::filesystem::path temporary_;
    std::ofstream out_;
    bool committed_ = false;
};

// The failure of commitTogether: which writer (index into the list) failed.
class CommitError : public UserError {
public:
    CommitError(std::size_t failedIndex, const std::string& message)
        : UserError(ErrorCategory::File, message), failedIndex_(failedIndex) {}
    std::size_t failedIndex() const { return failedIndex_; }

private:
    std::size_t failedIndex_;
};

// Replaces every destination or none: all temporaries are finished first,
// every destination is checked to be replaceable, then all are renamed; a
// rename that still fails puts back the files already replaced. Throws
// CommitError naming the file and the reason; the temporaries are removed
// by the writers' destructors.
void commitTogether(const std::vector<AtomicFileWriter*>& writers);

// Removes the temporaries ("<name>.tmp<pid>_<n>") that processes no longer
// running left in `folder` (a killed run); returns how many were removed.
int removeStaleTemporaries(const std::filesystem::path& folder);

// Installs SIGINT and SIGTERM handlers that remove the temporaries of the
// writers alive at that moment and then end the process by the signal.
void removeTemporariesOnSignals();
// Adds (removes) a file of the caller's to those the handlers remove.
void removeOnSignals(const std::filesystem::path& path);
void keepOnSignals(const std::filesystem::path& path);

// A layout no reader of this package reads, with the message for it: a
// byte-order mark (UTF-8 or UTF-16) or lines ended by CR alone.
std::optional<std::string> textLayoutProblem(std::string_view text);

// The whole content of a text file; throws UserError naming the file when it
// is a folder, cannot be read, is larger than maxBytes or has a layout
// refused by textLayoutProblem (line 1 named).
std::string readTextFile(const std::filesystem::path& path,
                         std::uintmax_t maxBytes = 64u * 1024u * 1024u);

}  // namespace orvane
