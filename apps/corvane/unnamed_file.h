#ifndef CORVANE_APPS_UNNAMED_FILE_H
#define CORVANE_APPS_UNNAMED_FILE_H

#include <string>

namespace corvane::app
{
// A file among the temporary ones that has no name any more: it vanishes with the last process that has it open,
// however that ends.
class UnnamedFile
{
public:
    UnnamedFile(); // throws Error (Output) when there is no room for one
    ~UnnamedFile();
    UnnamedFile(const UnnamedFile&) = delete;
    UnnamedFile& operator=(const UnnamedFile&) = delete;

    int Descriptor() const { return descriptor_; } // not inherited by other programs unless it is duplicated

    // All that has been written, by whomever.
    std::string Bytes() const;

private:
    int descriptor_;
};
} // namespace corvane::app

#endif
