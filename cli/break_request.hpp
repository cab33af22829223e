#pragma once
// Ctrl-C during a long search: the first SIGINT asks the search to stop at
// its next check (between fit cycles, between DE generations); a second one
// ends the program at once. The handler is installed for the lifetime of a
// BreakRequest and the previous one put back after.
namespace orvane::cli {

class BreakRequest {
public:
    BreakRequest();
    ~BreakRequest();
    BreakRequest(const BreakRequest&) = delete;
    BreakRequest& operator=(const BreakRequest&) = delete;
    bool requested() const;

private:
    void (*previous_)(int);
};

}  // namespace orvane::cli
