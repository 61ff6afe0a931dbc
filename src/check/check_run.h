// One run of quorvane-check, from the command line to the exit status.
#pragma once

// Gives the exit status: 0 without errors, 1 with errors in the scripts, 2 when something could not be
// checked.
int runCheck(int argc, char** argv);
