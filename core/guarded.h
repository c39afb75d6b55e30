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
} // namespace corvane::core

#endif
