// A file of the files layer that includes a header of a layer above it: the layer check must fail.
#include "stats_mng/stats_saver.h"
