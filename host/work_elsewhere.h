#ifndef CORVANE_HOST_WORK_ELSEWHERE_H
#define CORVANE_HOST_WORK_ELSEWHERE_H

namespace corvane::host
{
// As long as this lives the working folder is one that is deleted already, in which no file can be made: the library
// writes a diagnostic file to the working folder whenever it is given labels. One at a time. Where no folder can be
// made, neither among the temporary ones nor in the working folder, the working folder stays; the library's file cannot
// be made there either.
class WorkElsewhere
{
public:
    WorkElsewhere();
    ~WorkElsewhere();
    WorkElsewhere(const WorkElsewhere&) = delete;
    WorkElsewhere& operator=(const WorkElsewhere&) = delete;

private:
    int home_;          // the working folder to come back to
    bool away_ = false; // whether it was left
};
} // namespace corvane::host

#endif
