#pragma once

/// Umbrella header of Vandrel: every control, the binding helpers and every platform contract, so that
/// an application that includes it alone can name anything the library offers.
#include <brevanbase/brevanbase.h>
#include <orvi/translationcenter.h>
#include <plinthor/plinthor.h>
#include <values/values.h>

#include <vandrel/binding/binding.h>
#include <vandrel/bindform.h>
#include <vandrel/vcbutton.h>
#include <vandrel/vccheckbox.h>
#include <vandrel/vccombobox.h>
#include <vandrel/vccoordedit.h>
#include <vandrel/vcdatetimeedit.h>
#include <vandrel/vclabel.h>
#include <vandrel/vcled.h>
#include <vandrel/vcline.h>
#include <vandrel/vclineedit.h>
#include <vandrel/vcmeasurementwidget.h>
#include <vandrel/vcnumericfloatspin.h>
#include <vandrel/vcscrollbar.h>
#include <vandrel/vcscrollbuttons.h>
#include <vandrel/vcslider.h>
#include <vandrel/vcspinselectionbox.h>
#include <vandrel/vctextedit.h>
#include <vandrel/vcundo.h>
#include <vandrel/vcmultiplecheck.h>
#include <vandrel/vcbuttongroup.h>
#include <vandrel/vconeofbutton.h>
#include <vandrel/vconeofbuttoncombo.h>
#include <vandrel/vcbuttoncombo.h>
#include <vandrel/vcpopupmenu.h>
#include <vandrel/vcmenubar.h>
#include <vandrel/vcselectionpopup.h>
#include <vandrel/valuestatus.h>
