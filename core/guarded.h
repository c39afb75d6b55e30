#ifndef CORVANE_CORE_GUARDED_H
#define CORVANE_CORE_GUARDED_H

namespace corvane::core
{
// Runs an exported operation's body. An exception (memory that cannot be had) becomes false or 0 here and nowhere
// else, so that none crosses the interface.
template <class Body>
auto Guarded(Body&& body) noexcept -> decltype(body())
{
    try
    {
        return body();
    }
    catch (...)
    {
        return {};
    }
}

// Whether an exported object has its private state. What could not be made at construction, where nothing can say that
// memory is short, is made now.
template <class State>
bool HasState(State*& state) noexcept
{
    if (!state)
        state = Guarded([] { return new State; });
    return state;
}
} // namespace corvane::core

#endif
