#pragma once

#include <vandrel/vandrel_export.h>

/// Reasons the loader passes to the library's entry function.
enum VandrelModuleReason : unsigned long {
    VandrelProcessDetach = 0, ///< the library is being unloaded
    VandrelProcessAttach = 1, ///< the library has been loaded
};

/**
 * \brief The library's entry function, called when the library is loaded and unloaded.
 *
 * On attach it registers the translation namespace "Vandrel" with the translation centre, on detach it
 * unregisters it; other reasons do nothing. It always answers true. The library calls it itself from
 * its load and unload hooks; an application never needs to.
 */
extern "C" VANDREL_EXPORT bool VandrelModuleEntry(void* module, unsigned long reason, void* reserved);
