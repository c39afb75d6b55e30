#ifndef CORVANE_HOST_WORK_ELSEWHERE_H
#define CORVANE_HOST_WORK_ELSEWHERE_H

#include <string>

namespace corvane::host
{
// As long as this lives the working folder is an empty one, which vanishes with it: the library writes a diagnostic
// file to the working folder whenever it is given labels. One at a time. Where no such folder can be made the working
// folder stays.
class WorkElsewhere
{
public:
    WorkElsewhere();
    ~WorkElsewhere();
    WorkElsewhere(const WorkElsewhere&) = delete;
    WorkElsewhere& operator=(const WorkElsewhere&) = delete;

private:
    std::string folder_; // empty: the working folder has stayed
    int home_;           // the one to come back to
};
} // namespace corvane::host

#endif
