#pragma once

/// Umbrella header of Vandrel: every control and, through them, the platform contracts.
#include <vandrel/binding/binding.h>
#include <vandrel/vcscrollbar.h>
#include <vandrel/vcslider.h>
