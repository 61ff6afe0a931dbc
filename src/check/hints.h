// Hints: what somebody who knows JavaScript meant where the compiler has stopped, told from the words around
// the fault.
#pragma once

#include "check/script.h"

#include <QString>

// What to write instead, or an empty text. `message` is the compiler's, without its line; the parse of the
// script has failed with it.
QString syntaxHint(const Script& script, const QString& message);
