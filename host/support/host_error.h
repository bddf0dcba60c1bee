// What ends a run of the host early.

#pragma once

#include <stdexcept>

namespace etmhost {

/// Input that the host cannot work with: its text goes to the error stream, the exit status is 2.
class HostError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace etmhost
