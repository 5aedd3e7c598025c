// A thread with a stack of a chosen size, for tests that show a walk does not recurse: the work
// runs on the new thread and the caller waits for it to end.
#pragma once

#include <cstddef>
#include <functional>

namespace test_support {

// Runs `work` on a new thread whose stack reserves `stack_bytes`, and waits for it. False when
// the system refuses to make such a thread (then `work` did not run).
bool run_with_stack(std::size_t stack_bytes, const std::function<void()>& work);

// The size of the stack reserved for the calling thread, as the system reports it; 0 when it
// can't be found.
std::size_t current_stack_size();

} // namespace test_support
