// What travels when a script cannot go on: its own error (ESException) or a fault of the machine
// (ESFatalError). ESContext::raiseError in context.h is the only thrower of the first. Failures of the host
// are HException's.
#pragma once

#include "runtime/value.h"

#include <QString>

#include <cstdint>

// Carries an error object of the script. Thrown by value; evaluate() turns it into a completion.
struct ESException {
    ESValue value; // always an object
};

// An internal fault, which ends a run; what it holds is read by those alone who compile without running.
struct ESFatalError {
    QString message;
    std::int32_t line = 0; // of the text that cannot be compiled; 0 elsewhere
};
