#pragma once

/// Umbrella header of the base controls.
#include <plinthor/undorecording.h>
