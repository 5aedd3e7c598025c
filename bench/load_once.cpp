// load_once PATH N: N cycles of dlopen and dlclose of the shared library PATH, for
// scripts/load-instructions, which counts the instructions of a run under callgrind; the run of
// one cycle is subtracted from the run of more, so that what remains is the steady cost of a
// cycle: mapping, relocation, the library's initialisers and terminators, and the unmapping.
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s PATH N\n", argv[0]);
        return 2;
    }
    int cycles = std::atoi(argv[2]);
    for (int i = 0; i < cycles; ++i) {
        void* module = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
        if (!module) {
            std::fprintf(stderr, "%s\n", dlerror());
            return 1;
        }
        dlclose(module);
    }
    return 0;
}
