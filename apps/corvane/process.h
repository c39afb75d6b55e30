#ifndef CORVANE_APPS_PROCESS_H
#define CORVANE_APPS_PROCESS_H

namespace corvane::app
{
// Sets up how the process meets what comes from outside; once, before anything else.
//   Standard streams that are closed stay unusable, but no file of the program's gets their numbers.
//   A pipe that nobody reads and a file that may not grow become errors of writing.
//   Interrupt, termination and hang-up end the program with a line on standard error, unless they are ignored already.
void PrepareProcess();
} // namespace corvane::app

#endif
