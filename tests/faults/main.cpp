// usage: quorvane_refusals COUNT KIND WAY FIRST ARGUMENT...
//
// The program with ARGUMENT..., while requests to the system are refused (refusals.h). KIND is 1 for memory
// and 2 for files, WAY 0 for once, 1 for from then on and 2 for a kill; FIRST is the number of the request,
// or 0 for none. A run that ends writes the number of its requests into the file COUNT.
#include "faults/refusals.h"
#include "host/run.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

int main(int argc, char** argv) {
    static const char* count = argc > 4 ? argv[1] : "";
    std::atexit([] {
        const long requests = refusals.requests;
        refusals.kind = Refusals::Nothing;
        if (FILE* const file = std::fopen(count, "w")) {
            std::fprintf(file, "%ld", requests);
            std::fclose(file);
        }
    });
    if (argc < 5) {
        return EXIT_FAILURE;
    }
    refusals = {static_cast<Refusals::Kind>(std::atoi(argv[2])),
                static_cast<Refusals::Way>(std::atoi(argv[3])), std::atol(argv[4]), 0, getpid()};
    argv[4] = argv[0];
    return runQuorvane(argc - 4, argv + 4);
}
