#pragma once

/// Umbrella header of the value framework.
#include <values/command.h>
#include <values/format.h>
#include <values/multiselection.h>
#include <values/observable.h>
#include <values/tree.h>
#include <values/undo.h>
#include <values/value.h>
#include <values/valuebase.h>
#include <values/valuenumeric.h>
#include <values/valueptr.h>
#include <values/valueselection.h>
#include <values/valuevector.h>
