#pragma once

/// Umbrella header of the error services.
#include <brevanbase/asciistring.h>
#include <brevanbase/brevanexception.h>
#include <brevanbase/errorhandler.h>
