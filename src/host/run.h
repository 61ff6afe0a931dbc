// One run of the program, from the command line to the exit status. The order of its steps stands in run.cpp.
#pragma once

class ESContext;
struct ESCompletion;

// To be called once, with what main got; `argv` may lack even the program's name. Gives the exit status of a
// run that ended well; a failure ends the process with status 1 from inside, after its message on stderr.
int runQuorvane(int argc, char** argv);

// Throws HException when the completion is a script's failure: with the message of an error object, else with
// "uncaught exception - " and the value's text.
void reportResult(ESContext& context, const ESCompletion& completion);
