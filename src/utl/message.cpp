#include "utl/message.h"

#include "platform/os.h"
#include "utl/message_store.h"
#include "utl/utl.h"

#include <cctype>
#include <string>

message_c::message_c(const char* id_text) {
    std::string work = id_text ? id_text : "";
    for (char& c : work)
        if (std::islower(static_cast<unsigned char>(c))) c = static_cast<char>(c - 32);
    id.append(work.c_str());

    utl_stream_c found_text;
    found = message_store_c::message(id.c_str(), found_text);
    text.append(found_text.c_str());

    // The last system error takes the place of the first "%%%": ": ", its text and its code.
    if (text.find("%%%")) {
        utl_stream_c replacement;
        unsigned code = os::GetLastError();
        if (code != 0) {
            replacement.append(": ");
            utl_n::format_last_error(replacement, code);
        }
        text.replace_first("%%%", replacement.c_str());
    }
}
