// One message by its id: the id in upper case and the text the store has for it. A "%%%" in the
// text takes the last system error at its place.
#pragma once

#include "utl/utl_stream.h"

#include <cstdint>

class message_c {
  public:
    explicit message_c(const char* id);

    utl_stream_c id;   // in upper case
    utl_stream_c text; // the text found, or "Message not found"
    std::int32_t count = 1;
    bool found = false; // whether the store had the id or the fallback
};
