// The rules: what the language accepts in silence and hardly anybody means. docs/checker.md tells them to
// users.
#pragma once

#include "check/report.h"
#include "check/script.h"

// What the rules find in a script that parses, in no order.
Reports warningsOf(Script& script);
