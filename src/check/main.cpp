#include "check/check_run.h"

int main(int argc, char** argv) { return runCheck(argc, argv); }
