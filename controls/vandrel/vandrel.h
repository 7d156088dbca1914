#pragma once

/// Umbrella header of Vandrel: every control and, through them, the platform contracts.
#include <vandrel/binding/binding.h>
#include <vandrel/vcbutton.h>
#include <vandrel/vccheckbox.h>
#include <vandrel/vccoordedit.h>
#include <vandrel/vclineedit.h>
#include <vandrel/vcnumericfloatspin.h>
#include <vandrel/vcscrollbar.h>
#include <vandrel/vcscrollbuttons.h>
#include <vandrel/vcslider.h>
#include <vandrel/vcspinselectionbox.h>
#include <vandrel/vctextedit.h>
#include <vandrel/vcundo.h>
