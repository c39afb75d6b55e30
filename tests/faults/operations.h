#ifndef CORVANE_TESTS_FAULTS_OPERATIONS_H
#define CORVANE_TESTS_FAULTS_OPERATIONS_H

#include "subjects.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

// Every exported operation, ready to be tried. The list is made from those of the exports, so none is missing.
namespace corvane::tests
{
enum class Answer
{
    Done,
    Refused, // false, 0, null, or an error
    Silent,  // the operation does not say
};

// An operation with an object and arguments of its own.
class Attempt
{
public:
    Attempt() = default;
    virtual ~Attempt() = default;
    Attempt(const Attempt&) = delete;
    Attempt& operator=(const Attempt&) = delete;

    virtual Answer Run() = 0;
    virtual Seen Outputs() = 0; // what stands in the buffers and records that it writes
    virtual Seen Objects() = 0; // what can be seen of the object
    virtual bool IsEmpty() = 0; // the object holds no volume
};

struct Operation
{
    std::string name;  // as in the list of exports
    std::string group; // whose it is: a class or a kind of handle
    std::function<std::unique_ptr<Attempt>()> prepare;
};

const std::vector<Operation>& AllOperations();
} // namespace corvane::tests

#endif
