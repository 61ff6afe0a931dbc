#include "host/run.h"

int main(int argc, char** argv) { return runQuorvane(argc, argv); }
