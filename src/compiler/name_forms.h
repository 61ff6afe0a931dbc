// The instruction forms of reading and writing a variable, by where it lies.
#pragma once

#include "compiler/code_generator.h"

constexpr ESNameForms getForms = {OP_GETG, OP_GETA, OP_GETAM, OP_GETL, OP_GETLM, OP_GETW};
constexpr ESNameForms putForms = {OP_PUTG, OP_PUTA, OP_PUTAM, OP_PUTL, OP_PUTLM, OP_PUTW};
