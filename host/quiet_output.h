#ifndef CORVANE_HOST_QUIET_OUTPUT_H
#define CORVANE_HOST_QUIET_OUTPUT_H

namespace corvane::host
{
// What the process writes to standard output vanishes as long as this lives: the library prints a line per rendering,
// and programs keep standard output for results. One at a time.
class QuietOutput
{
public:
    QuietOutput();
    ~QuietOutput();
    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;

private:
    int kept_; // another descriptor of the true standard output; -1: there is none
};
} // namespace corvane::host

#endif
