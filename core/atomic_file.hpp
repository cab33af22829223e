#pragma once
// Result files are never half-written: the text goes to a temporary file in
// the destination's folder, which is renamed over the destination only when
// everything was written. A failure leaves the destination as it was.
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

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
    void commit();  // flushes, closes and renames; throws UserError on failure

private:
    std::filesystem::path path_;
    std::filesystem::path temporary_;
    std::ofstream out_;
    bool committed_ = false;
};

// The whole content of a text file; throws UserError naming the file when it
// cannot be read or is larger than maxBytes.
std::string readTextFile(const std::filesystem::path& path,
                         std::uintmax_t maxBytes = 64u * 1024u * 1024u);

}  // namespace orvane
