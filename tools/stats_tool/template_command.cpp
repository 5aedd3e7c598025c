#include "template_command.h"

#include "reference_command.h"

#include "configuration/xmc_template.h"
#include "utl/utl_stream.h"

#include <cstdio>
#include <cstring>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

int run_template() {
    utl_stream_c text;
    xmc_template_n::join(text);
#if defined(_WIN32)
    // A text-mode stream would write each line feed as two bytes; the document has one.
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    const char* bytes = text.c_str() ? text.c_str() : "";
    std::size_t length = std::strlen(bytes);
    bool written = std::fwrite(bytes, 1, length, stdout) == length && std::fflush(stdout) == 0;
    if (!written) std::fprintf(stderr, "stats_tool: the template could not be written\n");
    return written ? exit_yes : exit_error;
}

int run_template_command(const invocation_s& call) {
    bool reference = false;
    for (const std::string& arg : call.args) {
        if (arg == "--reference" && !reference)
            reference = true;
        else if (is_option(arg) && arg != "--reference")
            return usage_error(call, "unknown option '" + arg + "'");
        else
            return usage_error(call, "unexpected argument '" + arg + "'");
    }
    return reference ? run_settings_reference() : run_template();
}
