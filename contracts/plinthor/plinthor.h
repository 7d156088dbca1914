#pragma once

/// Umbrella header of the base controls.
#include <plinthor/coordedit.h>
#include <plinthor/coordinates.h>
#include <plinthor/numericspinbox.h>
#include <plinthor/plinthorapp.h>
#include <plinthor/resortpopupmenu.h>
#include <plinthor/sortlistview.h>
#include <plinthor/suffixeddouble.h>
#include <plinthor/timetoaxisstring.h>
#include <plinthor/undorecording.h>
