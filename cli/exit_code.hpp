#pragma once
// Subcommand callbacks record their result here; main returns it.
namespace orvane::cli {
int exitCode();
void setExitCode(int code);
}  // namespace orvane::cli
