// Objects that a start-up step of the library builds and its tear-down frees. A consumer reaches
// one only through get(), which says loudly when the step never ran: an assertion in a debug
// build, a level 4 trace line otherwise, after which the caller goes on with the null object as
// the rules for a missing object allow (a null section locks nothing).
#pragma once

#include <utility>

// The failure of get(): asserts in a debug build, traces "<what> is used before the library was
// started." in any build.
void report_unstarted_load_step(const char* what);

// The holder is trivially destructible on purpose: the shared library's tear-down runs from a
// static destructor in another source unit, and a holder with a destructor of its own could be
// gone by then.
template <typename T> class load_step_object_ct {
  public:
    explicit constexpr load_step_object_ct(const char* what) : _what(what) {}
    load_step_object_ct(const load_step_object_ct&) = delete;
    load_step_object_ct& operator=(const load_step_object_ct&) = delete;

    template <typename... Args> void build(Args&&... args) {
        if (!_object) _object = new T(std::forward<Args>(args)...);
    }
    void drop() {
        delete _object;
        _object = nullptr;
    }

    T* get() const {
        if (!_object) report_unstarted_load_step(_what);
        return _object;
    }
    // Whether the step has run, for code that may legitimately ask before start-up.
    bool built() const { return _object != nullptr; }

  private:
    T* _object = nullptr;
    const char* _what;
};
