// A file above the OS layer that includes a system header: the layer check must fail.
#include <unistd.h>
