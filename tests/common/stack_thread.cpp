#include "common/stack_thread.h"

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace test_support {

namespace {

#if defined(_WIN32)
DWORD WINAPI run_work(LPVOID work) {
    (*static_cast<const std::function<void()>*>(work))();
    return 0;
}
#else
extern "C" void* run_work(void* work) {
    (*static_cast<const std::function<void()>*>(work))();
    return nullptr;
}
#endif

} // namespace

bool run_with_stack(std::size_t stack_bytes, const std::function<void()>& work) {
    void* argument = const_cast<std::function<void()>*>(&work);
#if defined(_WIN32)
    // With this flag the size is the reservation, not only the first commit, so the stack is
    // really that small.
    HANDLE thread = CreateThread(nullptr, stack_bytes, run_work, argument,
                                 STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (!thread) return false;
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    return true;
#else
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) return false;
    bool made = false;
    pthread_t thread;
    if (pthread_attr_setstacksize(&attributes, stack_bytes) == 0)
        made = pthread_create(&thread, &attributes, run_work, argument) == 0;
    pthread_attr_destroy(&attributes);
    if (made) pthread_join(thread, nullptr);
    return made;
#endif
}

std::size_t current_stack_size() {
#if defined(_WIN32)
    ULONG_PTR low = 0;
    ULONG_PTR high = 0;
    GetCurrentThreadStackLimits(&low, &high);
    return static_cast<std::size_t>(high - low);
#else
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return 0;
    void* base = nullptr;
    std::size_t size = 0;
    if (pthread_attr_getstack(&attributes, &base, &size) != 0) size = 0;
    pthread_attr_destroy(&attributes);
    return size;
#endif
}

} // namespace test_support
