// The standard library as a whole: ESContext::initContext, which makes the classes, the prototypes and the
// global object. It is declared in runtime/context.h; each class has a header of its own in this folder.
#pragma once

#include "natives/array.h"
#include "natives/boolean.h"
#include "natives/date.h"
#include "natives/error.h"
#include "natives/function.h"
#include "natives/global.h"
#include "natives/math.h"
#include "natives/number.h"
#include "natives/object.h"
#include "natives/string.h"
